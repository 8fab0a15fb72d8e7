#pragma once

#include <functional>
#include <map>
#include <string>

#include "platform/services.h"

namespace lumenquest::adapters {

/// The string tables under a folder, one sub-folder of compiled resource bundles a table, with
/// fallback from the locale to its language and from there, key by key, to English.
class IcuStringTables final : public platform::StringTables {
 public:
  IcuStringTables(std::string folder, std::string locale);
  std::string localizedString(const std::string& key, const std::string& table) override;

 private:
  using Table = std::map<std::string, std::string, std::less<>>;

  Table Load(const std::string& table) const;

  std::string folder_;
  std::string locale_;
  std::map<std::string, Table, std::less<>> tables_;
};

}  // namespace lumenquest::adapters
