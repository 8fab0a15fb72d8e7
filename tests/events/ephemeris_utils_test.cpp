// Texts, small numbers, the dark night and the supermoon: the cases at the edges.

#include "events/ephemeris_utils.h"

#include <gtest/gtest.h>

#include <cmath>

#include "ephemeris/constants.h"
#include "events/apogee_perigee.h"
#include "events/body_info_event.h"
#include "events/sun_event.h"
#include "events/widget_astrolib.h"
#include "platform/calendar_zone.h"
#include "test_services.h"

namespace lumenquest::events {
namespace {

using ephemeris::kMjdAlwaysInvisible;
using ephemeris::kMjdCircumpolar;
using ephemeris::kMjdNoRiseOrSet;
using platform::NSDate;
using testing::Instant;
using testing::TestServices;

double Mjd(const std::string& rfc3339) { return Instant(rfc3339).modifiedJulianDay(); }

/// 2024-03-05 and the day after, in the zone of the tests.
struct March5 {
  const TestServices services;
  const double today;
  const double tomorrow;

  explicit March5(const std::string& locale)
      : services("2024-03-05T12:00:00Z", "UTC", locale),
        today(Mjd("2024-03-05T00:00:00Z")),
        tomorrow(today + 1.0) {}

  std::string Interval(double fromHour, double toHour) const {
    return EphemerisUtils::stringForIntervalMjdStart(today + fromHour / 24.0, today + toHour / 24.0,
                                                     today, tomorrow);
  }
};

TEST(Texts, LightBandsAreHalfOpen) {
  const TestServices services("2024-03-05T12:00:00Z");
  struct Case {
    double elevation;
    const char* key;
    const char* color;
  };
  const Case cases[] = {
      {6.0001, "<light_daytime>", "lumenquestYellow"},
      {6.0, "<twilight_golden_hour>", "goldenHourLayerColor"},
      {-4.0, "<twilight_blue_hour>", "civilTwiligthLayerColor"},
      {-6.0, "<light_nautical>", "nauticalTwilightLayerColor"},
      {-12.0, "<light_astronomical>", "astronomicalTwilightLayerColor"},
      {-18.0, "<light_nighttime>", "lumenquestYellow"},
      {NAN, "<light_nighttime>", "lumenquestYellow"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(EphemerisUtils::lightTypeForSunElevation(c.elevation), c.key) << c.elevation;
    EXPECT_EQ(EphemerisUtils::colorForSunElevation(c.elevation).name, c.color) << c.elevation;
  }
  EXPECT_EQ(EphemerisUtils::colorForSunElevation(-30.0).alpha, 0.2);
}

TEST(Texts, Instants) {
  const March5 day("en_US");
  EXPECT_EQ(EphemerisUtils::mjdToString(kMjdNoRiseOrSet), "<event_no_rise_set>");
  EXPECT_EQ(EphemerisUtils::mjdToString(kMjdCircumpolar), "<body_circumpolar>");
  EXPECT_EQ(EphemerisUtils::mjdToString(kMjdAlwaysInvisible), "<body_always_invisible>");
  const double mjd = day.today + (7.0 + 10.6 / 60.0) / 24.0;
  EXPECT_EQ(EphemerisUtils::mjdToString(mjd, true), "7:10:36\u202FAM");
  EXPECT_EQ(EphemerisUtils::mjdToString(mjd), "7:11\u202FAM");  // the style is put back
  // The key's text stands for the format here; a special value has its own.
  EXPECT_EQ(EphemerisUtils::stringForMjd(mjd, 134.0), "<body_rise_set_event>");
  EXPECT_EQ(EphemerisUtils::stringForMjd(kMjdCircumpolar, 134.0), "<body_circumpolar>");
  // The mark compares the exact instant, not the minute shown.
  EXPECT_EQ(EphemerisUtils::stringForMjd(day.tomorrow, day.today, day.tomorrow),
            "12:00\u202FAM <event_one_day_plus>");
  EXPECT_EQ(EphemerisUtils::stringForMjd(day.tomorrow - 1e-6, day.today, day.tomorrow),
            "12:00\u202FAM");
  EXPECT_EQ(EphemerisUtils::stringForMjd(day.today - 0.01, day.today, day.tomorrow),
            "11:46\u202FPM <event_one_day_minus>");

  WidgetAstrolib lib;
  lib.mjdTomorrowAt0 = day.tomorrow;
  EXPECT_EQ(lib.stringForMjd(day.tomorrow), "12:00\u202FAM <event_one_day_plus>");
  EXPECT_EQ(lib.stringForMjd(day.today - 1.0), "12:00\u202FAM");
}

TEST(Texts, Intervals) {
  const struct {
    const char* locale;
    double from, to;
    const char* text;
  } cases[] = {
      {"en_US", 7.0, 8.0, "7:00 - 8:00\u202FAM"},
      {"en_US", 11.0, 13.0, "11:00\u202FAM - 1:00\u202FPM"},
      {"en_US", 23.0, 24.5, "11:00\u202FPM - 12:30\u202FAM <event_one_day_plus>"},
      {"en_US", -2.0, -1.0, "10:00 - 11:00\u202FPM <event_one_day_minus>"},
      {"de_DE", 24.5, 25.0, "00:30 - 01:00 <event_one_day_plus>"},
      // "a. m." with a no-break space in between: cleaned, and shown once.
      {"es_CO", 7.0, 8.0, "7:00 - 8:00\u202Fam"},
  };
  for (const auto& c : cases) {
    const March5 day(c.locale);
    EXPECT_EQ(day.Interval(c.from, c.to), c.text);
  }
  const March5 day("en_US");
  EXPECT_EQ(EphemerisUtils::stringForIntervalMjdStart(0.0, day.today), "(-1) - 12:00\u202FAM");
  EXPECT_EQ(EphemerisUtils::stringForIntervalMjdStart(day.today, kMjdNoRiseOrSet),
            "12:00\u202FAM - (+1)");
  EXPECT_EQ(EphemerisUtils::stringForIntervalMjdStart(0.0, day.today, day.today, day.tomorrow),
            "<event_one_day_minus> - 12:00\u202FAM");
}

TEST(Numbers, HoursAgeAndSize) {
  const TestServices services("2024-03-05T12:00:00Z");
  const double morning = Mjd("2024-03-05T06:00:00Z");
  EXPECT_EQ(EphemerisUtils::hoursBetweenStartMjd(kMjdCircumpolar, morning), 24.0f);
  EXPECT_EQ(EphemerisUtils::hoursBetweenStartMjd(kMjdAlwaysInvisible, morning), 0.0f);
  EXPECT_NEAR(EphemerisUtils::hoursBetweenStartMjd(morning, kMjdNoRiseOrSet), 18.0, 0.001);
  EXPECT_FLOAT_EQ(EphemerisUtils::hoursBetweenStartMjd(morning, morning + 0.5), 12.0f);

  // New Moon on 2024-03-10 at 9:00 UT: a few hours old then, and nearly a month just before.
  EXPECT_NEAR(EphemerisUtils::moonAgeAt(Instant("2024-03-10T21:00:00Z")), 0.5, 0.01);
  EXPECT_NEAR(EphemerisUtils::moonAgeAt(Instant("2024-03-10T08:00:00Z")), 29.36, 0.05);
  // February 2014 had no new Moon; the last one was on January 30 at 21:39.
  EXPECT_NEAR(EphemerisUtils::moonAgeAt(Instant("2014-03-01T00:00:00Z")), 29.1, 0.02);
  EXPECT_NEAR(EphemerisUtils::moonPercentageFromMeanAngularDiameterAtDistance(356509.0), 0.079,
              1e-3);

  const std::pair<float, const char*> cases[] = {
      {0.0f, "0<unit_abbr_hour>"},
      {2.25f, "2<unit_abbr_hour> 15<unit_abbr_minute>"},
      {1.999f, "1<unit_abbr_hour> 60<unit_abbr_minute>"},
      {-0.5f, "-30<unit_abbr_minute>"},
  };
  for (const auto& [hours, text] : cases) {
    EXPECT_EQ(EphemerisUtils::moonlessHoursText(hours), text);
  }
  EXPECT_DEATH(EphemerisUtils::moonlessHoursText(NAN), "isfinite");
}

TEST(DarkNight, MoonSpans) {
  // Night 23:00 to 04:00; the Moon sets at 10:00, rises at 22:00, sets at 03:00 and rises at 23:00.
  const double S = 60000.0 + 23.0 / 24.0, E = 60001.0 + 4.0 / 24.0;
  const auto at = [](double hours) { return 60000.0 + hours / 24.0; };
  const TestServices services("2024-03-05T12:00:00Z");
  const struct {
    double rise, set, hours;
  } cases[] = {
      {kMjdNoRiseOrSet, at(10.0), 0.0}, {at(22.0), at(27.0), 4.0},
      {at(47.0), kMjdNoRiseOrSet, 0.0}, {kMjdNoRiseOrSet, at(24.0), 1.0},
      {kMjdNoRiseOrSet, at(30.0), 5.0}, {at(26.0), kMjdNoRiseOrSet, 2.0},
      {at(20.0), kMjdNoRiseOrSet, 5.0}, {at(24.0), at(25.0), 1.0},
      {at(12.0), at(20.0), 0.0},        {at(12.0), at(40.0), 5.0},
      {at(30.0), at(40.0), 0.0},        {at(26.0), at(40.0), 2.0},
  };
  for (const auto& [rise, set, hours] : cases) {
    EXPECT_NEAR(EphemerisUtils::nightHoursAffectedWithMoon({rise, set}, S, E), hours, 1e-6)
        << (rise - 60000.0) * 24.0 << " to " << (set - 60000.0) * 24.0;
  }
  EXPECT_TRUE(services.log->messages.empty());
  EXPECT_EQ(EphemerisUtils::nightHoursAffectedWithMoon({NAN, at(40.0)}, S, E), 0.0);
  ASSERT_EQ(services.log->messages.size(), 1u);
  EXPECT_TRUE(services.log->messages[0].starts_with("Unknown case for moonless night hours."));

  std::vector<MoonRiseSet> spans;
  EphemerisUtils::addMoonRiseSets(spans, 2.5, 3.5);
  EphemerisUtils::addMoonRiseSets(spans, 5.5, 4.5);
  EphemerisUtils::addMoonRiseSets(spans, 6.5, kMjdNoRiseOrSet);
  EphemerisUtils::addMoonRiseSets(spans, kMjdNoRiseOrSet, kMjdAlwaysInvisible);
  ASSERT_EQ(spans.size(), 4u);
  EXPECT_EQ(spans[1].mjdRise, kMjdNoRiseOrSet);
  EXPECT_EQ(spans[1].mjdSet, 4.5);
  EXPECT_EQ(spans[2].mjdRise, 5.5);
  EXPECT_EQ(spans[3].mjdSet, kMjdNoRiseOrSet);
}

TEST(Moon, SupermoonRule) {
  const TestServices services("2024-03-05T12:00:00Z");
  // Perigee of 2016-11-14 at 11:2x UT.
  const auto isSupermoon = [](const char* date, double distance) {
    return ApogeePerigee::isFullMoonDateASupermoonDay(Instant(date), distance);
  };
  EXPECT_TRUE(isSupermoon("2016-11-20T00:00:00Z", 359999.0));
  EXPECT_TRUE(isSupermoon("2016-11-15T20:00:00Z", 360500.0));
  EXPECT_FALSE(isSupermoon("2016-11-16T02:00:00Z", 360500.0));
  EXPECT_FALSE(isSupermoon("2016-11-14T12:00:00Z", 361000.0));
  EXPECT_EQ(ApogeePerigee::nameForType(MoonDistance::kPerigee), "<moon_distance_perigee>");
  const auto onDay = ApogeePerigee::apogeePerigeesForDate(Instant("2016-11-14T01:00:00Z"));
  ASSERT_EQ(onDay.size(), 1u);
  EXPECT_EQ(onDay[0].type, MoonDistance::kPerigee);
}

TEST(Moon, TheDayOfAFullMoonIsFullAndItsInstantExactly) {
  // Full Moon on 2016-11-14 at 13:52 UT.
  struct Case {
    const char* now;
    const char* text;
    bool supermoon;
  };
  const Case cases[] = {
      {"2016-11-14T00:10:00Z", "<phase_supermoon> (99.3%, 1:53\u202FPM)", true},
      {"2016-11-14T13:53:00Z", "<phase_supermoon> (100.0%, 1:53\u202FPM)", true},
      {"2016-11-15T00:10:00Z", "<phase_waning_gibbous> (99.5%)", false},
      {"2016-11-29T12:19:00Z", "<phase_new_moon> (0.0%, 12:20\u202FPM)", false},
  };
  for (const Case& c : cases) {
    const TestServices services(c.now);
    WidgetAstrolib lib;
    lib.setCurrentLocation(platform::CLLocation{{48.0, 11.0}});
    lib.calculateData(WidgetDataMoon);
    EXPECT_EQ(lib.moonPhase, c.text);
    EXPECT_EQ(lib.isSupermoon, c.supermoon) << c.now;
  }
  EXPECT_FALSE(EphemerisUtils::moonPhaseToString(8));

  MoonPhaseResult gibbous;
  gibbous.phase = 5;
  gibbous.phaseIllumination = 0.7346f;
  EXPECT_EQ(gibbous.phaseStringWithPercentageInNewLine(true), "<phase_waxing_gibbous> \n(73.5%)");

  // Without high precision there is no principal phase.
  ephemeris::PtPosition place;
  ephemeris::PtSun sun(place);
  ephemeris::PtMoon moon(place);
  const MoonPhaseResult plain = EphemerisUtils::moonPhaseDataForMjd(
      Mjd("2016-11-14T13:52:00Z"), 0.0008, sun, moon, Instant("2016-11-14T13:52:00Z"), false);
  EXPECT_EQ(plain.mjdPhase, 0.0);
  EXPECT_GT(plain.phase, 3);
}

TEST(Calculator, KeepsWhatWasNotAskedForAndNeedsAPlace) {
  const TestServices services("2026-06-20T12:00:00Z", "Europe/Madrid");
  WidgetAstrolib lib;
  lib.calculateData(15);
  EXPECT_EQ(lib.mjdTodayAt0, 0.0);
  lib.setCurrentLocation(platform::CLLocation{{40.4, -3.7}});
  lib.calculateData(WidgetDataSunLight);
  EXPECT_GT(lib.mjdSunSet, 0.0);
  EXPECT_EQ(lib.mjdMoonRise, 0.0);
  EXPECT_FALSE(lib.goldenHourInterval);
  EXPECT_EQ(lib.mjdGcVisibilityStart, 0.0);
  const double sunset = lib.mjdSunSet;
  lib.calculateData(WidgetDataGalacticCenter);
  EXPECT_EQ(lib.mjdSunSet, sunset);
  EXPECT_GT(lib.mjdGcVisibilityStart, 0.0);
  // Every instant of the four families is computed once.
  lib.calculateData(15);
  EXPECT_LE(lib.positionsComputed(), 175);
}

TEST(SunEvent, MarksOfADay) {
  const March5 march("en_US");
  const auto at = [&](double hour) { return march.today + hour / 24.0; };
  SunEvent day;
  day.blueHour = {at(18.4), at(7.0)};
  day.goldenHour = {at(17.5), at(8.0)};
  day.civilTwilight = {at(6.5), at(18.7)};
  SunEvent empty;
  for (TwilightEvent* event : {&empty.blueHour, &empty.goldenHour, &empty.civilTwilight,
                               &empty.nauticalTwilight, &empty.astronomicalTwilight}) {
    *event = {kMjdAlwaysInvisible, kMjdAlwaysInvisible};
  }
  const auto current = [&](const SunEvent& today, double hour) {
    return today.currentEventForLightType(LightType::LightTypeGoldenHour, at(hour), empty, empty,
                                          march.today, march.tomorrow);
  };
  EXPECT_EQ(current(day, 5.0), "7:00 - 8:00\u202FAM");
  EXPECT_EQ(current(day, 8.9), "7:00 - 8:00\u202FAM");  // until an hour after its end
  EXPECT_EQ(current(day, 9.1), "5:30 - 6:24\u202FPM");
  EXPECT_FALSE(current(day, 19.5));
  EXPECT_FALSE(current(empty, 12.0));

  // A day that starts within an interval.
  SunEvent openStart = empty;
  openStart.goldenHour.mjdEnd = at(8.0);
  EXPECT_EQ(current(openStart, 8.5), "(-1) - 8:00\u202FAM");
  EXPECT_FALSE(current(openStart, 9.5));

  march.services.settings->setObject(true, platform::kUserDefaultsUseGeodesicLines);
  EXPECT_TRUE(SunEvent().setLinePositions);
}

TEST(BodyInfoEvent, Subevents) {
  const TestServices services("2024-03-05T12:00:00Z");
  BodyInfoEvent event(60374.5, "event");
  EXPECT_EQ(event.mjdForSubeventAtPoint({1.0, 1.0}), -1.0);
  for (const double hour : {10.0, 8.0, 9.0}) {
    auto sub = std::make_shared<BodyInfoEvent>(60374.0 + hour / 24.0, "sub");
    sub->frame = {hour, 0.0, 1.0, 1.0};
    event.addSubevent(sub);
  }
  EXPECT_EQ(event.subevents()[0]->timeString(), "8:00\u202FAM");
  EXPECT_EQ(event.mjdForSubeventAtPoint({9.5, 0.5}), 60374.0 + 9.0 / 24.0);
  EXPECT_EQ(event.mjdForSubeventAtPoint({9.5, 1.0}), -1.0);
  EXPECT_FALSE(BodyPathItem(1.0, 2.0, 60374.5, false).timeString());
  EXPECT_EQ(BodyPathItem(1.0, 2.0, 60374.5, true).timeString(), "12:00\u202FPM");
  CelestialBodyEvent rise;
  rise.setMjdRise(51544.5);
  EXPECT_EQ(rise.riseTimeInterval(),
            Instant("2000-01-01T12:00:00Z").timeIntervalSinceReferenceDate());
}

}  // namespace
}  // namespace lumenquest::events
