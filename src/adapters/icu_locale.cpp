#include <unicode/localebuilder.h>
#include <unicode/localpointer.h>
#include <unicode/locid.h>
#include <unicode/uenum.h>
#include <unicode/uloc.h>
#include <unicode/uregion.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <cstdlib>

#include "adapters/icu_services.h"

namespace lumenquest::adapters {

namespace {

bool IsKnownLanguage(const icu::Locale& locale) {
  // With the older names that still lead to a locale: "iw" for "he", "tl" for "fil".
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUEnumerationPointer available(
      uloc_openAvailableByType(ULOC_AVAILABLE_WITH_LEGACY_ALIASES, &status));
  const std::string language = locale.getLanguage();
  while (const char* name = uenum_next(available.getAlias(), nullptr, &status)) {
    if (language == icu::Locale(name).getLanguage()) return true;
  }
  return false;
}

bool IsKnownScript(const char* script) {
  if (*script == '\0') return true;
  UErrorCode status = U_ZERO_ERROR;
  UScriptCode code = USCRIPT_INVALID_CODE;
  uscript_getCode(script, &code, 1, &status);
  return U_SUCCESS(status) && code != USCRIPT_INVALID_CODE;
}

bool IsKnownRegion(const char* region) {
  if (*region == '\0') return true;
  UErrorCode status = U_ZERO_ERROR;
  return uregion_getRegionFromCode(region, &status) != nullptr && U_SUCCESS(status);
}

}  // namespace

std::optional<std::string> localeIdentifier(const std::string& tag) {
  std::string languageTag = tag.substr(0, tag.find_first_of(".@"));
  std::replace(languageTag.begin(), languageTag.end(), '_', '-');
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale = icu::Locale::forLanguageTag(languageTag, status);
  if (U_FAILURE(status) || !IsKnownLanguage(locale) || !IsKnownScript(locale.getScript()) ||
      !IsKnownRegion(locale.getCountry())) {
    return std::nullopt;
  }
  return std::string(locale.getName());
}

std::string languageTag(const std::string& locale) {
  const icu::Locale given(locale.c_str());
  UErrorCode status = U_ZERO_ERROR;
  return icu::LocaleBuilder()
      .setLanguage(given.getLanguage())
      .setScript(given.getScript())
      .setRegion(given.getCountry())
      .build(status)
      .toLanguageTag<std::string>(status);
}

std::string environmentLocale() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    if (const auto locale = localeIdentifier(value)) return *locale;
    break;
  }
  return "en_US_POSIX";
}

bool isRightToLeft(const std::string& locale) {
  return icu::Locale(locale.c_str()).isRightToLeft() != 0;
}

}  // namespace lumenquest::adapters
