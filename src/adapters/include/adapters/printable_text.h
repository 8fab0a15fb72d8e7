#pragma once

#include <cstddef>
#include <string>

namespace lumenquest::adapters {

/// A text from outside as it may be shown in a message of one line: control and formatting
/// characters and broken UTF-8 become U+FFFD, and what is longer than `most` characters is cut off
/// with an ellipsis.
std::string printableText(const std::string& utf8, std::size_t most = 60);

}  // namespace lumenquest::adapters
