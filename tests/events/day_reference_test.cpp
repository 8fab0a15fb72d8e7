// Holds whole days against an independent implementation (tests/data/README.md): every value and
// every text of the calculator, the records behind them, and the next date with the galactic
// centre.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "events/apogee_perigee.h"
#include "events/ephemeris_utils.h"
#include "events/sun_event.h"
#include "events/today_view_model.h"
#include "events/widget_astrolib.h"
#include "platform/calendar_zone.h"
#include "platform/formatters.h"
#include "platform/ns_calendar.h"
#include "test_services.h"

namespace lumenquest::events {
namespace {

using Json = nlohmann::json;
using platform::CalendarZone;
using platform::CLLocation;
using platform::NSTimeZone;
using testing::TestServices;

Json OrNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

Json Values(const WidgetAstrolib& lib) {
  return {{"mjdTodayAt0", lib.mjdTodayAt0},
          {"mjdTomorrowAt0", lib.mjdTomorrowAt0},
          {"mjdSunRise", lib.mjdSunRise},
          {"mjdSunSet", lib.mjdSunSet},
          {"currentLightType", lib.currentLightType},
          {"nextEventMjd", lib.nextEventMjd},
          {"nextEventName", OrNull(lib.nextEventName)},
          {"goldenHourInterval", OrNull(lib.goldenHourInterval)},
          {"blueHourInterval", OrNull(lib.blueHourInterval)},
          {"astronomicalTwilightInterval", OrNull(lib.astronomicalTwilightInterval)},
          {"mjdMoonRise", lib.mjdMoonRise},
          {"mjdMoonSet", lib.mjdMoonSet},
          {"moonPhase", OrNull(lib.moonPhase)},
          {"phaseIllumination", lib.phaseIllumination},
          {"zenithAngle", lib.zenithAngle},
          {"moonElevation", lib.moonElevation},
          {"sunElevation", lib.sunElevation},
          {"isMoonWaning", lib.isMoonWaning},
          {"isSupermoon", lib.isSupermoon},
          {"mjdGcVisibilityStart", lib.mjdGcVisibilityStart},
          {"mjdGcVisibilityEnd", lib.mjdGcVisibilityEnd},
          {"gcVisibilityStartAngle", lib.gcVisibilityStartAngle},
          {"gcVisibilityEndAngle", lib.gcVisibilityEndAngle},
          {"moonlessHours", lib.moonlessHours}};
}

/// Texts and flags must agree exactly, numbers to the last bits.
void ExpectSame(const Json& actual, const Json& expected, const std::string& where) {
  if (expected.is_number_float()) {
    const double value = expected.get<double>();
    EXPECT_NEAR(actual.get<double>(), value, 1e-11 * std::max(1.0, std::fabs(value))) << where;
  } else {
    EXPECT_EQ(actual, expected) << where;
  }
}

/// The day's light changes and intervals, with the Sun's rise and set filled in.
SunEvent DayOf(const WidgetAstrolib& lib, ephemeris::PtSun& sun, double deltaT) {
  SunEvent day = DayCalculator::sunEventFromTwilight(
      Twilight::calculateTwilightsForMjd(lib.mjdTodayAt0, deltaT, sun));
  sun.FindEvents(ephemeris::SearchEvent::RiseSet, lib.mjdTodayAt0, deltaT, &day.mjdRise,
                 &day.mjdSet);
  return day;
}

void ExpectRecords(const WidgetAstrolib& lib, const Json& expected) {
  ephemeris::PtPosition place;
  place.latitude = lib.currentLocation()->coordinate.latitude;
  place.longitude = lib.currentLocation()->coordinate.longitude;
  place.CalcObserverCoords();
  ephemeris::PtSun sun(place);
  ephemeris::PtDateTime today;
  today.FromModifiedJulianDay(lib.mjdTodayAt0);
  const SunEvent day = DayOf(lib, sun, today.DeltaT());

  for (unsigned type = 0; type < 5; ++type) {
    const TwilightIntervals intervals = day.twilightIntervalForLightType(LightType(type));
    const Json& wanted = expected.at("intervals").at(type);
    ExpectSame(intervals.mjdFirstInterval, wanted.at("mjdFirstInterval"), "first mjd");
    ExpectSame(intervals.mjdSecondInterval, wanted.at("mjdSecondInterval"), "second mjd");
    EXPECT_EQ(intervals.firstInterval, wanted.at("firstInterval").get<std::string>());
    EXPECT_EQ(intervals.secondInterval, wanted.at("secondInterval").get<std::string>());
  }

  const auto changes = day.eventsArray();
  ASSERT_EQ(changes.size(), expected.at("eventsArray").size());
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const Json& wanted = expected.at("eventsArray").at(i);
    ExpectSame(changes[i]->mjd(), wanted.at("mjd"), "light change");
    EXPECT_EQ(changes[i]->name, wanted.at("name").get<std::string>());
    EXPECT_EQ(changes[i]->subtitle, wanted.at("subtitle").get<std::string>());
    const platform::NamedColor& color = changes[i]->bodyColor;
    EXPECT_EQ(color.name + (color.alpha == 0.2 ? "@0.2" : ""),
              wanted.at("color").get<std::string>());
  }

