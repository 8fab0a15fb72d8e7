#include "widgets/ephemeris_utils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "adapters/asset_catalog.h"
#include "ephemeris/constants.h"
#include "events/ephemeris_utils.h"
#include "platform/formatters.h"
#include "test_services.h"

namespace lumenquest::widgets {
namespace {

using testing::TestServices;

TEST(EphemerisUtils, EventTimes) {
  const TestServices services("2024-03-05T12:00:00Z");
  const double mjd = 60374.0 + (7.0 * 3600.0 + 10.0 * 60.0 + 36.5) / 86400.0;
  struct Case {
    double mjd;
    const char* text;
    const char* withSeconds;
  };
  const Case cases[] = {
      {ephemeris::kMjdNoRiseOrSet, "<event_no_rise_set>", "<event_no_rise_set>"},
      {ephemeris::kMjdCircumpolar, "<body_circumpolar>", "<body_circumpolar>"},
      {ephemeris::kMjdAlwaysInvisible, "<body_always_invisible>", "<body_always_invisible>"},
      {mjd, "7:11\u202FAM", "7:10:36\u202FAM"},
      {-1.0, "12:00\u202FAM", "12:00:00\u202FAM"},  // an instant of 1858, no mark
      {1e9, "", ""},
  };
  const platform::NSDateFormatter& formatter =
      platform::Formatters::sharedInstance().shortTimeFormatter();
  for (const Case& c : cases) {
    EXPECT_EQ(EphemerisUtils::mjdToString(c.mjd, true), c.withSeconds) << c.mjd;
    EXPECT_EQ(formatter.timeStyle(), platform::NSDateFormatterStyle::shortStyle);
    EXPECT_EQ(EphemerisUtils::mjdToString(c.mjd), c.text) << c.mjd;
  }
  platform::Formatters::sharedInstance().setTimeZone({"Asia/Kathmandu"});
  EXPECT_EQ(EphemerisUtils::mjdToString(mjd), "12:56\u202FPM");
}

TEST(EphemerisUtils, SunColors) {
  struct Case {
    double elevation;
    platform::UIColor color;
  };
  const platform::UIColor day{254 / 255.0, 217 / 255.0, 37 / 255.0, 1.0};
  const platform::UIColor golden{1.0, 77 / 255.0, 0.0, 1.0};
  const platform::UIColor blue{38 / 255.0, 137 / 255.0, 248 / 255.0, 1.0};
  const platform::UIColor nautical{33 / 255.0, 79 / 255.0, 216 / 255.0, 1.0};
  const platform::UIColor astronomical{30 / 255.0, 52 / 255.0, 152 / 255.0, 1.0};
  const platform::UIColor night{254 / 255.0, 217 / 255.0, 37 / 255.0, 0.2};
  const Case cases[] = {
      {90.0, day},           {6.01, day},
      {6.0, golden},         {-3.99, golden},
      {-4.0, blue},          {-5.99, blue},
      {-6.0, nautical},      {-11.99, nautical},
      {-12.0, astronomical}, {-17.99, astronomical},
      {-18.0, night},        {-90.0, night},
      {NAN, night},
  };
  adapters::FileAssetCatalog catalog(std::filesystem::path(LUMENQUEST_TEST_RESOURCES) / "art");
  for (const Case& c : cases) {
    EXPECT_EQ(EphemerisUtils::sunColor(c.elevation), c.color) << c.elevation;
    // The events' name for it is the same colour.
    const platform::NamedColor name = events::EphemerisUtils::colorForSunElevation(c.elevation);
    for (const auto scheme : {platform::ColorScheme::light, platform::ColorScheme::dark}) {
      const auto found = catalog.colorNamed(name.name, scheme);
      ASSERT_TRUE(found) << name.name;
      EXPECT_EQ(found->withAlpha(name.alpha * found->alpha), c.color) << name.name;
    }
  }
}

}  // namespace
}  // namespace lumenquest::widgets
