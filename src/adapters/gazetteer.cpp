#include "adapters/gazetteer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <mutex>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "country_names.h"
#include "gazetteer_schema.h"
#include "search_key.h"
#include "sqlite_connection.h"

namespace lumenquest::adapters {

namespace {

using platform::CLLocation;
using platform::CLLocationCoordinate2D;
using platform::CLPlacemark;
using platform::NSTimeZone;

constexpr double kPi = 3.141592653589793;
constexpr double kRadians = kPi / 180.0;
/// IUGG mean radius R1, km.
constexpr double kEarthRadius = 6371.0088;

/// km, see the header.
constexpr double kPlaceReach = 30.0;
/// km; the nearest place is looked for in ever wider circles, the last as wide as the header says.
constexpr std::array<double, 4> kZoneReaches{30.0, 120.0, 400.0, 1000.0};

constexpr std::size_t kMostResults = 10;
/// No name with its area and country has more words.
constexpr std::size_t kMostWords = 16;
/// Bytes; what comes after could not belong to such words.
constexpr std::size_t kMostBytes = 1024;
/// Fewer letters begin too many countries and areas to mean one of them.
constexpr std::size_t kLeastAreaPrefix = 3;

/// km. The haversine form keeps its accuracy down to metres.
double GreatCircleDistance(CLLocationCoordinate2D a, CLLocationCoordinate2D b) {
  const double sinLatitude = std::sin((b.latitude - a.latitude) * kRadians / 2.0);
  const double sinLongitude = std::sin((b.longitude - a.longitude) * kRadians / 2.0);
  const double h = sinLatitude * sinLatitude + std::cos(a.latitude * kRadians) *
                                                   std::cos(b.latitude * kRadians) * sinLongitude *
                                                   sinLongitude;
  return 2.0 * kEarthRadius * std::asin(std::sqrt(std::clamp(h, 0.0, 1.0)));
}

/// Degrees; west is never beyond east.
struct Box {
  double south;
  double north;
  double west;
  double east;
};

/// The boxes, one or two, that hold all points within a distance (km) of a centre.
std::vector<Box> BoxesAround(CLLocationCoordinate2D center, double distance) {
  const double angle = distance / kEarthRadius;
  const double south = center.latitude - angle / kRadians;
  const double north = center.latitude + angle / kRadians;
  // A circle that holds a pole meets every meridian.
  if (south <= -90.0 || north >= 90.0) return {{south, north, -180.0, 180.0}};
  const double sine = std::sin(angle) / std::cos(center.latitude * kRadians);
  const double width = std::asin(std::min(sine, 1.0)) / kRadians;
  const double west = center.longitude - width;
  const double east = center.longitude + width;
  if (west < -180.0) return {{south, north, -180.0, east}, {south, north, west + 360.0, 180.0}};
  if (east > 180.0) return {{south, north, west, 180.0}, {south, north, -180.0, east - 360.0}};
  return {{south, north, west, east}};
}

/// Which part of the names the words have to be.
enum class Match { kBeginning, kPhrase, kAnyOrder };

/// A row of the places' table.
struct Place {
  std::int64_t id = 0;
  std::string name;
  CLLocationCoordinate2D coordinate;
  std::string country;
  std::int64_t area = 0;
  std::string areaName;
  std::string subAreaName;
  std::string zone;
};

/// Countries and administrative areas that a place may lie in; all of the world when empty.
struct Region {
  std::set<std::string> countries;
  std::set<std::int64_t> areas;

  bool isEmpty() const { return countries.empty() && areas.empty(); }
  bool holds(const Place& place) const {
    return isEmpty() || countries.contains(place.country) || areas.contains(place.area);
  }
};

/// Words of a search, parted into those of the name and those of the region.
struct Reading {
  std::vector<std::string> name;
  Region region;
};

}  // namespace

class Gazetteer::Implementation {
 public:
  Implementation(const std::string& path, std::string locale)
      : locale_(std::move(locale)),
        database_(OpenFile(path)),
        box_(database_,
             "SELECT place.id, latitude, longitude FROM place_box JOIN place USING (id) "
             "WHERE north >= ?1 AND south <= ?2 AND east >= ?3 AND west <= ?4",
             kKept),
        place_(database_,
               "SELECT place.name, latitude, longitude, place.country, ifnull(admin1, 0), "
               "ifnull(admin1.name, ''), admin2_name, zone.name FROM place LEFT JOIN admin1 ON "
               "admin1.id = admin1 JOIN zone ON zone.id = zone WHERE place.id = ?",
               kKept),
        exact_(database_, "SELECT place FROM name_key WHERE key = ? ORDER BY place", kKept),
        search_(database_,
                "SELECT rowid FROM place_search WHERE place_search MATCH ? ORDER BY rowid LIMIT ?",
                kKept),
        areas_(database_,
               "SELECT admin1.id, country FROM admin1_key JOIN admin1 ON admin1.id = admin1 "
               "WHERE admin1_key.key >= ?1 AND admin1_key.key < ?2",
               kKept) {}

