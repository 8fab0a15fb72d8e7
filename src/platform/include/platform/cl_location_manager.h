#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/core_location.h"
#include "platform/ns_error.h"

namespace lumenquest::platform {

/// What the user has allowed.
enum class CLAuthorizationStatus : std::int32_t {
  notDetermined = 0,
  restricted = 1,
  denied = 2,
  authorizedAlways = 3,
  authorizedWhenInUse = 4,
};

/// What the position is wanted for.
enum class CLActivityType { other = 1, otherNavigation = 4 };

/// Is told on the main queue what a location manager finds out.
class CLLocationManagerDelegate {
 public:
  virtual ~CLLocationManagerDelegate() = default;
  virtual void didUpdateLocations(const std::vector<CLLocation>& locations) = 0;
  virtual void didFailWithError(const NSError& error) = 0;
  virtual void locationManagerDidChangeAuthorization() = 0;
};

/// Finds the device's position. Lives on the main queue.
class CLLocationManager {
 public:
  virtual ~CLLocationManager() = default;

  virtual CLAuthorizationStatus authorizationStatus() const = 0;
  virtual bool isAuthorizedForWidgetUpdates() const = 0;
  /// The last position found, with the time at which it was; absent before the first one.
  virtual std::optional<CLLocation> location() const = 0;
  /// Asks for one position. The delegate is told later of it, or of the failure to find one.
  virtual void requestLocation() = 0;

  void setDelegate(const std::weak_ptr<CLLocationManagerDelegate>& delegate) {
    delegate_ = delegate;
  }
  std::shared_ptr<CLLocationManagerDelegate> delegate() const { return delegate_.lock(); }

  CLActivityType activityType = CLActivityType::other;

 private:
  std::weak_ptr<CLLocationManagerDelegate> delegate_;
};

/// Makes location managers.
class LocationService {
 public:
  virtual ~LocationService() = default;
  virtual std::unique_ptr<CLLocationManager> locationManager() = 0;
};

}  // namespace lumenquest::platform
