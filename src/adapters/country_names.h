#pragma once

#include <map>
#include <string>
#include <vector>

namespace lumenquest::adapters {

/// The name of an ISO 3166-1 code in the language of a locale.
std::string countryName(const std::string& code, const std::string& locale);

/// Countries by what people call them: in English, in the user's language, in the country's own,
/// by ISO code, and by a few names that no locale data hold.
class CountryNames {
 public:
  explicit CountryNames(const std::string& locale);

  /// The codes of the countries so called; a search key, see search_key.h.
  std::vector<std::string> called(const std::string& key) const;
  /// The codes of the countries whose name begins so.
  std::vector<std::string> beginningWith(const std::string& key) const;

 private:
  std::multimap<std::string, std::string> codes_;
};

}  // namespace lumenquest::adapters
