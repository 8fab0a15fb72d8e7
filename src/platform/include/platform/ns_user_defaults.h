#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

namespace lumenquest::platform {

/// Whether the main application draws geodesic lines (boolean).
inline constexpr const char* kUserDefaultsUseGeodesicLines = "global_use_geodesics";

/// A store of settings by key.
class NSUserDefaults {
 public:
  using Value = std::variant<bool, std::int64_t, double, std::string>;

  virtual ~NSUserDefaults() = default;

  virtual std::optional<Value> objectForKey(const std::string& key) const = 0;
  virtual void setObject(const Value& value, const std::string& forKey) = 0;

  /// False when the key is absent; a number is true when it is not zero.
  bool boolForKey(const std::string& key) const;

  /// The suite of the application group, or null when there is none.
  static NSUserDefaults* lumenquestUserDefaults();
};

/// Settings that live as long as the process.
class InMemoryUserDefaults final : public NSUserDefaults {
 public:
  std::optional<Value> objectForKey(const std::string& key) const override;
  void setObject(const Value& value, const std::string& forKey) override;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, Value> values_;
};

}  // namespace lumenquest::platform
