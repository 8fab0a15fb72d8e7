#pragma once

#include <unicode/unistr.h>

#include <string>

namespace lumenquest::adapters {

inline std::string ToUtf8(const icu::UnicodeString& text) {
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

inline icu::UnicodeString FromUtf8(const std::string& utf8) {
  return icu::UnicodeString::fromUTF8(utf8);
}

}  // namespace lumenquest::adapters
