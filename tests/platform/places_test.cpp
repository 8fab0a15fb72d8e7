// Geodesy, coordinate texts, place titles and the saved place.

#include <gtest/gtest.h>

#include <GeographicLib/Geodesic.hpp>
#include <array>
#include <cmath>
#include <random>

#include "platform/location_utils.h"
#include "platform/ns_user_defaults.h"
#include "test_services.h"

namespace lumenquest::platform {
namespace {

using testing::TestServices;
using Text = std::optional<std::string>;

TEST(Geodesy, AgainstPublishedValues) {
  // Paris to London: 343.6 km on this sphere.
  const CLLocationCoordinate2D paris{48.8566, 2.3522}, london{51.5074, -0.1278};
  EXPECT_NEAR(LocationUtils::greatCircleDistanceWithSource(paris, london), 343.9, 0.5);
  EXPECT_EQ(LocationUtils::greatCircleDistanceWithSource(paris, paris), 0.0);

  // Geoscience Australia's test line: Flinders Peak to Buninyong, 54,972.271 m at 306°52′05.37″ on
  // GRS80, which differs from WGS-84 by less than a millimetre here.
  const CLLocationCoordinate2D flindersPeak{-37.951033416666666, 144.42486788888889};
  const CLLocationCoordinate2D buninyong = LocationUtils::calculateDerivedPositionFromSource(
      flindersPeak, 54972.271f, static_cast<float>(306.86815833333333));
  // Range and bearing are single precision: 4 mm and 3e-5°, which is 3 cm over there.
  EXPECT_NEAR(buninyong.latitude, -37.652821138888886, 5e-7);
  EXPECT_NEAR(buninyong.longitude, 143.92649552777777, 5e-7);
  EXPECT_EQ(LocationUtils::calculateDerivedPositionFromSource({NAN, 0.0}, 1.0f, 0.0f),
            kCLLocationCoordinate2DInvalid);

  // Against another method altogether, to a millimetre on the ground, all over the Earth; distance
  // and bearing on the sphere likewise, as well as arc cosine and single precision hold them.
  const GeographicLib::Geodesic& wgs84 = GeographicLib::Geodesic::WGS84();
  const GeographicLib::Geodesic sphere(6378137.0, 0.0);
  std::mt19937 random(11);
  std::uniform_real_distribution<double> latitude(-89.0, 89.0), longitude(-180.0, 180.0);
  std::uniform_real_distribution<float> range(1.0f, 1.5e7f), bearing(-360.0f, 360.0f);
  for (int i = 0; i < 2000; ++i) {
    const CLLocationCoordinate2D from{latitude(random), longitude(random)};
    const float metres = range(random), degrees = bearing(random);
    const auto ours = LocationUtils::calculateDerivedPositionFromSource(from, metres, degrees);
    double lat = 0.0, lon = 0.0, apart = 0.0;
    wgs84.Direct(from.latitude, from.longitude, degrees, metres, lat, lon);
    wgs84.Inverse(lat, lon, ours.latitude, ours.longitude, apart);
    ASSERT_LT(apart, 0.001) << from.latitude << ' ' << metres << ' ' << degrees;
    ASSERT_LE(std::fabs(ours.longitude), 180.0);
    double azimuth = 0.0, arrival = 0.0;
    sphere.Inverse(from.latitude, from.longitude, lat, lon, apart, azimuth, arrival);
    ASSERT_NEAR(LocationUtils::greatCircleDistanceWithSource(from, {lat, lon}), apart / 1e3, 1e-3);
    ASSERT_NEAR(
        std::remainder(LocationUtils::initialBearingFrom(from, {lat, lon}) - azimuth, 360.0), 0.0,
        1e-4);
  }

  EXPECT_NEAR(LocationUtils::initialBearingFrom({0, 0}, {0, -10}), 270.0f, 1e-4);
  EXPECT_LT(LocationUtils::initialBearingFrom({0, 0}, {10, -1e-9}), 360.0f);
  EXPECT_NEAR(LocationUtils::distanceToHorizon(2.0f), 5.456f, 1e-3);
}

TEST(Geodesy, CompassPoints) {
  const TestServices services("2024-03-05T12:00:00Z");
  const std::pair<double, const char*> cases[] = {
      {22.5, "north"},  {22.6, "north_east"},  {112.5, "east"},    {112.51, "south_east"},
      {202.5, "south"}, {225.0, "south_west"}, {292.5, "west"},    {337.4, "north_west"},
      {337.5, "north"}, {-10.0, "north"},      {NAN, "north_west"}};
  for (const auto& [bearing, point] : cases) {
    EXPECT_EQ(LocationUtils::cardinalNameForBearing(bearing),
              "<cardinal_point_" + std::string(point) + "_abbr>")
        << bearing;
  }
}

TEST(CoordinateText, InThreeNotations) {
  const TestServices services("2024-03-05T12:00:00Z", "UTC", "de_DE");
  const std::string N = "<cardinal_point_north_abbr>", S = "<cardinal_point_south_abbr>",
                    E = "<cardinal_point_east_abbr>", W = "<cardinal_point_west_abbr>";
  const auto text = [](auto... of) { return LocationUtils::latLonStringWithCoordinate(of...); };
  const CLLocationCoordinate2D place{-33.5, 151.25};
  EXPECT_EQ(text(place, 0), "33,500000°" + S + " 151,250000°" + E);
  EXPECT_EQ(text(place, 1), "33°30'" + S + " 151°15'" + E);
  EXPECT_EQ(text(CLLocationCoordinate2D{1.0 + 2.0 / 60.0 + 3.25 / 3600.0, -0.5}, 2),
            "1°2'3,25\"" + N + " 0°30'0\"" + W);
  // No carry: seconds that round up to 60 are shown as 60.
  EXPECT_EQ(text(CLLocationCoordinate2D{0.0166665, 0.0}, 7), "0°0'60\"" + N + " 0°0'0\"" + E);
  // Halves go up, not to the even neighbour, and a half is what it looks like in decimal.
  EXPECT_EQ(text(CLLocationCoordinate2D{1.0000005, 2.0000025}, 0),
            "1,000001°" + N + " 2,000003°" + E);
  EXPECT_EQ(LocationUtils::decimalLatLonStringWithCoordinate({51.123456789, 0.0}),
            "51.123455, 0.000000");

  // The user's notation, and decimal degrees without one.
  EXPECT_EQ(text(place), text(place, 0));
  for (const auto& [setting, notation] :
       {std::pair<std::int64_t, int>{1, 1}, {-1, 2}, {3, 2}, {std::int64_t{1} << 32, 2}}) {
    services.settings->setInteger(setting, kUserDefaultsCoordinateSystem);
    EXPECT_EQ(text(place), text(place, notation)) << setting;
  }
}

/// What a geocoder knows of a place; what is empty, it does not.
struct Known {
  const char *street = "", *number = "", *poi = "", *name = "", *town = "", *district = "",
             *area = "", *country = "", *ocean = "";
  double radius = 299.0;

