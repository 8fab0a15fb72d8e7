#include "platform/ns_string.h"

#include <array>
#include <cstddef>

namespace lumenquest::platform {

namespace {

/// The tab and the characters of category Zs.
constexpr std::array<std::string_view, 18> kWhitespace{
    "\t",     " ",      "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
    "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"};

/// Length of the white-space character at the start or end of the text, 0 when there is none.
template <typename Touches>
std::size_t WhitespaceLength(Touches touches) {
  for (const std::string_view space : kWhitespace) {
    if (touches(space)) return space.size();
  }
  return 0;
}

}  // namespace

bool containsString(std::string_view text, std::string_view part) {
  return !part.empty() && text.find(part) != std::string_view::npos;
}

std::string stringByReplacingOccurrences(std::string_view text, std::string_view of,
                                         std::string_view with) {
  if (of.empty()) return std::string(text);
  std::string result;
  std::size_t from = 0;
  for (std::size_t at = text.find(of); at != std::string_view::npos; at = text.find(of, from)) {
    result += text.substr(from, at - from);
    result += with;
    from = at + of.size();
  }
  result += text.substr(from);
  return result;
}

std::string stringByTrimmingWhitespace(std::string_view text) {
  const auto atStart = [&](std::string_view space) { return text.starts_with(space); };
  const auto atEnd = [&](std::string_view space) { return text.ends_with(space); };
  while (const std::size_t length = WhitespaceLength(atStart)) text.remove_prefix(length);
  while (const std::size_t length = WhitespaceLength(atEnd)) text.remove_suffix(length);
  return std::string(text);
}

}  // namespace lumenquest::platform
