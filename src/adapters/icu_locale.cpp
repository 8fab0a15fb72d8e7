#include <unicode/locid.h>
#include <unicode/uregion.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <cstring>

#include "adapters/icu_services.h"

namespace lumenquest::adapters {

namespace {

bool IsKnownLanguage(const char* language) {
  int32_t count = 0;
  const icu::Locale* available = icu::Locale::getAvailableLocales(count);
  return std::any_of(available, available + count, [language](const icu::Locale& locale) {
    return std::strcmp(locale.getLanguage(), language) == 0;
  });
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
  if (U_FAILURE(status) || !IsKnownLanguage(locale.getLanguage()) ||
      !IsKnownScript(locale.getScript()) || !IsKnownRegion(locale.getCountry())) {
    return std::nullopt;
  }
  return std::string(locale.getName());
}

std::string environmentLocale() { return icu::Locale::getDefault().getName(); }

}  // namespace lumenquest::adapters