  std::vector<CLPlacemark> Reverse(const CLLocation& location) {
    const std::scoped_lock lock(mutex_);
    const auto id = Nearest(location.coordinate, kPlaceReach);
    if (!id) return {};
    const Place place = ReadPlace(*id);
    CLPlacemark placemark = Placemark(place);
    placemark.location = location;
    return {placemark};
  }

  std::optional<NSTimeZone> TimeZoneAt(CLLocationCoordinate2D coordinate) {
    const std::scoped_lock lock(mutex_);
    if (!coordinate.isValid()) return std::nullopt;
    for (const double reach : kZoneReaches) {
      if (const auto id = Nearest(coordinate, reach)) return NSTimeZone{ReadPlace(*id).zone};
    }
    // Signs are those of POSIX: west of Greenwich is positive.
    const int hours = static_cast<int>(std::lround(-coordinate.longitude / 15.0));
    if (hours == 0) return NSTimeZone{"Etc/GMT"};
    return NSTimeZone{(hours > 0 ? "Etc/GMT+" : "Etc/GMT") + std::to_string(hours)};
  }

  std::vector<CLPlacemark> Forward(const std::string& address) {
    const std::scoped_lock lock(mutex_);
    // A character that is cut in two separates words, no more.
    const auto words = searchWords(std::string_view(address).substr(0, kMostBytes));
    if (words.empty() || words.size() > kMostWords) return {};

    std::vector<Reading> readings{{words, {}}};
    for (std::size_t count = words.size() - 1; count > 0; --count) {
      const std::span<const std::string> all(words);
      Region region = RegionCalled(all.subspan(count));
      if (region.isEmpty()) continue;
      readings.push_back(
          {{words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count)}, std::move(region)});
    }

    std::vector<Place> found;
    for (const Reading& reading : readings) FindExact(reading, found);
    for (const Match match : {Match::kBeginning, Match::kPhrase, Match::kAnyOrder}) {
      for (const Reading& reading : readings) FindWords(reading, match, found);
    }

    std::vector<CLPlacemark> placemarks;
    for (const Place& place : found) {
      CLPlacemark placemark = Placemark(place);
      placemark.name = place.name;
      placemark.location = CLLocation{place.coordinate};
      if (!place.subAreaName.empty()) placemark.subAdministrativeArea = place.subAreaName;
      placemarks.push_back(std::move(placemark));
    }
    return placemarks;
  }

 private:
  static constexpr auto kKept = SqliteStatement::Life::persistent;

  static SqliteConnection OpenFile(const std::string& path) {
    // Nobody writes the file while it is in use, so no locks and no journal are looked for.
    SqliteConnection connection(path, SqliteConnection::Mode::immutable);
    if (connection.QueryInteger("PRAGMA application_id") != kGazetteerApplicationId) {
      throw SqliteFailure(SQLITE_NOTADB, "it holds something else");
    }
    if (connection.QueryInteger("PRAGMA user_version") != kGazetteerVersion) {
      throw SqliteFailure(SQLITE_NOTADB, "of another version; build the resources anew");
    }
    return connection;
  }

  std::optional<std::int64_t> Nearest(CLLocationCoordinate2D coordinate, double reach) {
    if (!coordinate.isValid()) return std::nullopt;
    std::optional<std::int64_t> nearest;
    double least = reach;
    for (const Box& box : BoxesAround(coordinate, reach)) {
      box_.Start(box.south, box.north, box.west, box.east);
      while (box_.Step()) {
        const double distance = GreatCircleDistance(coordinate, {box_.Number(1), box_.Number(2)});
        const std::int64_t id = box_.Integer(0);
        // Of two at the same spot, the one with more people, whatever order they come in.
        if (distance < least || (distance == least && (!nearest || id < *nearest))) {
          least = distance;
          nearest = id;
        }
      }
    }
    return nearest;
  }

  Place ReadPlace(std::int64_t id) {
    if (!place_.Start(id).Step()) {
      throw SqliteFailure(SQLITE_CORRUPT, "an index names a place that is not there");
    }
    return {id,
            place_.Text(0),
            {place_.Number(1), place_.Number(2)},
            place_.Text(3),
            place_.Integer(4),
            place_.Text(5),
            place_.Text(6),
            place_.Text(7)};
  }

  CLPlacemark Placemark(const Place& place) const {
    CLPlacemark placemark;
    placemark.locality = place.name;
    if (!place.areaName.empty()) placemark.administrativeArea = place.areaName;
    const std::string country = countryName(place.country, locale_);
    if (!country.empty()) placemark.country = country;
    placemark.timeZone = NSTimeZone{place.zone};
    placemark.postalAddress = platform::PostalAddress{
        placemark.locality, placemark.administrativeArea, placemark.country};
    return placemark;
  }

  const CountryNames& Countries() {
    // Half a thousand names in several languages: only for those who search.
    if (!countries_) countries_.emplace(locale_);
    return *countries_;
  }

