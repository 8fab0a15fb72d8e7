// Properties and edges of the engine's operations that no list of values shows.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "ephemeris/constants.h"
#include "ephemeris/pt_math.h"
#include "ephemeris/pt_milky_way.h"
#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_sun.h"

namespace ephemeris {
namespace {

PtPosition Place(double latitude, double longitude) {
  PtPosition position;
  position.latitude = latitude;
  position.longitude = longitude;
  position.CalcObserverCoords();
  return position;
}

TEST(Math, AnglesAndWholeNumbersAtTheirEdges) {
  // The upper end of [-180, 180) is excluded.
  EXPECT_EQ(PtMath::AngleDifference(10.0, 350.0), 20.0);
  EXPECT_EQ(PtMath::AngleDifference(350.0, 10.0), -20.0);
  EXPECT_EQ(PtMath::AngleDifference(0.0, 180.0), -180.0);
  EXPECT_EQ(PtMath::AngleDifference(180.0, 0.0), -180.0);
  for (const double x : {0.0, -0.5, 0.5, -1.0, 3.0, -7.25, 1e15 + 0.5, -1e15 - 0.5, 1e300, -1e300,
                         9007199254740993.0, double{INFINITY}, -double{INFINITY}}) {
    EXPECT_EQ(PtMath::Floor(x), std::floor(x)) << x;
    EXPECT_EQ(PtMath::Trunc(x), std::trunc(x)) << x;
  }
  EXPECT_TRUE(std::isnan(PtMath::Floor(NAN)));
}

TEST(Refraction, FallsToNothingAlongTheRampBelowTheHorizon) {
  PtSun sun{PtPosition()};
  EXPECT_NEAR(sun.RefractionTrue(-3.62), 0.2 * sun.RefractionTrue(-3.5401), 0.005);
  EXPECT_EQ(sun.RefractionTrue(-3.65), 0.0);
  EXPECT_EQ(sun.RefractionTrue(NAN), 0.0);
}

TEST(FindEvents, CrossesTheThresholdInItsDirection) {
  // A few minutes before a rise the body is below the threshold, after it above; a set the reverse.
  // Unlimited by any list: places from pole to pole, all kinds, days over two centuries.
  constexpr double kMinutes = 3.0 / 1440.0;
  std::mt19937 random(20261122);
  std::uniform_real_distribution<double> latitude(-89.0, 89.0), longitude(-180.0, 180.0),
      day(15020.0, 88000.0);
  const double altitudes[] = {-6.0, -12.0, -18.0, 0.0, 6.0, -4.0};
  int found = 0;
  for (int i = 0; i < 3000; ++i) {
    const PtPosition place = Place(latitude(random), longitude(random));
    PtSun sun(place);
    PtMoon moon(place);
    const bool isMoon = i % 6 == 3 && i % 4 != 0;
    PtPlanet& body = isMoon ? static_cast<PtPlanet&>(moon) : sun;
    const auto kind = static_cast<SearchEvent>(i % 6);
    const double mjd0 = std::floor(day(random));
    double rise = 0.0, set = 0.0;
    body.FindEvents(kind, mjd0, 0.0008, &rise, &set);

    const double sinLat = std::sin(place.latitude * kDegreesToRadians);
    const double cosLat = std::cos(place.latitude * kDegreesToRadians);
    double threshold = std::sin(altitudes[i % 6] * kDegreesToRadians);
    if (kind == SearchEvent::RiseSet) {
      const double distance = body.GetEquatorialPosition(mjd0, 0.0008, true)[pol_index::r];
      threshold = body.GetSinH(0.0, AltitudeType::UpperLimb, distance);
    }
    const auto height = [&](double mjd) {
      return body.SinAlt(mjd, 0.0008, 0.0, 0.0, cosLat, sinLat) - threshold;
    };
    if (rise < 0.0 && set < 0.0) {
      EXPECT_EQ(rise, set);
      EXPECT_EQ(rise == kMjdCircumpolar, height(mjd0) > 0.0);
      continue;
    }
    for (const auto& [mjd, direction] : {std::pair{rise, 1.0}, std::pair{set, -1.0}}) {
      if (mjd < 0.0) {
        EXPECT_EQ(mjd, kMjdNoRiseOrSet);
        continue;
      }
      // At a grazing crossing the parabola's root lies farther off.
      const double before = height(mjd - kMinutes) * direction;
      const double after = height(mjd + kMinutes) * direction;
      if (std::fabs(after - before) < 1e-4) continue;
      EXPECT_LT(before, 0.0) << "case " << i;
      EXPECT_GT(after, 0.0) << "case " << i;
      EXPECT_GE(mjd, mjd0 - 1e-9);
      EXPECT_LE(mjd, mjd0 + 1.0 + 1e-9);
      ++found;
    }
  }
  EXPECT_GT(found, 3000);
}

TEST(FindEventsDeathTest, UnknownEventStopsInEveryBuild) {
  PtSun sun(Place(40.0, 0.0));
  double rise = 0.0, set = 0.0;
  EXPECT_DEATH(sun.FindEvents(static_cast<SearchEvent>(6), 60000.0, 0.0, &rise, &set),
               "false.*FindEvents.*pt_planet.*492");
}

TEST(Memory, RecalledPositionsAreTheFreshOnes) {
  // One body asked for the same instants again and again, more of them than it remembers, beside a
  // new body for each.
  PtMoon used(Place(50.0, 10.0));
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 500; ++i) {
      const double mjd = 60000.0 + (i % 7 == 0 ? 3.0 : i / 24.0);
      const bool highPrecision = i % 5 != 0;
      PtMoon fresh(Place(50.0, 10.0));
      Vector3D a = used.GetEquatorialPosition(mjd, 0.0008, highPrecision);
      Vector3D b = fresh.GetEquatorialPosition(mjd, 0.0008, highPrecision);
      for (const pol_index part : {pol_index::phi, pol_index::theta, pol_index::r}) {
        ASSERT_EQ(a[part], b[part]);
      }
      for (const index part : {index::x, index::y, index::z}) {
        ASSERT_EQ(used.eclipticPosition()[part], fresh.eclipticPosition()[part]);
        ASSERT_EQ(used.equatorialPosition()[part], fresh.equatorialPosition()[part]);
      }
      ASSERT_EQ(used.obliquity(), fresh.obliquity());
      ASSERT_EQ(used.nutationInLongitude(), fresh.nutationInLongitude());
      ASSERT_EQ(used.nutationInObliquity(), fresh.nutationInObliquity());
      ASSERT_EQ(used.CalculateApparentSiderealTime(mjd), fresh.CalculateApparentSiderealTime(mjd));
    }
  }
}

