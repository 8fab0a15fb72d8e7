#include "platform/core_location.h"

#include <cmath>
#include <initializer_list>

#include "platform/localized_strings.h"
#include "platform/services.h"

namespace lumenquest::platform {

namespace {

using Text = std::optional<std::string>;

/// Metres: in a larger region an area of interest says nothing of the place.
constexpr double kPointOfInterestRadius = 300.0;

Text FirstPresent(std::initializer_list<const Text*> texts) {
  for (const Text* text : texts) {
    if (*text) return *text;
  }
  return std::nullopt;
}

/// "place, within", or the place alone where that is not known.
std::string Joined(const Text& place, const Text& within) {
  return within ? stringWithFormat("%@, %@", {place, within}) : place.value_or("");
}

}  // namespace

double CLLocation::distanceFromLocation(const CLLocation& other) const {
  return Services::current().geodesy().distance(coordinate, other.coordinate);
}

bool CLLocationCoordinate2D::isValid() const {
  return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 180.0;
}

const std::string* CLPlacemark::pointOfInterest() const {
  const bool applies =
      !areasOfInterest.empty() && region && region->radius < kPointOfInterestRadius;
  return applies ? &areasOfInterest.front() : nullptr;
}

Text CLPlacemark::cityTitle() const {
  return FirstPresent({&locality, &administrativeArea, &name, &country, &ocean});
}

Text CLPlacemark::shortTitle() const {
  if (locality && country) return Joined(locality, country);
  if (administrativeArea && country) return Joined(administrativeArea, country);
  return FirstPresent({&country, &ocean});
}

Text CLPlacemark::title() const {
  if (thoroughfare) {
    return subThoroughfare ? stringWithFormat("%@ %@", {thoroughfare, subThoroughfare})
                           : *thoroughfare;
  }
  if (const std::string* point = pointOfInterest()) return *point;
  if (name) return name;
  if (locality) {
    const bool tellsMore = subAdministrativeArea && *subAdministrativeArea != *locality;
    return tellsMore ? Joined(locality, subAdministrativeArea) : *locality;
  }
  if (subAdministrativeArea) {
    const bool tellsMore = administrativeArea && *administrativeArea != *subAdministrativeArea;
    return tellsMore ? Joined(subAdministrativeArea, administrativeArea) : *subAdministrativeArea;
  }
  return FirstPresent({&administrativeArea, &country, &ocean});
}

Text CLPlacemark::subtitle() const {
  if (!name && thoroughfare) {
    if (!locality) return std::nullopt;
    if (administrativeArea && *administrativeArea != *locality) {
      return Joined(locality, administrativeArea);
    }
    return country ? Text(Joined(locality, country)) : std::nullopt;
  }
  if (pointOfInterest() != nullptr) return locality ? Joined(locality, country) : country;
  if (name) {
    if (locality && *locality != *name) return Joined(locality, country);
    if (!administrativeArea || *administrativeArea == *name) return country;
    return Joined(administrativeArea, country);
  }
  if (!locality) {
    return subAdministrativeArea || administrativeArea ? country : std::nullopt;
  }
  if (!administrativeArea || *administrativeArea == *locality) return country;
  return Joined(administrativeArea, country);
}

}  // namespace lumenquest::platform
