#include "adapters/geographiclib_geodesy.h"

#include <GeographicLib/Geodesic.hpp>

namespace lumenquest::adapters {

double GeographicLibGeodesy::distance(platform::CLLocationCoordinate2D from,
                                      platform::CLLocationCoordinate2D to) {
  double metres = 0.0;
  GeographicLib::Geodesic::WGS84().Inverse(from.latitude, from.longitude, to.latitude, to.longitude,
                                           metres);
  return metres;
}

}  // namespace lumenquest::adapters
