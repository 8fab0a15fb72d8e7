// The worked examples of Meeus, Astronomical Algorithms, and instants that almanacs agree on. Each
// tolerance is what the method behind the value can give.

#include <gtest/gtest.h>

#include <cmath>

#include "ephemeris/constants.h"
#include "ephemeris/pt_date_time.h"
#include "ephemeris/pt_math.h"
#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_moon_apogee_perigee.h"
#include "ephemeris/pt_phases_of_the_moon.h"
#include "ephemeris/pt_sun.h"

namespace ephemeris {
namespace {

constexpr double kSecond = 1.0 / 86400.0;
constexpr double kMinute = 60.0 * kSecond;
constexpr double kArcsecond = 1.0 / 3600.0;

PtDateTime Date(int year, int month, int day, int hour = 0, double minute = 0.0) {
  PtDateTime date;
  date.year = year;
  date.month = month;
  date.day = day;
  date.hour = hour;
  date.minute = minute;
  return date;
}

double Centuries(double jde) { return PtDateTime::MjdToJulianCenturies(jde - kMjdOffset); }

TEST(Books, SunOf1992October13) {
  // Example 25.b, the full theory: true longitude 199.907372°, latitude 0.744″, R 0.99760775. The
  // series resolves 0.01″ and differs from the full theory by about 1″.
  PtSun sun{PtPosition()};
  Vector3D position = sun.GetEclipticPosition(Centuries(2448908.5), true);
  EXPECT_NEAR(position[pol_index::phi] * kRadiansToDegrees, 199.907372, 2.0 * kArcsecond);
  EXPECT_NEAR(position[pol_index::theta] * kRadiansToDegrees, 0.744 * kArcsecond, kArcsecond);
  EXPECT_NEAR(position[pol_index::r], 0.99760775, 5e-6);
}

TEST(Books, MoonOf1992April12) {
  // Example 47.a: λ 133.162655°, β −3.229126°, Δ 368409.7 km; example 48.a: phase angle 69.0756°,
  // illuminated 0.6786, bright limb at 285.0°. Brown's theory as truncated here holds some
  // arcseconds and about 15 km.
  PtMoon moon{PtPosition()};
  PtSun sun{PtPosition()};
  const double mjd = 2448724.5 - kMjdOffset;
  moon.CalculateEclipticEquatorialAndHorizontalPositions(mjd, 0.0, true);
  sun.CalculateEclipticEquatorialAndHorizontalPositions(mjd, 0.0, true);
  Vector3D vectors[] = {moon.eclipticPosition(), moon.equatorialPosition(), sun.eclipticPosition(),
                        sun.equatorialPosition()};
  EXPECT_NEAR(vectors[0][pol_index::phi] * kRadiansToDegrees, 133.162655, 4.0 * kArcsecond);
  EXPECT_NEAR(vectors[0][pol_index::theta] * kRadiansToDegrees, -3.229126, 2.0 * kArcsecond);
  EXPECT_NEAR(vectors[0][pol_index::r], 368409.7, 20.0);
  // Apparent place of the same example: α 134.688470°, δ 13.768368°.
  EXPECT_NEAR(vectors[1][pol_index::phi] * kRadiansToDegrees, 134.688470, 5.0 * kArcsecond);
  EXPECT_NEAR(vectors[1][pol_index::theta] * kRadiansToDegrees, 13.768368, 3.0 * kArcsecond);

  MoonPhase phase;
  moon.CalculatePhase(&vectors[0], &vectors[1], &vectors[2], &vectors[3], moon.hourAngle(), &phase);
  // The book takes the Sun's apparent place, 20″ off the geometric one used here.
  EXPECT_NEAR(phase.phaseAngle, 69.0756, 0.01);
  EXPECT_NEAR(phase.illumination, 0.6786, 0.0001);
  const double limb = (phase.brightLimbZenithAngle + phase.parallacticAngle) * kRadiansToDegrees;
  EXPECT_NEAR(PtMath::AngleDifference(limb, 285.0), 0.0, 0.1);
  EXPECT_TRUE(phase.waxing);
  EXPECT_EQ(phase.phaseType, MoonPhaseType::WaxingGibbous);
}

TEST(Books, PhasesOfTheMoon) {
  struct Case {
    const char* name;
    PtDateTime date;
    MoonPhaseType type;
    double jde;
    double tolerance;
  };
  const Case cases[] = {
      // Examples 49.a and 49.b; the first edition's mean phase differs by some seconds.
      {"new Moon of February 1977", Date(1977, 2, 1), MoonPhaseType::NewMoon, 2443192.65118,
       2.0 * kSecond},
      {"last quarter of January 2044", Date(2044, 1, 1), MoonPhaseType::LastQuarter, 2467636.49186,
       5.0 * kSecond},
      // New Moon of the eclipse of 2017 August 21: 18:30:07 UT, ΔT 68.8 s.
      {"new Moon of August 2017", Date(2017, 8, 1), MoonPhaseType::NewMoon,
       Date(2017, 8, 21, 18, 30.0 + (7.0 + 68.8) / 60.0).JulianDay(), 0.5 * kMinute},
  };
  for (const Case& c : cases) {
    double before = 0.0, next = 0.0, following = 0.0;
    PtPhasesOfTheMoon().CalculatePhase(c.date, c.type, &before, &next, &following);
    EXPECT_NEAR(next, c.jde, c.tolerance) << c.name;
    EXPECT_LT(before, c.date.JulianDay()) << c.name;
    EXPECT_NEAR(following - next, 29.53, 0.4) << c.name;
  }
}

TEST(Books, ApogeesAndPerigees) {
  // Example 50.a: apogee of 1988 October 7 at JDE 2447442.3543, parallax 3240.679″, 405,984 km less
  // the book's rounding of the Earth's radius.
  PtApogeePerigee event;
  ASSERT_TRUE(PtMoonApogeePerigee().CalculateForK(-148.5, &event));
  EXPECT_EQ(event.kind, PtApogeePerigee::kApogee);
  EXPECT_NEAR(event.date.JulianDay(), 2447442.3543, 0.00005);
  EXPECT_NEAR(event.distance, kEarthRadiusKm / std::sin(3240.679 / kArcsecondsPerRadian), 0.1);

  // The perigee of 2016 November 14, 11:23 UT, 356,509 km: the nearest full Moon since 1948. The
  // method holds some minutes and about 12 km.
  std::vector<std::unique_ptr<PtApogeePerigee>> year;
  PtMoonApogeePerigee().CalculateValuesForYear(2016, &year);
  const PtApogeePerigee* nearest = year.front().get();
  for (const auto& candidate : year) {
    if (candidate->distance < nearest->distance) nearest = candidate.get();
  }
  EXPECT_NEAR(nearest->date.JulianDay(), Date(2016, 11, 14, 11, 23.0).JulianDay(), 20.0 * kMinute);
  EXPECT_NEAR(nearest->distance, 356509.0, 15.0);
}

TEST(Books, JulianDays) {
  // Chapter 7's list, and the day on which the calendar changes.
  const std::pair<PtDateTime, double> cases[] = {
      {Date(2000, 1, 1, 12), 2451545.0}, {Date(1957, 10, 4), 2436115.5},
      {Date(1582, 10, 15), 2299160.5},   {Date(1582, 10, 4), 2299159.5},
      {Date(333, 1, 27, 12), 1842713.0}, {Date(-1000, 7, 12, 12), 1356001.0},
      {Date(-4712, 1, 1, 12), 0.0},
  };
  for (const auto& [date, jd] : cases) {
    EXPECT_EQ(date.JulianDay(), jd);
    PtDateTime back;
    back.FromModifiedJulianDay(jd - kMjdOffset);
    EXPECT_EQ(back, date) << jd;
  }
}

TEST(Books, EquinoxesAndSolstices) {
  // Instants of apparent longitude 0°, 90°, ... in 2024, UT, as almanacs give them to the minute.
  // The Sun moves 0.04″ a second; the series' 1″ is half a minute.
  const PtDateTime instants[] = {Date(2024, 3, 20, 3, 6), Date(2024, 6, 20, 20, 51),
                                 Date(2024, 9, 22, 12, 44), Date(2024, 12, 21, 9, 20)};
  PtSun sun{PtPosition()};
  for (int season = 0; season < 4; ++season) {
    const double mjd = instants[season].ModifiedJulianDay();
    const double deltaT = 69.2 * kSecond;
    Vector3D ecliptic =
        sun.GetEclipticPosition(PtDateTime::MjdToJulianCenturies(mjd + deltaT), true);
    sun.NutationMatrix(PtDateTime::MjdToJulianCenturies(mjd + deltaT));
    // The engine's Sun is geometric; the almanacs' is seen 20.5″ behind by aberration.
    const double aberration = 20.49 * kArcsecond / ecliptic[pol_index::r];
    const double longitude =
        (ecliptic[pol_index::phi] + sun.nutationInLongitude()) * kRadiansToDegrees - aberration;
    // Almanacs round to the minute of time, which is 2.5″.
    EXPECT_NEAR(PtMath::AngleDifference(longitude, 90.0 * season), 0.0, 4.0 * kArcsecond) << season;
  }
}

TEST(Books, SunriseAndSunsetInGreenwich) {
  // Civil almanac for 51.48° N, 0°: UT, to the minute.
  struct Case {
    PtDateTime day;
    int riseHour, riseMinute, setHour, setMinute;
  };
  const Case cases[] = {{Date(2024, 6, 21), 3, 43, 20, 21}, {Date(2024, 12, 21), 8, 4, 15, 54}};
  PtPosition greenwich;
  greenwich.latitude = 51.48;
  greenwich.CalcObserverCoords();
  PtSun sun(greenwich);
  for (const Case& c : cases) {
    const double mjd = c.day.ModifiedJulianDay();
    double rise = 0.0, set = 0.0;
    sun.FindEvents(SearchEvent::RiseSet, mjd, c.day.DeltaT(), &rise, &set);
    EXPECT_NEAR((rise - mjd) * 1440.0, c.riseHour * 60 + c.riseMinute, 1.0);
    EXPECT_NEAR((set - mjd) * 1440.0, c.setHour * 60 + c.setMinute, 1.0);
  }
}

}  // namespace
}  // namespace ephemeris
