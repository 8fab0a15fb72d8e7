#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/assertion.h"
#include "platform/cl_location_manager.h"
#include "platform/drawing.h"
#include "platform/formatters.h"
#include "platform/geocoder.h"
#include "platform/ns_calendar.h"
#include "platform/ns_date.h"
#include "platform/ns_formatter.h"
#include "platform/ns_time_zone.h"
#include "platform/ns_user_defaults.h"
#include "platform/object_store.h"

namespace lumenquest::platform {

class Database;

/// Tells the present moment. Nothing else in the system does.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual NSDate now() = 0;
};

/// The time-zone database and the device's place in it.
class TimeZoneService {
 public:
  virtual ~TimeZoneService() = default;
  /// The device's zone.
  virtual NSTimeZone localTimeZone() = 0;
  /// Whether the database has a zone of this identifier.
  virtual bool isKnown(const std::string& name) = 0;
};

/// Makes calendars.
class CalendarService {
 public:
  virtual ~CalendarService() = default;
  /// The user's calendar, with the device's zone and first weekday, as they are now.
  virtual std::unique_ptr<NSCalendar> currentCalendar() = 0;
  /// One in a given zone.
  virtual std::unique_ptr<NSCalendar> gregorianCalendar(const NSTimeZone& zone) = 0;
};

/// Makes formatters. Locales are identifiers such as "de_AT"; the empty one is the current locale.
class FormatterService {
 public:
  virtual ~FormatterService() = default;
  virtual std::unique_ptr<NSDateFormatter> dateFormatter(const std::string& locale,
                                                         NSDateFormatterStyle dateStyle,
                                                         NSDateFormatterStyle timeStyle) = 0;
  virtual std::unique_ptr<NSNumberFormatter> numberFormatter(const std::string& locale,
                                                             const NumberStyle& style) = 0;
  /// The current locale's pattern for a template such as "dMMM".
  virtual std::string dateFormatFromTemplate(const std::string& pattern) = 0;
};

/// The localised texts.
class StringTables {
 public:
  virtual ~StringTables() = default;
  /// The text of a key in the current locale, or the empty text.
  virtual std::string localizedString(const std::string& key, const std::string& table) = 0;
};

/// The device's diagnostic log.
class Log {
 public:
  virtual ~Log() = default;
  virtual void write(const std::string& message) = 0;
};

/// The group of the main application and its widgets, whose folder holds all that they share.
inline constexpr const char* kApplicationGroup = "group.lumenquest.lumenquest";

/// The folders of the application.
class FileManager {
 public:
  virtual ~FileManager() = default;
  /// The user's folders for documents of this application, the most private last.
  virtual std::vector<std::filesystem::path> documentDirectories() = 0;
  /// The folder that the applications of a group share, whether it is there yet or not; absent when
  /// the user has none.
  virtual std::optional<std::filesystem::path> containerOfGroup(const std::string& identifier) = 0;
  /// A file of the application's bundle; absent when it is not there.
  virtual std::optional<std::filesystem::path> resource(const std::string& name,
                                                        const std::string& withExtension) = 0;
};

/// Makes identifiers.
class UUIDService {
 public:
  virtual ~UUIDService() = default;
  /// A new random UUID, in its canonical form with upper-case digits.
  virtual std::string UUIDString() = 0;
};

/// Measures the Earth.
class GeodesyService {
 public:
  virtual ~GeodesyService() = default;
  /// Metres along the geodesic on the WGS-84 ellipsoid.
  virtual double distance(CLLocationCoordinate2D from, CLLocationCoordinate2D to) = 0;
};

/// The queue on which everything runs that touches shared objects.
class MainQueue {
 public:
  virtual ~MainQueue() = default;
  /// Runs the work later, after what was queued before.
  virtual void async(std::function<void()> work) = 0;
};

/// Only the shared calendars are guarded; all else is used from one thread at a time, the main one.
///
/// The one place through which the process-wide objects reach what the platform provides. The
/// application installs its adapters once at start-up; each test installs its own.
class Services {
 public:
  struct Adapters {
    std::shared_ptr<Clock> clock;
    std::shared_ptr<TimeZoneService> timeZones;
    std::shared_ptr<CalendarService> calendars;
    std::shared_ptr<FormatterService> formatters;
    std::shared_ptr<StringTables> strings;
    /// May be null: then every setting reads as absent.
    std::shared_ptr<NSUserDefaults> settings;
    /// The application's own settings of older versions; may be null.
    std::shared_ptr<NSUserDefaults> privateSettings;
    std::shared_ptr<Log> log;
    // The plans database needs these; where nobody asks for it they may be null.
    std::shared_ptr<FileManager> fileManager{};
    std::shared_ptr<ModelService> models{};
    std::shared_ptr<PersistentStoreService> persistentStores{};
    std::shared_ptr<UUIDService> uuids{};
    std::shared_ptr<MainQueue> mainQueue{};
    // The widgets of the sky need these.
    std::shared_ptr<Geocoder> geocoder{};
    std::shared_ptr<LocationService> locations{};
    std::shared_ptr<GeodesyService> geodesy{};
    /// Whoever draws needs these.
    std::shared_ptr<AssetCatalog> assets{};
    std::shared_ptr<TextMeasurer> textMeasurer{};
  };

  ~Services();
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;

  /// Replaces the services, and with them the shared objects made from earlier ones. Not to be
  /// called while anything computes.
  static void install(Adapters adapters);

  /// The services installed. Asking before they are is a programming error.
  static Services& current();

  Clock& clock() { return *adapters_.clock; }
  TimeZoneService& timeZones() { return *adapters_.timeZones; }
  CalendarService& calendars() { return *adapters_.calendars; }
  FormatterService& formatters() { return *adapters_.formatters; }
  StringTables& strings() { return *adapters_.strings; }
  NSUserDefaults* settings() { return adapters_.settings.get(); }
  NSUserDefaults* privateSettings() { return adapters_.privateSettings.get(); }
  Log& log() { return *adapters_.log; }
  FileManager& fileManager() { return Given(adapters_.fileManager); }
  ModelService& models() { return Given(adapters_.models); }
  PersistentStoreService& persistentStores() { return Given(adapters_.persistentStores); }
  UUIDService& uuids() { return Given(adapters_.uuids); }
  MainQueue& mainQueue() { return Given(adapters_.mainQueue); }
  LocationService& locations() { return Given(adapters_.locations); }
  GeodesyService& geodesy() { return Given(adapters_.geodesy); }
  AssetCatalog& assets() { return Given(adapters_.assets); }
  TextMeasurer& textMeasurer() { return Given(adapters_.textMeasurer); }
  Geocoder& geocoder() { return Given(adapters_.geocoder); }

  // Objects shared by the process, made when first asked for.

  NSCalendar& cachedCalendar();
  NSCalendar& gmtCachedCalendar();
  Formatters& sharedFormatters();
  Database& sharedDatabase();

 private:
  explicit Services(Adapters adapters);

  template <typename Service>
  static Service& Given(const std::shared_ptr<Service>& service) {
    LUMENQUEST_ASSERT(service != nullptr);
    return *service;
  }

  Adapters adapters_;
  std::once_flag cachedCalendarOnce_;
  std::once_flag gmtCachedCalendarOnce_;
  std::once_flag formattersOnce_;
  std::unique_ptr<NSCalendar> cachedCalendar_;
  std::unique_ptr<NSCalendar> gmtCachedCalendar_;
  std::unique_ptr<Formatters> formatters_;
  std::once_flag databaseOnce_;
  std::unique_ptr<Database> database_;
};

}  // namespace lumenquest::platform
