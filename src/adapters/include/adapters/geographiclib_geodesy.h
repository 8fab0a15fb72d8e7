#pragma once

#include "platform/services.h"

namespace lumenquest::adapters {

/// Geodesics by GeographicLib, good to nanometres.
class GeographicLibGeodesy final : public platform::GeodesyService {
 public:
  double distance(platform::CLLocationCoordinate2D from,
                  platform::CLLocationCoordinate2D to) override;
};

}  // namespace lumenquest::adapters
