#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/core_location.h"
#include "platform/ns_error.h"

namespace lumenquest::adapters {

/// Whether two names are the same to a search: without case, accents and punctuation.
bool isSameName(const std::string& a, const std::string& b);
/// Whether a name goes on from a beginning, compared in the same way.
bool isBeginningOfName(const std::string& beginning, const std::string& name);

/// The gazetteer's file is missing, damaged or of another version. what() is one line for the log.
struct GazetteerError : std::runtime_error {
  explicit GazetteerError(platform::NSError cause)
      : std::runtime_error(cause.description()), error(std::move(cause)) {}
  platform::NSError error;
};

/// The world's places of more than a thousand people, in a file made at build time; needs no
/// network. Places, their areas and zones are GeoNames' (CC BY 4.0); countries are in the user's
/// language. May be used from several threads.
class Gazetteer final {
 public:
  /// Opens the file for reading. Throws GazetteerError when it is missing or is no gazetteer of
  /// this version. `locale` is an identifier as localeIdentifier() gives it.
  Gazetteer(const std::string& path, const std::string& locale);
  ~Gazetteer();

  /// At most one placemark, of the nearest place within 30 km by the great circle: its locality,
  /// administrative area, country and time zone, at the location that was asked for. Farther away
  /// nothing is said, as a place half an hour's drive off is still how people call a spot in the
  /// country, and one beyond may lie across a sea, a range or a border. None for an invalid
  /// coordinate. Throws GazetteerError when the file turns out to be damaged.
  std::vector<platform::CLPlacemark> reverseGeocodeLocation(const platform::CLLocation& location);

  /// Words of a name, the last one perhaps unfinished; then, if wanted, words of its administrative
  /// area, its country, or both. Case, accents and punctuation do not matter. Names that are
  /// exactly the words come first, then names that begin with them, then names that contain them;
  /// within each, the place of most people first. At most ten. Throws as above.
  std::vector<platform::CLPlacemark> geocodeAddressString(const std::string& address);

  /// The zone of the nearest place within 1000 km; on the open ocean beyond, the nautical zone of
  /// the longitude ("Etc/GMT+9"). None for an invalid coordinate. Throws as above.
  std::optional<platform::NSTimeZone> timeZoneAt(platform::CLLocationCoordinate2D coordinate);

 private:
  class Implementation;

  /// Does the work; a failure of the file becomes a GazetteerError.
  template <typename Work>
  auto Guard(const Work& work) const;

  std::string path_;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace lumenquest::adapters
