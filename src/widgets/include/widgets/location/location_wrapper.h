#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/cl_location_manager.h"
#include "widgets/intents/location_selector_intent.h"

namespace lumenquest::widgets {

/// Where the samples of the galleries are, and whoever has no position at all.
inline constexpr platform::CLLocationCoordinate2D kSampleCoordinate{40.0, 3.836187};
inline constexpr const char* kSampleTimeZone = "Europe/Madrid";
/// Its name, in the user's language.
std::string samplePlaceName();

struct NewLocation {
  platform::CLLocation location;
};
struct LocationError {
  platform::NSError error;
};
struct LocationChangeAuthorization {};

/// What a location manager reports.
using LocationEvent = std::variant<NewLocation, LocationError, LocationChangeAuthorization>;

/// A fix of the location manager is as good as a new one for so long, seconds.
inline constexpr double kCachedFixLifetime = 600.0;
/// Within so many metres a place keeps its title.
inline constexpr double kSamePlaceDistance = 1000.0;

/// Whether a configuration asks for the device's own position: it names no place, or the entry that
/// stands for wherever the device is.
bool wantsCurrentLocation(const LocationSelectorIntent* intent);

/// Finds the place that a widget is for: the configured one, or the device's position, or the last
/// known one from the shared settings. Everything happens on the main queue.
class LocationWrapper final : public platform::CLLocationManagerDelegate,
                              public std::enable_shared_from_this<LocationWrapper> {
 public:
  using Handler = std::function<void(const LocationEvent& event)>;
  using ErrorReporter = std::function<void(const std::string& description)>;
  /// Place, its title and its time-zone identifier, as far as they are known.
  using Completion = std::function<void(const std::optional<platform::CLLocation>& location,
                                        const std::optional<std::string>& address,
                                        const std::optional<std::string>& timeZone)>;

  static std::shared_ptr<LocationWrapper> create();

  /// The manager's last position, else the sample place.
  platform::CLLocation currentOrDefaultLocation();

  /// Reports a position no older than kCachedFixLifetime to the handler, at once or later, or why
  /// there is none. Replaces the handler of an earlier request. While the user has not decided, or
  /// widgets may not ask, nothing happens: the change of authorization will be reported.
  void requestLocation(Handler handler);

  /// Finds the place for a configuration, which may be null. `completion` is called once; the
  /// status holds what the user allows by then (a configured place needs no permission). While he
  /// has not decided yet the call may stay unanswered. A place found is saved as the last known
  /// one, and its title and zone are looked up unless it lies near the one before. What answers a
  /// call also answers the earlier ones that still wait. Calls that wait for the device go with
  /// this object, so that a completion must not own it.
  void getLocation(const LocationSelectorIntent* intent, ErrorReporter errorReporter,
                   std::shared_ptr<platform::CLAuthorizationStatus> status, Completion completion);

  // The manager's reports, passed on to the handler.

  void didUpdateLocations(const std::vector<platform::CLLocation>& locations) override;
  void didFailWithError(const platform::NSError& error) override;
  void locationManagerDidChangeAuthorization() override;

  std::unique_ptr<platform::CLLocationManager> locationManager;
  /// Gets the next event.
  Handler completionHandler;

 private:
  struct Request;

  LocationWrapper() = default;
  void makeManager();
  void report(const LocationEvent& event);
  void handle(const LocationEvent& event, const std::shared_ptr<Request>& latest);

  /// The calls of getLocation that asked the device, in their order; the answered ones go at the
  /// next call.
  std::vector<std::shared_ptr<Request>> waiting_;
};

}  // namespace lumenquest::widgets
