// Days, hours and engine times of the date helpers, in zones with awkward days.

#include "platform/ns_date.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/ns_calendar.h"
#include "test_services.h"

namespace lumenquest::platform {
namespace {

using testing::Instant;
using testing::TestServices;

std::string Text(NSDate date) { return adapters::formatRfc3339(date); }

TEST(NSDate, EngineTimes) {
  const TestServices services("2024-03-05T12:00:00Z");
  EXPECT_EQ(Text(NSDate::dateFromModifiedJulianDay(51544.5)), "2000-01-01T12:00:00Z");
  EXPECT_EQ(Instant("2000-01-01T12:00:30.9Z").modifiedJulianDay(), 51544.5 + 0.5 / 1440.0);

  ephemeris::PtDateTime date;
  date.FromModifiedJulianDay(Instant("2024-12-31T23:00:00Z").modifiedJulianDay());
  const struct {
    double minute;
    const char* rounded;
    const char* withSeconds;
  } cases[] = {
      {15.5, "2024-12-31T23:16:00Z", "2024-12-31T23:15:30Z"},
      {15.49, "2024-12-31T23:15:00Z", "2024-12-31T23:15:29Z"},
      // Rounded up to a minute of 60, which the calendar carries into the next year.
      {59.6, "2025-01-01T00:00:00Z", "2024-12-31T23:59:36Z"},
  };
  for (const auto& c : cases) {
    date.minute = c.minute;
    EXPECT_EQ(Text(NSDate::dateWithPtDateTime(date)), c.rounded);
    EXPECT_EQ(Text(NSDate::dateWithPtDateTime(date, true)), c.withSeconds);
  }
}

TEST(NSDate, EngineTimesOfAllAgesComeBack) {
  // The engine's calendar and ICU's are the same, Julian before 1582-10-15, without a year's hole.
  const TestServices services("2024-03-05T12:00:00Z");
  for (double mjd = -1773999.0; mjd < 1149000.0; mjd += 997.25) {
    EXPECT_EQ(NSDate::dateFromModifiedJulianDay(mjd).modifiedJulianDay(), mjd);
  }
  EXPECT_EQ(Text(NSDate::dateFromModifiedJulianDay(-100840.0)), "1582-10-15T00:00:00Z");
  const NSDate lastJulianDay = NSDate::dateFromModifiedJulianDay(-100841.0);
  EXPECT_EQ(lastJulianDay.dayValue(), 4);
  for (const int days : {-400, -10, -1, 1, 9, 30}) {
    for (const int from : {-11, -1, 0, 1, 9, 20}) {
      const NSDate date = NSDate::dateFromModifiedJulianDay(-100840.0 + from);
      EXPECT_EQ(date.dateByAddingNumberOfDays(days).modifiedJulianDay(), -100840.0 + from + days);
    }
  }
}

TEST(NSDate, LocalDays) {
  const struct {
    const char* what;
    const char* zone;
    const char* instant;
    const char* start;
    const char* noon;
    const char* nextDay;
  } days[] = {
      {"23 hours", "Europe/Madrid", "2025-03-30T20:00:00+02:00", "2025-03-30T00:00:00+01:00",
       "2025-03-30T12:00:00+02:00", "2025-03-31T20:00:00+02:00"},
      {"25 hours", "Europe/Madrid", "2025-10-26T20:00:00+01:00", "2025-10-26T00:00:00+02:00",
       "2025-10-26T12:00:00+01:00", "2025-10-27T20:00:00+01:00"},
      {"midnight skipped", "Africa/Cairo", "2024-04-26T09:00:00+03:00", "2024-04-26T01:00:00+03:00",
       "2024-04-26T12:00:00+03:00", "2024-04-27T09:00:00+03:00"},
      {"before the skipped midnight", "Africa/Cairo", "2024-04-25T00:30:00+02:00",
       "2024-04-25T00:00:00+02:00", "2024-04-25T12:00:00+02:00", "2024-04-26T01:30:00+03:00"},
      {"midnight twice", "America/Havana", "2024-11-03T12:00:00-05:00", "2024-11-03T00:00:00-04:00",
       "2024-11-03T12:00:00-05:00", "2024-11-04T12:00:00-05:00"},
      {"summer time after the listed years", "Europe/Berlin", "2050-07-15T10:00:00+02:00",
       "2050-07-15T00:00:00+02:00", "2050-07-15T12:00:00+02:00", "2050-07-16T10:00:00+02:00"},
      {"rules of 2023", "America/Nuuk", "2025-07-01T10:00:00-01:00", "2025-07-01T00:00:00-01:00",
       "2025-07-01T12:00:00-01:00", "2025-07-02T10:00:00-01:00"},
      {"rules of 2024, no winter time", "America/Asuncion", "2025-07-01T10:00:00-03:00",
       "2025-07-01T00:00:00-03:00", "2025-07-01T12:00:00-03:00", "2025-07-02T10:00:00-03:00"},
  };
  for (const auto& day : days) {
    SCOPED_TRACE(day.what);
    const TestServices services("2024-01-01T00:00:00Z", day.zone);
    const NSDate date = Instant(day.instant);
    EXPECT_EQ(Text(NSDate::dateWithStartDateTime(date)), Text(Instant(day.start)));
    EXPECT_EQ(Text(NSDate::dateWithNoonDateTime(date)), Text(Instant(day.noon)));
    EXPECT_EQ(Text(date.dateByAddingNumberOfDays(1)), Text(Instant(day.nextDay)));
  }
}

TEST(NSDate, HoursAndDays) {
  const TestServices services("2024-03-05T12:00:00Z", "Asia/Kathmandu");
  const NSDate date = Instant("2024-03-09T10:25:37.5+05:45");
  EXPECT_EQ(Text(NSDate::dateWithEndDateTime(date)), Text(Instant("2024-03-09T23:59:59+05:45")));
  EXPECT_EQ(Text(date.nextMainHour()), Text(Instant("2024-03-09T11:00:00+05:45")));
  EXPECT_EQ(Text(date.previousMainHour()), Text(Instant("2024-03-09T10:00:37+05:45")));
  EXPECT_EQ(Instant("2024-03-09T10:30:00+05:45").floatHour(), 11.25f);
  EXPECT_DOUBLE_EQ(Instant("2024-03-09T18:00:36+05:45").timeAsFractionOfDay(), 18.01 / 24.0);
  EXPECT_EQ(date.weekdayAbbreviation(), "<week_day_abbr_sa>");
  EXPECT_EQ(Instant("2024-02-10T00:00:00Z").numberOfDaysInMonth(), 29);
  EXPECT_EQ(Text(NSDate::firstDayOfYear(2025)), Text(Instant("2025-01-01T00:00:00+05:45")));
  EXPECT_TRUE(NSDate::isDate(date, Instant("2024-03-08T18:16:00Z")));
  EXPECT_FALSE(NSDate::isDate(date, Instant("2024-03-08T18:14:00Z")));

  const TestServices german("2024-03-05T12:00:00Z", "Europe/Berlin", "de_DE");
  EXPECT_EQ(Instant("2024-03-09T12:00:00Z").weekday(), 6);  // from Monday on
}

TEST(NSDate, AddingDaysKeepsTheInstantWithinItsSecond) {
  const TestServices services("2024-03-05T12:00:00Z", "Europe/Berlin");
  const NSDate almost(744163200.0 - 1e-7);
  EXPECT_EQ(almost.dateByAddingNumberOfDays(1).timeIntervalSinceReferenceDate(),
            744163200.0 - 1e-7 + 86400.0);
  // The second 02:30 of the day that winter time begins.
  const NSDate repeated = Instant("2024-10-27T02:30:00+01:00");
  EXPECT_EQ(repeated.dateByAddingNumberOfDays(0), repeated);
  EXPECT_EQ(Text(repeated.dateByAddingNumberOfDays(1)), Text(Instant("2024-10-28T02:30:00+01:00")));
}

TEST(Calendars, AreMadeOnceAndGuarded) {
  // Many threads at the shared calendars at once, from the first call on: one object, right
  // results.
  const TestServices services("2024-03-05T12:00:00Z", "Europe/Madrid");
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&wrong, thread] {
      for (int i = 0; i < 2000; ++i) {
        const double mjd = 50000.0 + 4.0 * i + thread;
        const NSDate date = NSDate::dateFromModifiedJulianDay(mjd);
        if (date.modifiedJulianDay() != mjd) ++wrong;
        const int hour = date.hourValue();
        if (hour != 1 && hour != 2) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST(NSDate, Between) {
  const NSDate eight(8.0), nine(9.0), ten(10.0);
  EXPECT_TRUE(NSDate::date(nine, eight, ten));
  EXPECT_FALSE(NSDate::date(eight, eight, ten));
  EXPECT_FALSE(NSDate::date(ten, eight, ten));
  EXPECT_EQ(NSDate::closestDateFromDate(eight, ten, nine), nine);
  EXPECT_EQ(NSDate::closestDateFromDate(ten, eight, nine), eight);  // a tie between the ends
}

}  // namespace
}  // namespace lumenquest::platform
