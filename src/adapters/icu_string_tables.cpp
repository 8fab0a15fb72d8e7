#include "adapters/icu_string_tables.h"

#include <unicode/resbund.h>

#include <utility>

#include "icu_strings.h"

namespace lumenquest::adapters {

IcuStringTables::IcuStringTables(std::string folder, std::string locale)
    : folder_(std::move(folder)), locale_(std::move(locale)) {}

std::string IcuStringTables::localizedString(const std::string& key, const std::string& table) {
  auto found = tables_.find(table);
  if (found == tables_.end()) found = tables_.emplace(table, Load(table)).first;
  const auto text = found->second.find(key);
  return text == found->second.end() ? std::string() : text->second;
}

IcuStringTables::Table IcuStringTables::Load(const std::string& table) const {
  const icu::UnicodeString package = FromUtf8(folder_ + "/" + table);
  UErrorCode status = U_ZERO_ERROR;
  const icu::ResourceBundle english(package, icu::Locale::getRoot(), status);
  if (U_FAILURE(status)) return {};
  // Canonical: a table goes by its language's present name, "he" and not "iw".
  icu::ResourceBundle bundle(package, icu::Locale::createCanonical(locale_.c_str()), status);
  // Without a table for the language ICU turns to the process's default locale before English.
  const bool ownLanguage = U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING;
  if (!ownLanguage) bundle = english;

  Table texts;
  icu::ResourceBundle keys(english);
  while (keys.hasNext()) {
    UErrorCode entryStatus = U_ZERO_ERROR;
    const icu::ResourceBundle entry = keys.getNext(entryStatus);
    if (U_FAILURE(entryStatus)) break;
    UErrorCode textStatus = U_ZERO_ERROR;
    const icu::UnicodeString text = bundle.getStringEx(entry.getKey(), textStatus);
    if (U_SUCCESS(textStatus)) texts[entry.getKey()] = ToUtf8(text);
  }
  return texts;
}

}  // namespace lumenquest::adapters
