#pragma once

#include <chrono>
#include <memory>

#include "platform/cl_location_manager.h"

namespace lumenquest::adapters {

/// The device's position from the GeoClue service, over D-Bus on GLib's main loop.
///
/// The service does not tell beforehand what the user allows: widgets may ask until it refuses.
/// After a refusal the status is denied, for five minutes; then somebody may have thought better of
/// it. Where there is no service, or no position within half a minute, requests fail.
class GeoclueLocationService final : public platform::LocationService {
 public:
  explicit GeoclueLocationService(std::chrono::milliseconds timeOut = std::chrono::seconds(30))
      : timeOut_(timeOut) {}
  std::unique_ptr<platform::CLLocationManager> locationManager() override;

 private:
  std::chrono::milliseconds timeOut_;
};

}  // namespace lumenquest::adapters
