#pragma once

#include <string>
#include <string_view>

namespace lumenquest::platform {

// Operations on UTF-8 texts. The empty text is contained in nothing, and replacing it changes
// nothing.

bool containsString(std::string_view text, std::string_view part);

std::string stringByReplacingOccurrences(std::string_view text, std::string_view of,
                                         std::string_view with);

/// Without white space at both ends: Unicode's space separators and the tab. Recent locale data put
/// a narrow no-break space before AM and PM.
std::string stringByTrimmingWhitespace(std::string_view text);

}  // namespace lumenquest::platform
