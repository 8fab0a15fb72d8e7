#include "platform/ns_user_defaults.h"

#include <cmath>
#include <type_traits>

#include "platform/location_utils.h"
#include "platform/services.h"

namespace lumenquest::platform {

namespace {

/// Set in the suite once the older settings were copied into it.
constexpr const char* kMigrated = "lumenquest_migrate_appgroups";

/// The first placemark's title and zone, as far as there are any.
SavedPlace FoundPlace(const std::vector<CLPlacemark>& placemarks, bool failed) {
  SavedPlace place;
  if (failed || placemarks.empty()) return place;
  const CLPlacemark& placemark = placemarks.front();
  place.address = placemark.cityTitle();
  if (placemark.timeZone) place.timeZone = placemark.timeZone->name;
  return place;
}

/// A value as a number: texts count as nothing, true as 1.
double Number(const std::optional<NSUserDefaults::Value>& value) {
  if (!value) return 0.0;
  return std::visit(
      [](const auto& stored) -> double {
        if constexpr (std::is_same_v<std::decay_t<decltype(stored)>, std::string>) {
          return 0.0;
        } else {
          return static_cast<double>(stored);
        }
      },
      *value);
}

}  // namespace

bool NSUserDefaults::boolForKey(const std::string& key) const {
  return Number(objectForKey(key)) != 0.0;
}

std::int64_t NSUserDefaults::integerForKey(const std::string& key) const {
  const std::optional<Value> value = objectForKey(key);
  if (value && std::holds_alternative<std::int64_t>(*value)) return std::get<std::int64_t>(*value);
  const double number = Number(value);
  return std::fabs(number) < 9.0e18 ? static_cast<std::int64_t>(number) : 0;
}

double NSUserDefaults::doubleForKey(const std::string& key) const {
  return Number(objectForKey(key));
}

std::optional<std::string> NSUserDefaults::stringForKey(const std::string& key) const {
  const std::optional<Value> value = objectForKey(key);
  if (!value || !std::holds_alternative<std::string>(*value)) return std::nullopt;
  return std::get<std::string>(*value);
}

NSUserDefaults* NSUserDefaults::lumenquestUserDefaults() { return Services::current().settings(); }

NSUserDefaults* NSUserDefaults::standardUserDefaults() {
  return Services::current().privateSettings();
}

bool NSUserDefaults::hasMigratedDefault() {
  const NSUserDefaults* suite = lumenquestUserDefaults();
  return suite != nullptr && suite->boolForKey(kMigrated);
}

void NSUserDefaults::migrateUserDefaultsIfNeccessary() {
  NSUserDefaults* suite = lumenquestUserDefaults();
  const NSUserDefaults* older = standardUserDefaults();
  if (suite == nullptr || older == nullptr || hasMigratedDefault()) return;
  for (const auto& [key, value] : older->dictionaryRepresentation()) suite->setObject(value, key);
  // Last, so that a copy that was interrupted is made again.
  suite->setBool(true, kMigrated);
  suite->synchronize();
}

std::optional<NSUserDefaults::Value> InMemoryUserDefaults::objectForKey(
    const std::string& key) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

void InMemoryUserDefaults::setObject(const std::optional<Value>& value, const std::string& forKey) {
  const std::lock_guard lock(mutex_);
  if (value) {
    values_[forKey] = *value;
  } else {
    values_.erase(forKey);
  }
}

NSUserDefaults::Dictionary InMemoryUserDefaults::dictionaryRepresentation() const {
  const std::lock_guard lock(mutex_);
  return values_;
}

void SavedLocation::save(CLLocationCoordinate2D coordinate) {
  NSUserDefaults* suite = NSUserDefaults::lumenquestUserDefaults();
  if (suite == nullptr) return;
  suite->setDouble(coordinate.latitude, kUserDefaultsTodayExtensionLastLatitude);
  suite->setDouble(coordinate.longitude, kUserDefaultsTodayExtensionLastLongitude);
  suite->synchronize();
}

std::optional<CLLocation> SavedLocation::load() {
  const NSUserDefaults* suite = NSUserDefaults::lumenquestUserDefaults();
  if (suite == nullptr || !suite->objectForKey(kUserDefaultsTodayExtensionLastLatitude) ||
      !suite->objectForKey(kUserDefaultsTodayExtensionLastLongitude)) {
    return std::nullopt;
  }
  return CLLocation{{suite->doubleForKey(kUserDefaultsTodayExtensionLastLatitude),
                     suite->doubleForKey(kUserDefaultsTodayExtensionLastLongitude)}};
}

void SavedLocation::savePlace(const SavedPlace& place) {
  NSUserDefaults* suite = NSUserDefaults::lumenquestUserDefaults();
  if (suite == nullptr) return;
  suite->setObject(place.address, kUserDefaultsTodayExtensionLastPostalAddress);
  suite->setObject(place.timeZone, kUserDefaultsTodayExtensionLastTimeZone);
  suite->synchronize();
}

std::pair<std::optional<CLLocation>, SavedPlace> SavedLocation::loadWithPlace() {
  std::pair<std::optional<CLLocation>, SavedPlace> saved;
  atomically([&] { saved = {load(), readPlace()}; });
  return saved;
}

void SavedLocation::atomically(const std::function<void()>& body) {
  NSUserDefaults* const suite = NSUserDefaults::lumenquestUserDefaults();
  if (suite != nullptr) {
    suite->atomically(body);
  } else {
    body();
  }
}

SavedPlace SavedLocation::readPlace() {
  const NSUserDefaults* suite = NSUserDefaults::lumenquestUserDefaults();
  if (suite == nullptr) return {};
  return {suite->stringForKey(kUserDefaultsTodayExtensionLastPostalAddress),
          suite->stringForKey(kUserDefaultsTodayExtensionLastTimeZone)};
}

SavedPlace SavedLocation::saveGeocoded(const std::vector<CLPlacemark>& placemarks, bool failed,
                                       const CLLocation& location) {
  // A coordinate's text is shown and never kept.
  savePlace(FoundPlace(placemarks, failed));
  return geocodedPlace(placemarks, failed, location);
}

SavedPlace SavedLocation::geocodedPlace(const std::vector<CLPlacemark>& placemarks, bool failed,
                                        const CLLocation& location) {
  SavedPlace place = FoundPlace(placemarks, failed);
  if (!place.address) {
    place.address = LocationUtils::latLonStringWithCoordinate(location.coordinate);
  }
  return place;
}

}  // namespace lumenquest::platform
