#include "adapters/printable_text.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "icu_strings.h"

namespace lumenquest::adapters {

std::string printableText(const std::string& utf8, std::size_t most) {
  constexpr UChar32 kReplacement = 0xFFFD;
  constexpr UChar32 kEllipsis = 0x2026;
  const icu::UnicodeString text = FromUtf8(utf8);
  icu::UnicodeString shown;
  std::size_t count = 0;
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1), ++count) {
    if (count == most) {
      shown.append(kEllipsis);
      break;
    }
    const UChar32 character = text.char32At(i);
    shown.append(u_isprint(character) ? character : kReplacement);
  }
  return ToUtf8(shown);
}

}  // namespace lumenquest::adapters
