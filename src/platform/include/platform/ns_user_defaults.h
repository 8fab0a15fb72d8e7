#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/core_location.h"

namespace lumenquest::platform {

// The keys of the shared settings. No other place spells them.

/// Last known place: degrees (double), north and east positive; present as a pair or not at all.
inline constexpr const char* kUserDefaultsTodayExtensionLastLatitude = "today_extension_latitude";
inline constexpr const char* kUserDefaultsTodayExtensionLastLongitude = "today_extension_longitude";
/// Its title (string) and time-zone identifier (string).
inline constexpr const char* kUserDefaultsTodayExtensionLastPostalAddress =
    "today_extension_address";
inline constexpr const char* kUserDefaultsTodayExtensionLastTimeZone = "today_extension_timezone";
/// Notation of coordinates (integer, see CoordinateSystem).
inline constexpr const char* kUserDefaultsCoordinateSystem = "global_coordinate_system";
/// Whether the main application draws geodesic lines (boolean).
inline constexpr const char* kUserDefaultsUseGeodesicLines = "global_use_geodesics";

/// A store of settings by key: booleans, integers, doubles and strings.
class NSUserDefaults {
 public:
  using Value = std::variant<bool, std::int64_t, double, std::string>;
  using Dictionary = std::map<std::string, Value>;

  virtual ~NSUserDefaults() = default;

  virtual std::optional<Value> objectForKey(const std::string& key) const = 0;
  /// Nothing removes the key.
  virtual void setObject(const std::optional<Value>& value, const std::string& forKey) = 0;
  virtual Dictionary dictionaryRepresentation() const = 0;
  /// What `body` reads and writes belongs together: in a store that others share no other process,
  /// thread or object writes in between, and they see all of it or nothing. May be nested.
  virtual void atomically(const std::function<void()>& body) { body(); }
  /// Makes what was written visible to other processes. False when that failed.
  virtual bool synchronize() = 0;

  // Typed readers. An absent key, or a value that has no such reading, is false, 0 or nothing.

  bool boolForKey(const std::string& key) const;
  std::int64_t integerForKey(const std::string& key) const;
  double doubleForKey(const std::string& key) const;
  std::optional<std::string> stringForKey(const std::string& key) const;

  void setBool(bool value, const std::string& forKey) { setObject(value, forKey); }
  void setInteger(std::int64_t value, const std::string& forKey) { setObject(value, forKey); }
  void setDouble(double value, const std::string& forKey) { setObject(value, forKey); }

  /// The suite of the application group, shared with the main application, or null when there is
  /// none. Then every reader finds nothing and every writer does nothing.
  static NSUserDefaults* lumenquestUserDefaults();
  /// The application's own settings of older versions, or null.
  static NSUserDefaults* standardUserDefaults();

  /// Whether the older settings were copied into the suite.
  static bool hasMigratedDefault();
  /// Copies them, once: every key, over what the suite holds. Run by the main application only.
  static void migrateUserDefaultsIfNeccessary();
};

/// Settings that live as long as the process.
class InMemoryUserDefaults final : public NSUserDefaults {
 public:
  std::optional<Value> objectForKey(const std::string& key) const override;
  void setObject(const std::optional<Value>& value, const std::string& forKey) override;
  Dictionary dictionaryRepresentation() const override;
  bool synchronize() override { return true; }

 private:
  mutable std::mutex mutex_;
  Dictionary values_;
};

/// Title and time-zone identifier of a place, as far as they are known.
struct SavedPlace {
  std::optional<std::string> address;
  std::optional<std::string> timeZone;

  bool operator==(const SavedPlace&) const = default;
};

/// The last known place in the shared suite.
class SavedLocation {
 public:
  static void save(CLLocationCoordinate2D coordinate);
  /// Nothing unless both coordinates are there; 0 is a coordinate like any other.
  static std::optional<CLLocation> load();

  /// An absent part removes its key.
  static void savePlace(const SavedPlace& place);
  static SavedPlace readPlace();
  /// Both as they stood at one moment: other processes save places, too.
  static std::pair<std::optional<CLLocation>, SavedPlace> loadWithPlace();
  /// Nobody else saves between what `body` does.
  static void atomically(const std::function<void()>& body);

  /// Takes a geocoder's answer for a location: the first placemark's title and zone are saved. On
  /// failure both keys are removed. Where there is no title the coordinate's text is handed on.
  static SavedPlace saveGeocoded(const std::vector<CLPlacemark>& placemarks, bool failed,
                                 const CLLocation& location);
  /// The place of such an answer, nothing saved.
  static SavedPlace geocodedPlace(const std::vector<CLPlacemark>& placemarks, bool failed,
                                  const CLLocation& location);
};

}  // namespace lumenquest::platform
