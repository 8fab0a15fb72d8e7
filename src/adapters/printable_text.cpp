#include "adapters/printable_text.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include "icu_strings.h"

namespace lumenquest::adapters {

std::string printableText(const std::string& utf8, std::size_t most) {
  constexpr UChar32 kReplacement = 0xFFFD;
  constexpr UChar32 kEllipsis = 0x2026;
  constexpr UChar32 kZeroWidthNonJoiner = 0x200C;
  constexpr UChar32 kZeroWidthJoiner = 0x200D;
  const icu::UnicodeString text = FromUtf8(utf8);
  icu::UnicodeString shown;
  std::size_t count = 0;
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1), ++count) {
    if (count == most) {
      shown.append(kEllipsis);
      break;
    }
    const UChar32 character = text.char32At(i);
    const bool isJoiner = character == kZeroWidthJoiner || character == kZeroWidthNonJoiner;
    shown.append(isJoiner || u_isprint(character) ? character : kReplacement);
  }
  return ToUtf8(shown);
}

bool isText(const std::string& bytes) {
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, nullptr, bytes.data(), static_cast<int32_t>(bytes.size()), &status);
  // There is no room for the result, which nobody wants.
  const bool isUtf8 = U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR;
  return isUtf8 && bytes.find('\0') == std::string::npos;
}

std::size_t columnsOf(const std::string& utf8) {
  const icu::UnicodeString text = FromUtf8(utf8);
  std::size_t columns = 0;
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
    const UChar32 character = text.char32At(i);
    if ((U_GET_GC_MASK(character) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0) continue;
    const int32_t width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    columns += width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
  }
  return columns;
}

}  // namespace lumenquest::adapters