  const platform::NSDate now = platform::NSDate::date();
  EXPECT_NEAR(EphemerisUtils::moonAgeAt(now), expected.at("moonAge").get<double>(), 1e-5);
  const auto extremes = ApogeePerigee::apogeePerigeesForYear(now.yearValue(), now.monthValue());
  ASSERT_EQ(extremes.size(), expected.at("extremesOfMonth").size());
  for (std::size_t i = 0; i < extremes.size(); ++i) {
    const Json& wanted = expected.at("extremesOfMonth").at(i);
    EXPECT_EQ(extremes[i].type, wanted.at("type"));
    ExpectSame(extremes[i].mjd, wanted.at("mjd"), "extreme");
    ExpectSame(extremes[i].aproxDistance, wanted.at("distance"), "distance");
  }
}

TEST(DayReference, ValuesTextsAndRecords) {
  std::ifstream file(LUMENQUEST_TEST_DATA "/day_reference.jsonl");
  int days = 0, records = 0;
  for (std::string line; std::getline(file, line); ++days) {
    const Json entry = Json::parse(line);
    const Json& in = entry.at("in");
    SCOPED_TRACE(in.dump());
    const NSTimeZone zone{in.at("timeZone")};
    const TestServices services(in.at("at"), "Pacific/Pitcairn", in.at("locale"));
    const CLLocation location{{in.at("latitude"), in.at("longitude")}};

    WidgetAstrolib lib;
    lib.setCurrentLocation(location);
    lib.setCurrentTimeZone(zone);
    lib.calculateData(15);
    const Json values = Values(lib);
    for (const auto& [key, value] : values.items())
      ExpectSame(value, entry.at("values").at(key), key);
    // The shared calendar has its own zone back.
    EXPECT_EQ(platform::NSCalendar::cachedCalendar().timeZone().name, "Pacific/Pitcairn");

    const CalendarZone calendarZone(zone);
    TodayViewModel model;
    model.setCurrentLocation(location);
    if (entry.contains("next")) {
      model.calculateNightData();
      EXPECT_EQ(model.dateNextVisiblity ? Json(adapters::formatRfc3339(*model.dateNextVisiblity))
                                        : Json(),
                entry.at("next"));
      EXPECT_EQ(model.mjdGcVisibilityStart, lib.mjdGcVisibilityStart);
      EXPECT_EQ(model.gcVisibilityEndAngle, lib.gcVisibilityEndAngle);
    }

    // The view model shows the same day, and leaves the night's values as they are.
    const auto next = model.dateNextVisiblity;
    model.calculateData();
    EXPECT_EQ(model.dateNextVisiblity, next);
    EXPECT_EQ(model.mjdSunRise, lib.mjdSunRise);
    EXPECT_EQ(model.moonPhase, lib.moonPhase);
    EXPECT_EQ(model.goldenHourInterval, lib.goldenHourInterval);
    EXPECT_EQ(model.nextEvent ? model.nextEvent->mjd() : 0.0, lib.nextEventMjd);
    EXPECT_EQ(model.moonPhaseData->zenithAngle, lib.zenithAngle);

    if (entry.contains("records")) {
      ExpectRecords(lib, entry.at("records"));
      ++records;
    }
  }
  EXPECT_EQ(days, 70);
  EXPECT_GE(records, 15);
}

}  // namespace
}  // namespace lumenquest::events
