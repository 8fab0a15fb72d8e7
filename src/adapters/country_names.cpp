#include "country_names.h"

#include <unicode/locid.h>

#include <algorithm>
#include <array>
#include <utility>

#include "icu_strings.h"
#include "search_key.h"

namespace lumenquest::adapters {

namespace {

struct CommonName {
  const char* name;
  const char* code;
};

constexpr std::array<CommonName, 16> kCommonNames{{
    {"UK", "GB"},
    {"Great Britain", "GB"},
    {"Britain", "GB"},
    {"America", "US"},
    {"United States of America", "US"},
    {"Holland", "NL"},
    {"Czech Republic", "CZ"},
    {"Burma", "MM"},
    {"UAE", "AE"},
    {"Turkey", "TR"},
    {"Ivory Coast", "CI"},
    {"Cape Verde", "CV"},
    {"Swaziland", "SZ"},
    {"Macedonia", "MK"},
    {"Korea", "KR"},
    {"Kosovo", "XK"},
}};

std::string NameIn(const std::string& code, const icu::Locale& language) {
  icu::UnicodeString name;
  icu::Locale("", code.c_str()).getDisplayCountry(language, name);
  return ToUtf8(name);
}

}  // namespace

std::string countryName(const std::string& code, const std::string& locale) {
  return NameIn(code, icu::Locale(locale.c_str()));
}

CountryNames::CountryNames(const std::string& locale) {
  const auto add = [this](const std::string& name, const std::string& code) {
    for (std::string& key : searchKeys(name)) codes_.emplace(std::move(key), code);
  };
  const icu::Locale user(locale.c_str());
  for (const char* const* code = icu::Locale::getISOCountries(); *code != nullptr; ++code) {
    const icu::Locale country("", *code);
    add(*code, *code);
    add(country.getISO3Country(), *code);
    add(NameIn(*code, icu::Locale::getEnglish()), *code);
    add(NameIn(*code, user), *code);
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale own("und", *code);
    own.addLikelySubtags(status);
    if (U_SUCCESS(status)) add(NameIn(*code, own), *code);
  }
  for (const CommonName& common : kCommonNames) add(common.name, common.code);
}

std::vector<std::string> CountryNames::called(const std::string& key) const {
  std::vector<std::string> codes;
  const auto [begin, end] = codes_.equal_range(key);
  for (auto i = begin; i != end; ++i) {
    if (std::find(codes.begin(), codes.end(), i->second) == codes.end()) codes.push_back(i->second);
  }
  return codes;
}

std::vector<std::string> CountryNames::beginningWith(const std::string& key) const {
  std::vector<std::string> codes;
  for (auto i = codes_.lower_bound(key); i != codes_.end() && i->first.starts_with(key); ++i) {
    if (std::find(codes.begin(), codes.end(), i->second) == codes.end()) codes.push_back(i->second);
  }
  return codes;
}

}  // namespace lumenquest::adapters
