#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/core_location.h"
#include "platform/ns_error.h"

namespace lumenquest::platform {

/// Finds the place of a coordinate and the coordinates of a place. Requests return at once; each is
/// answered exactly once, later and on the main queue, by its completion.
class Geocoder {
 public:
  /// The placemarks, or none and what went wrong. That nothing was found is no error.
  using Completion =
      std::function<void(std::vector<CLPlacemark> placemarks, std::optional<NSError> error)>;

  virtual ~Geocoder() = default;

  /// The placemarks of a location, the best first; none far from anything known.
  virtual void reverseGeocodeLocation(const CLLocation& location, Completion completion) = 0;

  /// The placemarks that a text as people type it may mean, best known first.
  virtual void geocodeAddressString(const std::string& address, Completion completion) = 0;
};

}  // namespace lumenquest::platform
