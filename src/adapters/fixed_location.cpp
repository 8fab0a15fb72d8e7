#include "adapters/fixed_location.h"

#include <utility>

namespace lumenquest::adapters {

namespace {

using platform::CLLocation;

class FixedManager final : public platform::CLLocationManager {
 public:
  FixedManager(platform::CLLocationCoordinate2D coordinate,
               std::shared_ptr<platform::MainQueue> mainQueue)
      : coordinate_(coordinate), mainQueue_(std::move(mainQueue)) {}

  platform::CLAuthorizationStatus authorizationStatus() const override {
    return platform::CLAuthorizationStatus::authorizedWhenInUse;
  }
  bool isAuthorizedForWidgetUpdates() const override { return true; }
  std::optional<CLLocation> location() const override {
    return CLLocation{coordinate_, platform::NSDate::date()};
  }
  void requestLocation() override {
    mainQueue_->async([toldDelegate = std::weak_ptr(delegate()), location = *location()] {
      if (const auto told = toldDelegate.lock()) told->didUpdateLocations({location});
    });
  }

 private:
  platform::CLLocationCoordinate2D coordinate_;
  std::shared_ptr<platform::MainQueue> mainQueue_;
};

}  // namespace

FixedLocationService::FixedLocationService(platform::CLLocationCoordinate2D coordinate,
                                           std::shared_ptr<platform::MainQueue> mainQueue)
    : coordinate_(coordinate), mainQueue_(std::move(mainQueue)) {}

std::unique_ptr<platform::CLLocationManager> FixedLocationService::locationManager() {
  return std::make_unique<FixedManager>(coordinate_, mainQueue_);
}

}  // namespace lumenquest::adapters
