// Format filling, trimming, formatters and settings.

#include <gtest/gtest.h>

#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "platform/ns_string.h"
#include "test_services.h"

namespace lumenquest::platform {
namespace {

using testing::Instant;
using testing::TestServices;

TEST(StringWithFormat, FillsPlaceholdersAndNothingElse) {
  EXPECT_EQ(stringWithFormat("%2$@ before %1$@", {"a", "b"}), "b before a");
  EXPECT_EQ(stringWithFormat("(%.1f%%)", {73.46}), "(73.5%)");
  EXPECT_EQ(stringWithFormat("%.0f° %f", {134.5, 0.25}), "134° 0.250000");
  EXPECT_EQ(stringWithFormat("%@|%@", {"a"}), "a|");
  EXPECT_EQ(stringWithFormat("%@", {std::optional<std::string>()}), "");
  EXPECT_EQ(stringWithFormat("nothing here", {"dropped"}), "nothing here");
  EXPECT_EQ(stringWithFormat("%@", {"%@ %d"}), "%@ %d");
  // What is no placeholder, or one of printf's dangerous ones, stays as it is.
  EXPECT_EQ(stringWithFormat("100% %n %s %", {1, 2, 3}), "100% %n %s %");
  EXPECT_EQ(stringWithFormat("%999999999$@ %.9999999f", {1.0}), "%999999999$@ %.9999999f");
}

TEST(Strings, WhiteSpaceAndReplacing) {
  EXPECT_EQ(stringByTrimmingWhitespace("\u202F7:10\u202FAM\u00A0 \t"), "7:10\u202FAM");
  EXPECT_EQ(stringByTrimmingWhitespace(" \u3000 "), "");
  EXPECT_EQ(stringByReplacingOccurrences("a. m. a. m.", "a. m.", "am"), "am am");
  EXPECT_EQ(stringByReplacingOccurrences("unchanged", "", "x"), "unchanged");
  EXPECT_FALSE(containsString("anything", ""));
}

TEST(Formatters, FollowTheLocale) {
  const struct {
    const char* locale;
    const char* time;
    const char* date;
    const char* dayMonthTime;
  } cases[] = {
      {"en_US", "5:07\u202FPM", "3/5/24", "Mar 5, 5:07\u202FPM"},
      {"de_DE", "17:07", "05.03.24", "5. März, 17:07"},
      // Locales whose short date has the year in full are cut to two digits.
      {"en_GB", "17:07", "05/03/24", "5 Mar, 17:07"},
      // A clock that differs from the region's.
      {"en_US@hours=h23", "17:07", "3/5/24", "Mar 5, 17:07"},
  };
  for (const auto& c : cases) {
    const TestServices services("2024-03-05T12:00:00Z", "UTC", c.locale);
    Formatters& formatters = Formatters::sharedInstance();
    formatters.setTimeZone({"Europe/Athens"});
    const NSDate date = Instant("2024-03-05T15:07:00Z");
    EXPECT_EQ(formatters.shortTimeFormatter().stringFromDate(date), c.time) << c.locale;
    EXPECT_EQ(formatters.shortDateFormatter().stringFromDate(date), c.date) << c.locale;
    const auto day = Formatters::dateFormatterWithMediumMonthAndNoYear();
    const auto dayTime = Formatters::dateTimeFormatterWithMediumMonthAndNoYear();
    day->setTimeZone({"Europe/Athens"});
    dayTime->setTimeZone({"Europe/Athens"});
    EXPECT_EQ(dayTime->stringFromDate(date), c.dayMonthTime) << c.locale;
    EXPECT_EQ(day->stringFromDate(date) + ", " + c.time, c.dayMonthTime) << c.locale;
  }
}

TEST(Formatters, MachineTexts) {
  const TestServices services("2024-03-05T12:00:00Z", "America/Denver", "ar_EG");
  const NSDate noon = NSDate::dateFromModifiedJulianDay(51544.5);
  EXPECT_EQ(Formatters::RFC3339DateFormatter()->stringFromDate(noon), "2000-01-01T12:00:00Z");
  const auto withZone = Formatters::RFC3339DateFormatterWithSpecificTimeZone();
  withZone->setTimeZone({"Asia/Kathmandu"});
  EXPECT_EQ(withZone->stringFromDate(noon), "2000-01-01T17:45:00+05:45");
  const auto number = Formatters::enUSPosixNumberFormatter();
  EXPECT_EQ(number->stringFromNumber(-1234567.0625), "-1234567.0625");
}

}  // namespace
}  // namespace lumenquest::platform
