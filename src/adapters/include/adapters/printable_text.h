#pragma once

#include <cstddef>
#include <string>

namespace lumenquest::adapters {

/// A text from outside as it may be shown in a message of one line: control and formatting
/// characters and broken UTF-8 become U+FFFD, and what is longer than `most` characters is cut off
/// with an ellipsis. The joiners that emoji and Persian words are made with stay.
std::string printableText(const std::string& utf8, std::size_t most = 60);

/// Whether bytes from outside are a text: well-formed UTF-8 without a NUL.
bool isText(const std::string& bytes);

/// How many columns of a terminal a text takes: two for wide characters, none for marks.
std::size_t columnsOf(const std::string& utf8);

}  // namespace lumenquest::adapters
