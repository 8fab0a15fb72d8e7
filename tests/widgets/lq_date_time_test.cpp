// Dates in Universal Time, held against the books, the engine and each other.

#include "widgets/lq_date_time.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>
#include <utility>

#include "ephemeris/pt_date_time.h"
#include "test_services.h"
#include "widgets/lq_math.h"
#include "widgets/universal_time_dates.h"

namespace lumenquest::widgets {
namespace {

using platform::NSDate;
using testing::Instant;
using testing::TestServices;

using Integer = std::int64_t;

LQDateTime DateTime(Integer year, Integer month, Integer day, Integer hour = 0,
                    double minutes = 0.0) {
  LQDateTime result;
  result.setYear(year);
  result.setMonth(month);
  result.setDay(day);
  result.setHour(hour);
  result.setMinutes(minutes);
  return result;
}

TEST(LQDateTime, JulianDaysOfTheBookAndTheCalendarChange) {
  // Meeus, Astronomical Algorithms, chapter 7: examples 7.a to 7.c and the table after them.
  const struct {
    Integer year, month;
    double day;
    double jd;
    bool isOneWay = false;
  } cases[] = {
      {1957, 10, 4.81, 2436116.31},
      {333, 1, 27.5, 1842713.0},
      {-584, 5, 28.63, 1507900.13},
      {2000, 1, 1.5, 2451545.0},
      {1600, 12, 31.0, 2305812.5},
      {-1000, 2, 29.0, 1355866.5},
      {-4712, 1, 1.5, 0.0},
      {1582, 10, 4.0, 2299159.5},         // the last Julian day
      {1582, 10, 5.0, 2299150.5, true},   // Gregorian, as the ten days that did not exist
      {1582, 10, 14.0, 2299159.5, true},  //
      {1582, 10, 15.0, 2299160.5},        // the day after October 4
      {1582, 2, 1.0, 2298914.5},          // counts as the 14th month of the year before
  };
  for (const auto& c : cases) {
    const double wholeDay = std::floor(c.day);
    const LQDateTime dateTime =
        DateTime(c.year, c.month, static_cast<Integer>(wholeDay), 0, (c.day - wholeDay) * 1440.0);
    EXPECT_NEAR(dateTime.julianDay(), c.jd, 1e-8) << c.jd;
    EXPECT_NEAR(dateTime.modifiedJulianDay(), c.jd - 2400000.5, 1e-8) << c.jd;
    if (c.isOneWay) continue;
    LQDateTime back;
    back.fromJulianDay(c.jd);
    EXPECT_EQ(back.getYear(), c.year) << c.jd;
    EXPECT_EQ(back.getMonth(), c.month) << c.jd;
    EXPECT_NEAR(static_cast<double>(back.getDay()) + back.time() / 24.0, c.day, 1e-8) << c.jd;
  }
}

TEST(LQDateTime, RoundTripsAndTheEnginesDates) {
  std::mt19937_64 random(20240312);
  std::uniform_real_distribution<double> mjds(-2400000.0, 3000000.0);
  double worst = 0.0;
  for (int i = 0; i < 100000; ++i) {
    const double mjd = mjds(random);
    LQDateTime dateTime;
    dateTime.fromModifiedJulianDay(mjd);
    worst = std::max(worst, std::fabs(dateTime.modifiedJulianDay() - mjd));
    ASSERT_LT(dateTime.getMinutes(), 60.0) << mjd;

    ephemeris::PtDateTime record;
    record.FromModifiedJulianDay(mjd);
    ASSERT_EQ(dateTime.getYear(), record.year) << mjd;
    ASSERT_EQ(dateTime.getMonth(), record.month) << mjd;
    ASSERT_EQ(dateTime.getDay(), record.day) << mjd;
    ASSERT_EQ(dateTime.getHour(), record.hour) << mjd;
    dateTime.setMinutes(record.minute);
    ASSERT_EQ(dateTime.modifiedJulianDay(), record.ModifiedJulianDay()) << mjd;
  }
  // A Julian Day of these years is good to 40 µs, 4.7e-10 days.
  EXPECT_LT(worst, 1e-9);
}

TEST(LQDateTime, SiderealTime) {
  // Meeus, examples 12.a and 12.b.
  EXPECT_NEAR(LQDateTime::siderealTimeAtGreenwich(DateTime(1987, 4, 10).modifiedJulianDay()),
              13.0 + 10.0 / 60.0 + 46.3668 / 3600.0, 1e-4 / 3600.0);
  EXPECT_NEAR(
      LQDateTime::siderealTimeAtGreenwich(DateTime(1987, 4, 10, 19, 21.0).modifiedJulianDay()),
      8.0 + 34.0 / 60.0 + 57.0896 / 3600.0, 1e-4 / 3600.0);
  // Whole days are taken towards zero, also before the epoch.
  for (const double mjd : {-0.25, -40000.75}) {
    EXPECT_NEAR(LQDateTime::siderealTimeAtGreenwich(mjd),
                ephemeris::PtDateTime::SiderealTimeAtGreenwich(mjd), 1e-12);
  }
}

TEST(LQDateTime, DeltaTOfThePublishedTables) {
  // Espenak and Meeus (2006), tables of values from which the expressions come; the last ones from
  // their text and from the parabola for the far future.
  const struct {
    Integer year;
    double seconds;
    double tolerance;
  } cases[] = {
      {-1000, 25400, 50}, {-500, 17190, 15},  {-200, 12790, 5},   {0, 10580, 5},
      {300, 7680, 5},     {500, 5710, 5},     {900, 2200, 5},     {1300, 490, 5},
      {1600, 120, 5},     {1700, 9, 0.5},     {1750, 13, 0.5},    {1850, 7, 0.5},
      {1900, -3, 0.5},    {1950, 29, 0.5},    {1955, 31.1, 0.11}, {1970, 40.2, 0.11},
      {1990, 56.9, 0.11}, {2005, 64.7, 0.11}, {2050, 93, 0.5},    {2100, 202.7, 0.1},
      {2200, 442.1, 0.1},
  };
  for (const auto& c : cases) {
    EXPECT_NEAR(DateTime(c.year, 1, 1).deltaT() * 86400.0, c.seconds, c.tolerance) << c.year;
  }
  // Where two expressions meet they agree: to a second, in antiquity to twenty.
  for (const Integer year :
       {-500, 500, 1600, 1700, 1800, 1860, 1900, 1920, 1941, 1961, 1986, 2005, 2050, 2150}) {
    const double before = DateTime(year - 1, 12, 30).deltaT() * 86400.0;
    EXPECT_NEAR(DateTime(year, 1, 1).deltaT() * 86400.0, before, year < 1600 ? 20.0 : 1.0) << year;
  }
  const LQDateTime j2000 = DateTime(2000, 1, 1, 12);
  EXPECT_EQ(j2000.julianEphemerisDay(), 2451545.0 + j2000.deltaT());
  EXPECT_EQ(j2000.julianEphemerisCenturies(), j2000.deltaT() / 36525.0);
}

TEST(LQDateTime, YearsComparisonAndValidity) {
  const std::pair<LQDateTime, double> years[] = {{DateTime(2023, 7, 15), 2023.0 + 195.0 / 365.0},
                                                 {DateTime(2024, 3, 1), 2024.0 + 61.0 / 365.0},
                                                 {DateTime(2024, 12, 31), 2025.0},
                                                 {DateTime(1900, 3, 1), 1900.0 + 60.0 / 365.0}};
  for (const auto& [date, year] : years) EXPECT_EQ(date.decimalYear(), year) << year;
  EXPECT_TRUE(LQDateTime().isValid());
  for (const LQDateTime& unset :
       {DateTime(-1, 1, 1), DateTime(2024, -1, 1), DateTime(2024, 1, -1)}) {
    EXPECT_FALSE(unset.isValid());
  }
  // Each is later than the one before, by a less significant field.
  const LQDateTime times[] = {DateTime(2023, 12, 31, 23, 59.0), DateTime(2024, 2, 28, 5, 1.0),
                              DateTime(2024, 3, 1, 5, 1.0),     DateTime(2024, 3, 2, 4, 30.0),
                              DateTime(2024, 3, 2, 5, 1.0),     DateTime(2024, 3, 2, 5, 1.5)};
  for (std::size_t i = 0; i < std::size(times); ++i) {
    for (std::size_t j = 0; j < std::size(times); ++j) {
      EXPECT_EQ(times[i].comapreTo(times[j]), i == j ? 0 : i < j ? -1 : 1) << i << " " << j;
      EXPECT_EQ(times[i].afterOrEquals(times[j]), i >= j) << i << " " << j;
    }
  }
}

TEST(LQDateTime, ProgrammingErrors) {
  const Integer largest = std::numeric_limits<Integer>::max();
  for (const LQDateTime& overflowing : {DateTime(-largest - 1, 1, 1), DateTime(2024, 5, largest)}) {
    EXPECT_DEATH(overflowing.modifiedJulianDay(), "Assertion failed");
  }
  EXPECT_DEATH(DateTime(2024, 13, 1).decimalYear(), "month_ <= 12");
  EXPECT_DEATH(DateTime(2024, -1, 1).deltaT(), "month_");
  for (const double bad : {double{NAN}, 1e19}) {
    EXPECT_DEATH(LQDateTime::siderealTimeAtGreenwich(bad), "IntegerPart");
    EXPECT_DEATH(LQDateTime().fromJulianDay(bad), "IntegerPart");
    EXPECT_DEATH(DateTime(2024, 1, 1, 0, bad).toDate(true), "IntegerPart");
  }
}

TEST(LQDateTime, InstantsOfThePlatform) {
  const TestServices services("2024-03-05T12:00:00Z", "Europe/Berlin");
  const LQDateTime half = DateTime(2024, 3, 5, 10, 15.5);
  EXPECT_EQ(half.toDate(), Instant("2024-03-05T10:16:00Z"));
  EXPECT_EQ(DateTime(2024, 3, 5, 10, 15.999).toDate(true), Instant("2024-03-05T10:15:59Z"));
  EXPECT_EQ(DateTime(2024, 12, 31, 23, 59.6).toDate(), Instant("2025-01-01T00:00:00Z"));
  for (const LQDateTime& beyond :
       {DateTime(-3000000, 1, 1), DateTime(2024, 2000000000, 1),
        DateTime(2024, 1, 1, Integer{1} << 40), DateTime(2024, 1, 1, 0, 1e12)}) {
    EXPECT_EQ(beyond.toDate(), std::nullopt);
  }
}

TEST(UniversalTimeDates, ConvertAndAddDaysWithoutTheUsersZone) {
  // The clocks of Berlin go forward on 2024-03-31.
  const TestServices services("2024-03-30T12:00:00Z", "Europe/Berlin");
  const double mjd = 60374.0 + (7.0 * 3600.0 + 10.0 * 60.0 + 36.5) / 86400.0;
  EXPECT_EQ(fromModifiedJulianDate(mjd), Instant("2024-03-05T07:11:00Z"));
  EXPECT_EQ(fromModifiedJulianDate(mjd, true), Instant("2024-03-05T07:10:36Z"));
  EXPECT_EQ(fromModifiedJulianDate(1e9), std::nullopt);
  // Parts of a second are dropped on the way back.
  const NSDate half(Instant("2024-03-05T07:10:36Z").timeIntervalSinceReferenceDate() + 0.5);
  EXPECT_NEAR(modifiedJulianDate(half), mjd - 0.5 / 86400.0, 1e-11);
  EXPECT_EQ(modifiedJulianDate(Instant("1582-10-14T00:00:00Z")), -100841.0);

  const NSDate before = Instant("2024-03-30T23:30:00Z");
  EXPECT_EQ(dateByAddingNumberOfDays(before, 1), Instant("2024-03-31T23:30:00Z"));
  EXPECT_EQ(before.dateByAddingNumberOfDays(1), Instant("2024-03-31T22:30:00Z"));
  EXPECT_EQ(dateByAddingNumberOfDays(before, -30), Instant("2024-02-29T23:30:00Z"));
  EXPECT_EQ(modifiedJulianDate(dateByAddingNumberOfDays(*fromModifiedJulianDate(-100841.0), 1)),
            -100840.0);
}

TEST(LQMath, SetRange) {
  EXPECT_EQ(LQMath::setRange(-30.0, 360.0), 330.0);
  EXPECT_EQ(LQMath::setRange(360.0, 360.0), 0.0);
}

}  // namespace
}  // namespace lumenquest::widgets