  CLPlacemark Placemark() const {
    const auto text = [](const char* given) { return *given == 0 ? Text() : Text(given); };
    CLPlacemark made;
    made.thoroughfare = text(street);
    made.subThoroughfare = text(number);
    if (*poi != 0) made.areasOfInterest = {poi};
    made.name = text(name);
    made.locality = text(town);
    made.subAdministrativeArea = text(district);
    made.administrativeArea = text(area);
    made.country = text(country);
    made.ocean = text(ocean);
    made.region = CLCircularRegion{{}, radius};
    return made;
  }
};

TEST(Placemark, Titles) {
  const struct {
    Known known;
    /// Title, subtitle, short title, town.
    std::array<const char*, 4> titles;
  } cases[] = {
      {{}, {"-", "-", "-", "-"}},
      {{.country = "Iceland"}, {"Iceland", "-", "Iceland", "Iceland"}},
      {{.ocean = "Atlantic"}, {"Atlantic", "-", "Atlantic", "Atlantic"}},
      {{.street = "Main St", .number = "5", .town = "Moab", .area = "Utah", .country = "USA"},
       {"Main St 5", "Moab, Utah", "Moab, USA", "Moab"}},
      // A city that is a state is named once.
      {{.street = "Ring", .town = "Wien", .area = "Wien", .country = "Österreich"},
       {"Ring", "Wien, Österreich", "Wien, Österreich", "Wien"}},
      {{.name = "Wien", .town = "Wien", .area = "Wien", .country = "Österreich"},
       {"Wien", "Österreich", "Wien, Österreich", "Wien"}},
      {{.street = "Ring", .country = "Österreich"}, {"Ring", "-", "Österreich", "Österreich"}},
      // A point of interest counts in a small region only.
      {{.poi = "Arch", .name = "Trail", .town = "Moab", .country = "USA"},
       {"Arch", "Moab, USA", "Moab, USA", "Moab"}},
      {{.poi = "Park", .name = "Trail", .town = "Moab", .country = "USA", .radius = 300.0},
       {"Trail", "Moab, USA", "Moab, USA", "Moab"}},
      {{.town = "Bled", .district = "Radovljica", .area = "Gorenjska", .country = "Slovenia"},
       {"Bled, Radovljica", "Gorenjska, Slovenia", "Bled, Slovenia", "Bled"}},
      {{.district = "Grand", .area = "Utah", .country = "USA"},
       {"Grand, Utah", "USA", "Utah, USA", "Utah"}},
      {{.name = "Desert", .area = "Utah", .country = "USA"},
       {"Desert", "Utah, USA", "Utah, USA", "Utah"}},
      // Where no country is known, no comma waits for one.
      {{.name = "Trail", .town = "Moab"}, {"Trail", "Moab", "-", "Moab"}},
      {{.name = "Moab", .town = "Moab", .area = "Utah"}, {"Moab", "Utah", "-", "Moab"}},
  };
  const TestServices services("2024-03-05T12:00:00Z");
  for (const auto& c : cases) {
    const CLPlacemark placemark = c.known.Placemark();
    const Text titles[] = {placemark.title(), placemark.subtitle(), placemark.shortTitle(),
                           placemark.cityTitle()};
    for (std::size_t i = 0; i < std::size(titles); ++i) {
      EXPECT_EQ(titles[i].value_or("-"), c.titles[i]) << i << " of case " << &c - std::begin(cases);
    }
  }
}

TEST(SavedLocation, IsAPairAndZeroIsAPlace) {
  const TestServices services("2024-03-05T12:00:00Z");
  EXPECT_FALSE(SavedLocation::load());
  services.settings->setDouble(0.0, kUserDefaultsTodayExtensionLastLatitude);
  EXPECT_FALSE(SavedLocation::load());
  SavedLocation::save({0.0, 0.0});
  EXPECT_EQ(SavedLocation::load(), (CLLocation{{0.0, 0.0}}));
}

TEST(SavedLocation, FollowsTheGeocoder) {
  const TestServices services("2024-03-05T12:00:00Z");
  CLPlacemark bled;
  bled.locality = "Bled";
  bled.timeZone = NSTimeZone{"Europe/Ljubljana"};
  const CLLocation there{{46.36, 14.09}};
  const SavedPlace known{"Bled", "Europe/Ljubljana"};
  EXPECT_EQ(SavedLocation::saveGeocoded({bled, CLPlacemark()}, false, there), known);
  EXPECT_EQ(SavedLocation::readPlace(), known);

  bled.timeZone.reset();
  EXPECT_EQ(SavedLocation::saveGeocoded({bled}, false, there), (SavedPlace{"Bled", {}}));
  EXPECT_EQ(SavedLocation::readPlace(), (SavedPlace{"Bled", {}}));

  // A failure leaves nothing stale beside the new coordinate; the coordinate's text is for showing.
  for (const bool failed : {true, false}) {
    SavedLocation::savePlace(known);
    const SavedPlace shown = SavedLocation::saveGeocoded(
        failed ? std::vector{bled} : std::vector<CLPlacemark>(), failed, there);
    EXPECT_EQ(shown.address, LocationUtils::latLonStringWithCoordinate(there.coordinate));
    EXPECT_EQ(SavedLocation::readPlace(), SavedPlace());
  }
}

TEST(UserDefaults, WithoutASuiteNothingIsThereAndNothingFails) {
  Services::Adapters services;
  services.timeZones = std::make_shared<testing::DeviceZone>("UTC");
  services.formatters =
      std::make_shared<adapters::IcuFormatterService>("en_US", services.timeZones);
  services.strings = std::make_shared<testing::KeyStrings>();
  Services::install(std::move(services));
  SavedLocation::save({46.36, 14.09});
  SavedLocation::savePlace({"Bled", "Europe/Ljubljana"});
  NSUserDefaults::migrateUserDefaultsIfNeccessary();
  EXPECT_FALSE(SavedLocation::load());
  EXPECT_EQ(SavedLocation::readPlace(), SavedPlace());
  EXPECT_FALSE(NSUserDefaults::hasMigratedDefault());
  EXPECT_EQ(LocationUtils::latLonStringWithCoordinate({46.36, 14.09}),
            LocationUtils::latLonStringWithCoordinate({46.36, 14.09}, 0));
}

TEST(UserDefaults, MigrateOnce) {
  const TestServices services("2024-03-05T12:00:00Z");
  services.settings->setInteger(1, kUserDefaultsCoordinateSystem);
  services.privateSettings->setInteger(2, kUserDefaultsCoordinateSystem);
  services.privateSettings->setObject("kept", "anything");
  NSUserDefaults::migrateUserDefaultsIfNeccessary();
  EXPECT_TRUE(NSUserDefaults::hasMigratedDefault());
  EXPECT_EQ(services.settings->integerForKey(kUserDefaultsCoordinateSystem), 2);
  EXPECT_EQ(services.settings->stringForKey("anything"), "kept");
  services.settings->setInteger(0, kUserDefaultsCoordinateSystem);
  NSUserDefaults::migrateUserDefaultsIfNeccessary();
  EXPECT_EQ(services.settings->integerForKey(kUserDefaultsCoordinateSystem), 0);
}

}  // namespace
}  // namespace lumenquest::platform
