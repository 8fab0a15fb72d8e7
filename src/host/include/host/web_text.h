#pragma once

#include <string>

namespace lumenquest::host {

// Texts from outside (names of places and plans, requests) on their way into pages and addresses.

/// For HTML's content and quoted attributes. Broken UTF-8 becomes U+FFFD; control characters, which
/// no page may hold, are dropped.
std::string htmlEscaped(const std::string& text);
/// The text that the escaped one stands for, as far as htmlEscaped() or an XML writer escaped it.
std::string htmlUnescaped(const std::string& html);
/// A text in a direction of its own: it neither turns what stands around it, nor is turned by it.
std::string bdi(const std::string& text);

/// For one part of an address: all but letters, digits and -._~ as %XX.
std::string percentEncoded(const std::string& text);
/// Sequences that are no %XX stay as they are.
std::string percentDecoded(const std::string& text);

}  // namespace lumenquest::host
