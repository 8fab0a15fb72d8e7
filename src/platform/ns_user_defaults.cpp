#include "platform/ns_user_defaults.h"

#include "platform/services.h"

namespace lumenquest::platform {

bool NSUserDefaults::boolForKey(const std::string& key) const {
  const std::optional<Value> value = objectForKey(key);
  if (!value) return false;
  if (const bool* flag = std::get_if<bool>(&*value)) return *flag;
  if (const std::int64_t* integer = std::get_if<std::int64_t>(&*value)) return *integer != 0;
  if (const double* number = std::get_if<double>(&*value)) return *number != 0.0;
  return false;
}

NSUserDefaults* NSUserDefaults::lumenquestUserDefaults() { return Services::current().settings(); }

std::optional<NSUserDefaults::Value> InMemoryUserDefaults::objectForKey(
    const std::string& key) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

void InMemoryUserDefaults::setObject(const Value& value, const std::string& forKey) {
  const std::lock_guard lock(mutex_);
  values_[forKey] = value;
}

}  // namespace lumenquest::platform