  /// Adds the administrative areas whose key is, or begins with, `key`; those of some countries
  /// alone unless `within` is empty.
  void AddAreas(const std::string& key, bool isPrefix, const std::vector<std::string>& within,
                Region& region) {
    // Keys are UTF-8, where no byte is 0xFF; the smallest text after "key" is "key" and a NUL.
    const std::string end = isPrefix ? key + '\xFF' : key + '\0';
    areas_.Start(key, end);
    while (areas_.Step()) {
      if (within.empty() ||
          std::find(within.begin(), within.end(), areas_.Text(1)) != within.end()) {
        region.areas.insert(areas_.Integer(0));
      }
    }
  }

  /// What the words call: a country, an administrative area, or an area and its country. The last
  /// word may be unfinished where they call nothing as they stand.
  Region RegionCalled(std::span<const std::string> words) {
    const std::vector<std::string> list(words.begin(), words.end());
    const std::string key = joinedWords(list);
    Region region;
    for (const bool isPrefix : {false, true}) {
      if (isPrefix && list.back().size() < kLeastAreaPrefix) break;
      const auto countriesCalled = [&](const std::string& text) {
        return isPrefix ? Countries().beginningWith(text) : Countries().called(text);
      };
      for (std::string& code : countriesCalled(key)) region.countries.insert(std::move(code));
      AddAreas(key, isPrefix, {}, region);
      for (std::size_t count = 1; count < list.size(); ++count) {
        const auto within = countriesCalled(joinedWords(list, count));
        if (!within.empty()) AddAreas(joinedWords(list, 0, count), false, within, region);
      }
      if (!region.isEmpty()) break;
    }
    return region;
  }

  void Add(std::int64_t id, const Region& region, std::vector<Place>& found) {
    const bool isNew = std::none_of(found.begin(), found.end(),
                                    [id](const Place& place) { return place.id == id; });
    if (!isNew) return;
    Place place = ReadPlace(id);
    if (region.holds(place)) found.push_back(std::move(place));
  }

  void FindExact(const Reading& reading, std::vector<Place>& found) {
    exact_.Start(joinedWords(reading.name));
    while (found.size() < kMostResults && exact_.Step()) {
      Add(exact_.Integer(0), reading.region, found);
    }
  }

  void FindWords(const Reading& reading, Match match, std::vector<Place>& found) {
    if (found.size() >= kMostResults) return;
    if (match == Match::kAnyOrder && reading.name.size() < 2) return;
    // Words hold letters and digits only; quoted, none of them is an operator.
    std::string query = "names : (\"";
    if (match == Match::kBeginning) query += std::string(kNameMark) + " ";
    query +=
        match == Match::kAnyOrder ? JoinedBy(reading.name, "\" AND \"") : joinedWords(reading.name);
    query += "\" *)";
    if (!reading.region.isEmpty()) {
      std::vector<std::string> marks;
      for (const std::string& country : reading.region.countries) marks.push_back("c" + country);
      for (const std::int64_t area : reading.region.areas) {
        marks.push_back("a" + std::to_string(area));
      }
      query += " AND region : (\"" + JoinedBy(marks, "\" OR \"") + "\")";
    }
    // Those that were found already may come again.
    search_.Start(query, static_cast<std::int64_t>(kMostResults + found.size()));
    while (found.size() < kMostResults && search_.Step()) {
      Add(search_.Integer(0), reading.region, found);
    }
  }

  static std::string JoinedBy(const std::vector<std::string>& words, const char* separator) {
    std::string joined;
    for (const std::string& word : words) {
      if (!joined.empty()) joined += separator;
      joined += word;
    }
    return joined;
  }

  std::mutex mutex_;
  std::string locale_;
  SqliteConnection database_;
  SqliteStatement box_;
  SqliteStatement place_;
  SqliteStatement exact_;
  SqliteStatement search_;
  SqliteStatement areas_;
  std::optional<CountryNames> countries_;
};

template <typename Work>
auto Gazetteer::Guard(const Work& work) const {
  try {
    return work();
  } catch (const SqliteFailure& failure) {
    throw GazetteerError(
        {"SQLite", failure.code, "gazetteer_error_unusable", {path_}, failure.what()});
  }
}

Gazetteer::Gazetteer(const std::string& path, const std::string& locale)
    : path_(path),
      implementation_(Guard([&] { return std::make_unique<Implementation>(path, locale); })) {}

Gazetteer::~Gazetteer() = default;

std::vector<CLPlacemark> Gazetteer::reverseGeocodeLocation(const CLLocation& location) {
  return Guard([&] { return implementation_->Reverse(location); });
}

std::vector<CLPlacemark> Gazetteer::geocodeAddressString(const std::string& address) {
  return Guard([&] { return implementation_->Forward(address); });
}

std::optional<NSTimeZone> Gazetteer::timeZoneAt(CLLocationCoordinate2D coordinate) {
  return Guard([&] { return implementation_->TimeZoneAt(coordinate); });
}

bool isSameName(const std::string& a, const std::string& b) {
  return searchWords(a) == searchWords(b);
}

bool isBeginningOfName(const std::string& beginning, const std::string& name) {
  return joinedWords(searchWords(name)).starts_with(joinedWords(searchWords(beginning)));
}

}  // namespace lumenquest::adapters