TEST(Memory, SearchesShareTheirHoursAndFollowTheObserver) {
  PtSun sun(Place(40.0, 0.0));
  double rise = 0.0, set = 0.0;
  for (int kind = 0; kind < 6; ++kind) {
    sun.FindEvents(static_cast<SearchEvent>(kind), 60000.0, 0.0008, &rise, &set);
  }
  EXPECT_LE(sun.positionsComputed(), 25);
  // A changed observer takes effect although the positions are recalled.
  sun.observer()->longitude = 15.0;
  double riseEast = 0.0;
  sun.FindEvents(SearchEvent::BlueHour, 60000.0, 0.0008, &riseEast, &set);
  EXPECT_NEAR(riseEast, rise - 1.0 / 24.0, 1e-3);
}

TEST(MilkyWay, StandsInTheSouthWhenItCulminates) {
  // At 40° N the centre culminates due south at 90° − 40° − 29° = 21°, at 40° S due north... at
  // 79°.
  for (const auto& [latitude, azimuth, elevation] :
       {std::tuple{40.0, 180.0, 21.1}, std::tuple{-40.0, 0.0, 78.9}}) {
    PtMilkyWay milkyWay(Place(latitude, 0.0));
    double highest = -90.0, azimuthThere = 0.0;
    for (double hour = 0.0; hour < 24.0; hour += 0.05) {
      milkyWay.CalculateEclipticEquatorialAndHorizontalPositions(60500.0 + hour / 24.0, 0.0008,
                                                                 true);
      if (milkyWay.horizontalPosition().theta > highest) {
        highest = milkyWay.horizontalPosition().theta;
        azimuthThere = milkyWay.horizontalPosition().phi;
      }
    }
    EXPECT_NEAR(highest, elevation, 0.1);
    EXPECT_NEAR(PtMath::AngleDifference(azimuthThere, azimuth), 0.0, 3.0);
  }
}

}  // namespace
}  // namespace ephemeris
