#pragma once

#include <memory>

#include "platform/cl_location_manager.h"
#include "platform/services.h"

namespace lumenquest::adapters {

/// A device that stands where it is told to: for machines without location services, and for trying
/// things out. Always allowed, always found.
class FixedLocationService final : public platform::LocationService {
 public:
  FixedLocationService(platform::CLLocationCoordinate2D coordinate,
                       std::shared_ptr<platform::MainQueue> mainQueue);
  std::unique_ptr<platform::CLLocationManager> locationManager() override;

 private:
  platform::CLLocationCoordinate2D coordinate_;
  std::shared_ptr<platform::MainQueue> mainQueue_;
};

}  // namespace lumenquest::adapters
