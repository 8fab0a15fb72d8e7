// What the providers of the sky answer, and what their views say.

#include <gtest/gtest.h>

#include <cmath>

#include "ephemeris/constants.h"
#include "widget_world.h"
#include "widgets/intents/intent_handler.h"
#include "widgets/moon/moon_content.h"
#include "widgets/sun/sun_content.h"
#include "widgets/text.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::widgets {
namespace {

using platform::CLLocation;
using platform::NSDate;
using platform::SavedLocation;
using testing::Instant;
using testing::WidgetWorld;
using Status = platform::CLAuthorizationStatus;

constexpr WidgetFamily kFamilies[] = {WidgetFamily::systemSmall, WidgetFamily::systemMedium,
                                      WidgetFamily::systemLarge};
constexpr double kMinute = 1.0 / 1440.0;
/// 2024-08-12T12:00:00Z, when the worlds of this file begin.
constexpr double kNoon = 60534.5;

LocationSelectorIntent Intent(Enum theme, std::optional<platform::CLLocationCoordinate2D> place) {
  LocationSelectorIntent intent;
  intent.theme = theme;
  if (place) intent.location = IntentPlacemark{CLLocation{*place}, "", {}};
  return intent;
}

/// What a provider answers by itself, without anything from outside.
template <typename Provider>
Timeline<typename Provider::Entry> Ask(WidgetWorld& world, const LocationSelectorIntent& intent,
                                       WidgetFamily family, Provider& provider) {
  std::optional<Timeline<typename Provider::Entry>> answer;
  provider.getTimeline(intent, {family}, [&](auto timeline) { answer = std::move(timeline); });
  world.queue->RunAll();
  EXPECT_TRUE(answer && answer->entries.size() == 1u);
  return answer.value();
}

template <typename Provider>
Timeline<typename Provider::Entry> AskNew(WidgetWorld& world, const LocationSelectorIntent& intent,
                                          WidgetFamily family) {
  Provider provider;
  return Ask(world, intent, family, provider);
}

TEST(Providers, ThemePlaceAndReload) {
  struct Case {
    Enum theme;
    std::optional<platform::CLLocationCoordinate2D> place;
    ThemeStyleEnum style;
    bool isCurrentLocation;
  };
  const Case cases[] = {{Enum::unknown, {{46.0, 14.0}}, ThemeStyleEnum::themeDark, false},
                        {Enum::system, {{90.0, 180.0}}, ThemeStyleEnum::themeSystem, true},
                        {Enum::dark, {{90.0, 179.9}}, ThemeStyleEnum::themeDark, false},
                        {Enum::light, {}, ThemeStyleEnum::themeLight, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.theme));
    WidgetWorld world;
    world.device->last = CLLocation{{46.0, 14.0}, world.clock->instant};
    const auto check = [&](const auto& timeline) {
      const auto& entry = timeline.entries[0];
      EXPECT_EQ(entry.date, world.clock->instant);
      EXPECT_EQ(entry.theme, c.style);
      const bool isBled = !c.place || c.isCurrentLocation || c.place->latitude == 46.0;
      const LocationWidgetData expected{isBled ? "46,14" : "90,180", Status::authorizedWhenInUse,
                                        c.isCurrentLocation, false,
                                        platform::NSTimeZone{isBled ? "Etc/GMT-1" : "Etc/GMT-12"}};
      EXPECT_EQ(entry.data.locationData, expected) << *entry.data.locationData.address;
      EXPECT_EQ(timeline.policy, TimelineReloadPolicy::after(Instant("2024-08-12T12:30:00Z")));
    };
    const LocationSelectorIntent intent = Intent(c.theme, c.place);
    check(AskNew<SunProvider>(world, intent, WidgetFamily::systemMedium));
    check(AskNew<MoonProvider>(world, intent, WidgetFamily::systemSmall));
    check(AskNew<GalacticCenterProvider>(world, intent, WidgetFamily::systemSmall));
    EXPECT_EQ(world.services.log->messages.size(), 0u);
  }
}

TEST(Providers, RecordsByFamilyForEveryOutcome) {
  enum Outcome { kLocated, kNowhere, kRefused };
  for (const Outcome outcome : {kLocated, kNowhere, kRefused}) {
    for (const WidgetFamily family : kFamilies) {
      SCOPED_TRACE(::testing::Message() << outcome << " " << static_cast<int>(family));
      WidgetWorld world("2024-08-12T12:00:00Z", "Europe/Berlin");
      const bool isSmall = family == WidgetFamily::systemSmall;
      const bool isLarge = family == WidgetFamily::systemLarge;
      SunProvider sunProvider;
      MoonProvider moonProvider;
      GalacticCenterProvider gcProvider;
      // An earlier answer, for all that there is, leaves nothing in a later one.
      world.device->last = CLLocation{{-33.0, 18.0}, world.clock->instant};
      const LocationSelectorIntent here;
      Ask(world, here, WidgetFamily::systemLarge, sunProvider);
      Ask(world, here, WidgetFamily::systemLarge, moonProvider);
      Ask(world, here, WidgetFamily::systemLarge, gcProvider);
      for (const auto& [key, value] : world.services.settings->dictionaryRepresentation()) {
        world.services.settings->setObject({}, key);
      }
      if (outcome == kRefused) world.device->status = Status::denied;
      if (outcome != kLocated) world.device->isForWidgets = false;
      const SunTimelineEntry sun = Ask(world, here, family, sunProvider).entries[0];
      const MoonTimelineEntry moon = Ask(world, here, family, moonProvider).entries[0];
      const GalacticCenterTimelineEntry gc = Ask(world, here, family, gcProvider).entries[0];

      EXPECT_EQ(sun.moonData.has_value(), isLarge || outcome == kRefused);
      EXPECT_EQ(sun.gcData.has_value(), isLarge && outcome != kRefused);
      EXPECT_EQ(moon.gcData.has_value(), !isSmall && outcome != kRefused);
      if (outcome == kLocated) {
        EXPECT_EQ(contentFor(sun.data.locationData), WidgetContent::information);
        EXPECT_FALSE(sun.data.lightType.empty());
        EXPECT_GT(sun.data.nextEventMjd, kNoon);
        EXPECT_EQ(sun.data.blueHourInterval == kNoInterval, isSmall);
        EXPECT_GT(moon.data.mjdRise, kNoon - 1.0);
        EXPECT_FALSE(moon.data.moonPhaseString.empty());
        EXPECT_TRUE(gc.data.hasWindow());
        if (isLarge) {
          EXPECT_EQ(sun.moonData, moon.data);
          EXPECT_EQ(sun.gcData, gc.data);
          EXPECT_EQ(moon.gcData, gc.data);
        }
        continue;
      }
      const bool isRefused = outcome == kRefused;
      const LocationWidgetData location{
          {}, isRefused ? Status::denied : Status::authorizedWhenInUse, true, !isRefused, {}};
      EXPECT_EQ(contentFor(location),
                isRefused ? WidgetContent::locationDenied : WidgetContent::locationTimeOut);
      SunLightWidgetData emptySun;
      emptySun.locationData = location;
      if (!isRefused) {
        for (auto* interval : {&emptySun.goldenHourInterval, &emptySun.blueHourInterval,
                               &emptySun.astronomicalTwilightInterval}) {
          *interval = kNoInterval;
        }
      }
      MoonWidgetData emptyMoon;
      emptyMoon.locationData = location;
      GalacticCenterWidgetData emptyGc;
      emptyGc.locationData = location;
      EXPECT_EQ(sun.data, emptySun);
      EXPECT_EQ(moon.data, emptyMoon);
      EXPECT_EQ(gc.data, emptyGc);
      EXPECT_EQ(sun.moonData.value_or(emptyMoon), emptyMoon);
      EXPECT_EQ(sun.gcData.value_or(emptyGc), emptyGc);
    }
  }
  // Refusal counts before error.
  EXPECT_EQ(contentFor({{}, Status::denied, true, true, {}}), WidgetContent::locationDenied);
}

TEST(Providers, SamplesAskNobody) {
  WidgetWorld world("2024-08-12T12:00:00Z", "Asia/Tokyo");
  const auto check = [&](auto provider, WidgetFamily family) {
    const auto placeholder = provider.placeholder({family});
    std::optional<decltype(provider.placeholder({}))> snapshot;
    provider.getSnapshot(Intent(Enum::light, {{1.0, 2.0}}), {family},
                         [&](auto entry) { snapshot = std::move(entry); });
    EXPECT_TRUE(snapshot);
    EXPECT_EQ(placeholder.theme, ThemeStyleEnum::themeSystem);
    EXPECT_EQ(snapshot->theme, ThemeStyleEnum::themeLight);
    for (const auto* entry : {&placeholder, std::as_const(snapshot).operator->()}) {
      EXPECT_EQ(entry->date, world.clock->instant);
      const LocationWidgetData& location = entry->data.locationData;
      const char* zone = entry == &placeholder ? kSampleTimeZone : "Asia/Tokyo";
      EXPECT_EQ(location, (LocationWidgetData{"<sample_place_name>", Status::authorizedWhenInUse,
                                              true, false, platform::NSTimeZone{zone}}));
      EXPECT_GT(entry->data.mjdTomorrowAt0, kNoon);
    }
    return std::pair(placeholder, *snapshot);
  };
  for (const WidgetFamily family : kFamilies) {
    const bool isLarge = family == WidgetFamily::systemLarge;
    const auto [placeholder, snapshot] = check(SunProvider(), family);
    EXPECT_NE(placeholder.data.goldenHourInterval, kNoInterval);
    EXPECT_EQ(snapshot.data.goldenHourInterval == kNoInterval, family == kFamilies[0]);
    EXPECT_EQ(snapshot.moonData && snapshot.gcData, isLarge);
    EXPECT_EQ(check(MoonProvider(), family).second.gcData.has_value(), family != kFamilies[0]);
    check(GalacticCenterProvider(), family);
  }
  EXPECT_EQ(world.device->requests + world.geocoder->requests, 0);
  EXPECT_EQ(SavedLocation::load(), std::nullopt);
}

TEST(Records, CopyTheCalculator) {
  // Numbers that tell which went where.
  const WidgetWorld world;
  events::WidgetAstrolib calculator;
  calculator.setCurrentLocation(CLLocation{{46.0, 14.0}});
  calculator.mjdTomorrowAt0 = 60535.0;
  calculator.mjdSunRise = 1.0;
  calculator.mjdSunSet = 2.0;
  calculator.sunElevation = 3.5f;
  calculator.currentLightType = "light";
  calculator.nextEventMjd = 4.0;
  calculator.nextEventName = "next";
  calculator.goldenHourInterval = "";
  calculator.blueHourInterval = "blue";
  calculator.mjdMoonRise = 5.0;
  calculator.mjdMoonSet = 6.0;
  calculator.moonPhase = "phase";
  calculator.phaseIllumination = 0.25f;
  calculator.zenithAngle = static_cast<float>(-M_PI_2);
  calculator.moonElevation = 7.5f;
  calculator.isMoonWaning = true;
  calculator.mjdGcVisibilityStart = 60534.9;
  calculator.mjdGcVisibilityEnd = 60535.1;
  calculator.gcVisibilityStartAngle = M_PI / 6.0;
  calculator.gcVisibilityEndAngle = -M_PI / 3.0;
  calculator.moonlessHours = 8.5f;
  calculator.dateNextVisiblity = world.clock->instant;
  const RecordSources sources{&calculator, Status::authorizedWhenInUse, "here", {}, true};
  const LocationWidgetData location{"here", Status::authorizedWhenInUse, true, false, {}};

  EXPECT_EQ(SunLightWidgetData(sources).locationData, location);
  const SunLightWidgetData sun(sources);
  EXPECT_EQ((std::tuple(sun.mjdTomorrowAt0, sun.mjdRise, sun.mjdSet, sun.sunElevation,
                        sun.lightType, sun.nextEventMjd, sun.nextEventName)),
            (std::tuple(60535.0, 1.0, 2.0, 3.5f, "light", 4.0, "next")));
  EXPECT_EQ(
      (std::tuple(sun.goldenHourInterval, sun.blueHourInterval, sun.astronomicalTwilightInterval)),
      (std::tuple("--", "blue", "--")));
  const MoonWidgetData moon(sources);
  EXPECT_EQ(moon.locationData, location);
  EXPECT_EQ((std::tuple(moon.mjdTomorrowAt0, moon.mjdRise, moon.mjdSet, moon.moonPhaseString,
                        moon.moonPhase, moon.zenithAngle, moon.moonElevation, moon.sunElevation)),
            (std::tuple(60535.0, 5.0, 6.0, "phase", 0.25f, -90.0f, 7.5f, 3.5f)));
  EXPECT_EQ((std::pair(moon.isMoonWaning, moon.isSupermoon)), (std::pair(true, false)));
  const GalacticCenterWidgetData gc(sources);
  EXPECT_EQ(gc.locationData, location);
  EXPECT_EQ((std::tuple(gc.mjdTomorrowAt0, gc.mjdVisibilityFrom, gc.mjdVisibilityTo,
                        gc.moonlessHours, gc.dateNextVisibility)),
            (std::tuple(60535.0, 60534.9, 60535.1, 8.5f, world.clock->instant)));
  EXPECT_NEAR(gc.visibilityFromAngle, 30.0, 1e-12);
  EXPECT_NEAR(gc.visibilityToAngle, -60.0, 1e-12);
  // On an August evening the centre stands in the south and moves westwards.
  EXPECT_GT(gc.visibilityFromAzimuth, 150.0);
  EXPECT_GT(gc.visibilityToAzimuth, gc.visibilityFromAzimuth);
  EXPECT_LT(gc.visibilityToAzimuth, 270.0);

  for (const WidgetFamily family : kFamilies) {
    events::WidgetAstrolib nowhere;
    EXPECT_TRUE(SunLightWidgetData({&nowhere, {}, {}, {}, {}}).locationData.withError);
    EXPECT_EQ(SunProvider::maskFor(family), family == WidgetFamily::systemSmall    ? 1u
                                            : family == WidgetFamily::systemMedium ? 3u
                                                                                   : 15u);
    EXPECT_EQ(MoonProvider::maskFor(family), family == WidgetFamily::systemSmall ? 4u : 12u);
    EXPECT_EQ(GalacticCenterProvider::maskFor(family), 8u);
  }
}

TEST(SunReload, AtAnEventWithinTheHour) {
  const WidgetWorld world;
  const NSDate now = world.clock->instant;
  const auto minutes = [&](double m) {
    return NSDate(now.timeIntervalSinceReferenceDate() + 60.0 * m);
  };
  const struct {
    double event;
    double reload;
  } cases[] = {{20.0, 20.0}, {29.9, 30.0},  {30.0, 30.0}, {45.0, 45.0}, {59.0, 59.0},
               {60.0, 30.0}, {75.0, 30.0},  {0.0, 30.0},  {-5.0, 30.0}, {0.6, 1.0},
               {0.4, 30.0},  {20.49, 20.0}, {20.51, 21.0}};
  for (const auto& c : cases) {
    EXPECT_EQ(sunReloadDate(now, minutes(30.0), kNoon + c.event * kMinute), minutes(c.reload))
        << c.event;
  }
  for (const double none : {0.0, -2.0, -3.0, -4.0, -double{INFINITY}, double{NAN}}) {
    EXPECT_EQ(sunReloadDate(now, minutes(30.0), none), minutes(30.0)) << none;
  }
}

TEST(WidgetsProgrammingErrors, StopAndNothingElseDoes) {
  const WidgetWorld world;
  for (const float bad : {NAN, INFINITY, -INFINITY, 1e19f, -1e19f, 9223372036854775808.0f}) {
    EXPECT_DEATH(moonlessHoursText(bad), "Assertion failed.*moonlessHours") << bad;
  }
  const NSDate now = world.clock->instant;
  for (const double beyond : {1e9, 1e18, 1e19, double{INFINITY}}) {
    EXPECT_DEATH(sunReloadDate(now, now, beyond), "Assertion failed") << beyond;
  }
  for (const double bad : {double{NAN}, double{INFINITY}, 1e19}) {
    EXPECT_DEATH(eventTimeText(bad, 0.0, {}), "IntegerPart") << bad;
  }
  const auto intents = [&] {
    IntentHandler().provideLocationOptionsCollectionForLocationSelector({}, "x", nullptr);
  };
  EXPECT_DEATH(intents(), "withCompletion");

  // Records as a calculator may leave them, at the ends of what there is.
  EXPECT_EQ(moonlessHoursText(9.2e18f), "9200000267938955264<unit_abbr_hour>");
  for (const double mjd : {0.0, -1.0, -2.0, -3.0, -4.0, 1e9, -1e9, 7e8, 9e18}) {
    SunLightWidgetData sun;
    sun.mjdRise = sun.mjdSet = sun.nextEventMjd = mjd;
    sun.sunElevation = NAN;
    MoonWidgetData moon;
    moon.mjdRise = moon.mjdSet = mjd;
    GalacticCenterWidgetData gc;
    gc.mjdVisibilityFrom = gc.mjdVisibilityTo = mjd;
    gc.moonlessHours = -9e18f;
    gc.visibilityFromAzimuth = 359.9;
    gc.dateNextVisibility = NSDate(mjd);
    gc.locationData.timeZone = platform::NSTimeZone{"Etc/Nowhere"};
    for (const WidgetFamily family : kFamilies) {
      sunContent(sun, family);
      moonContent(moon, &gc, family);
      moonContent(moon, nullptr, family);
    }
  }
}

TEST(Contents, Sun) {
  WidgetWorld world;
  SunLightWidgetData data;
  data.locationData.address = "Bled";
  data.locationData.timeZone = platform::NSTimeZone{"Asia/Kathmandu"};
  data.mjdTomorrowAt0 = 60535.0;
  data.mjdRise = 60534.25;
  data.mjdSet = 60535.25;
  data.sunElevation = -4.0f;
  data.lightType = "Blue";
  data.goldenHourInterval = "golden";
  data.blueHourInterval = "blue";
  data.astronomicalTwilightInterval = "astronomical";
  data.nextEventMjd = 60534.75;
  data.nextEventName = "Night";
  for (const WidgetFamily family : kFamilies) {
    // Some other widget was in another zone last.
    platform::Formatters::sharedInstance().setTimeZone({"America/New_York"});
    const SunContent content = sunContent(data, family);
    EXPECT_EQ(content.address, "Bled");
    EXPECT_EQ(content.lightType, "Blue");
    EXPECT_EQ(content.iconSize, family == WidgetFamily::systemSmall ? 31.0 : 57.0);
    EXPECT_EQ(content.sunColor, (platform::UIColor{38 / 255.0, 137 / 255.0, 248 / 255.0, 1.0}));
    std::string rows;
    for (const LightTypeRow& row : content.rows) rows += row.title + row.interval;
    const std::string medium = "<twilight_golden_hour>golden<twilight_blue_hour>blue";
    EXPECT_EQ(rows, family == WidgetFamily::systemSmall    ? ""
                    : family == WidgetFamily::systemMedium ? medium
                                                           : medium +
                                                                 "<twilight_astronomical>"
                                                                 "astronomical");
    EXPECT_EQ(content.nextLight, "Night 11:45\u202FPM");
    ASSERT_EQ(content.riseSet.times.size(), 2u);
    EXPECT_EQ(content.riseSet.times[0].text, "11:45\u202FAM");
    EXPECT_EQ(content.riseSet.times[1].text, "11:45\u202FAM <event_one_day_plus>");
  }
  data.nextEventMjd = 0.0;
  EXPECT_EQ(sunContent(data, WidgetFamily::systemLarge).nextLight, "");
}

TEST(Contents, RiseAndSet) {
  const WidgetWorld world;
  const struct {
    double rise, set;
    const char* shown;
  } cases[] = {
      {60534.25, 60534.75, "6:00\u202FAM|6:00\u202FPM"},
      {60535.0, 60534.75, "12:00\u202FAM <event_one_day_plus>|6:00\u202FPM"},
      {-3.0, 60534.75, "<body_circumpolar>"},
      {60534.25, -3.0, "<body_circumpolar>"},
      {-4.0, -4.0, "<body_always_invisible>"},
      {60534.25, -4.0, "<body_always_invisible>"},
      {-2.0, 60534.75, "<event_no_rise_set>|6:00\u202FPM"},
      {60534.25, -2.0, "6:00\u202FAM|<event_no_rise_set>"},
      {-2.0, -2.0, "<event_no_rise_set>"},
      {0.0, 0.0, ""},
  };
  for (const auto& c : cases) {
    const RiseSetContent content = riseSetContent(c.rise, c.set, 60535.0, {});
    std::string shown = content.sentence;
    for (const BodyRiseSetTime& time : content.times) {
      EXPECT_EQ(time.isRise, &time == &content.times.front());
      shown += (time.isRise ? "" : "|") + time.text;
    }
    EXPECT_EQ(shown, c.shown);
  }
}

TEST(Contents, GalacticCentre) {
  WidgetWorld world;
  GalacticCenterWidgetData data;
  data.locationData.timeZone = platform::NSTimeZone{"Pacific/Auckland"};
  data.mjdTomorrowAt0 = 60535.0;
  data.mjdVisibilityFrom = 60534.9;
  data.visibilityFromAzimuth = 178.4;
  data.mjdVisibilityTo = 60535.1;
  data.visibilityToAzimuth = 359.6;
  data.moonlessHours = 2.25f;
  for (const WidgetFamily family : kFamilies) {
    const bool isSmall = family == WidgetFamily::systemSmall;
    const bool isLarge = family == WidgetFamily::systemLarge;
    const GCVisibilityContent content = gcVisibilityContent(data, family);
    ASSERT_EQ(content.window.size(), 2u);
    EXPECT_EQ(content.window[0].title, isSmall ? "<gc_visibility_from>" : "<gc_visible_from>");
    EXPECT_EQ(content.window[1].title, isSmall ? "<gc_visibility_to>" : "<gc_visible_to>");
    EXPECT_EQ(content.window[0].time, "9:36\u202FAM");
    EXPECT_EQ(content.window[1].time, "2:24\u202FPM <event_one_day_plus>");
    EXPECT_EQ(content.window[0].azimuth.find("178° "), 0u);
    EXPECT_EQ(content.window[1].azimuth.find("0° "), 0u);  // not 360
    EXPECT_EQ(content.notVisibleUntil + content.alwaysInvisible, "");
    EXPECT_EQ(content.moonlessHours, isLarge ? "2<unit_abbr_hour> 15<unit_abbr_minute>" : "");
    EXPECT_EQ(content.moonlessHoursTitle, isLarge ? "<night_with_no_moon>" : "");
    // The small Moon has no line for the centre.
    EXPECT_EQ(moonContent({}, isSmall ? nullptr : &data, family).galacticCenter.has_value(),
              !isSmall);
  }
  data.mjdVisibilityFrom = data.mjdVisibilityTo = ephemeris::kMjdAlwaysInvisible;
  EXPECT_FALSE(data.hasWindow());
  EXPECT_EQ(gcVisibilityContent(data, WidgetFamily::systemSmall).alwaysInvisible,
            "<body_always_invisible>");
  // Sunday evening in London is Monday in Auckland.
  data.dateNextVisibility = Instant("2024-09-15T20:00:00Z");
  for (const auto& [from, says] :
       {std::pair(ephemeris::kMjdAlwaysInvisible, "<body_always_invisible>"),
        std::pair(ephemeris::kMjdNoRiseOrSet, "")}) {
    data.mjdVisibilityFrom = from;
    const GCVisibilityContent content = gcVisibilityContent(data, WidgetFamily::systemSmall);
    EXPECT_EQ(content.notVisibleUntil, "Monday, 9/16/24");
    EXPECT_EQ(content.alwaysInvisible, says);
    EXPECT_TRUE(content.window.empty());
  }
}

TEST(Contents, MoonlessHours) {
  const WidgetWorld world;
  const struct {
    float hours;
    const char* text;
  } cases[] = {{0.0f, "0H"},       {0.5f, "30M"},   {2.0f, "2H"},   {2.25f, "2H 15M"},
               {1.999f, "1H 60M"}, {-0.5f, "-30M"}, {0.004f, "0H"}, {-1.5f, "-1H -30M"}};
  for (const auto& c : cases) {
    std::string text = moonlessHoursText(c.hours);
    for (const auto& [unit, letter] :
         {std::pair("<unit_abbr_hour>", "H"), std::pair("<unit_abbr_minute>", "M")}) {
      if (const auto at = text.find(unit); at != std::string::npos) {
        text.replace(at, std::string(unit).size(), letter);
      }
    }
    EXPECT_EQ(text, c.text) << c.hours;
  }
}

TEST(Bundle, SaysWhatThereIs) {
  const WidgetWorld world;
  std::string said;
  for (const auto& widget : LumenquestWidgets::configurations()) {
    said += widget.kind + widget.displayName + widget.description;
    for (const WidgetFamily family : widget.supportedFamilies)
      said += "SML"[static_cast<int>(family)];
    said += widget.intent == ConfigurationIntent::themeSelector ? " theme\n" : "\n";
  }
  EXPECT_EQ(said,
            "SunWidget<appwidget_sun><appwidget_sun_description>SM\n"
            "MoonWidget<appwidget_moon><appwidget_moon_description>SM\n"
            "GalacticCenterSmallWidget<appwidget_milky_way><appwidget_milky_way_description>S\n"
            "LumenquestWidgetLumenquest<appwidget_lumenquest_description>L\n"
            "PlansWidget<appwidget_plans><appwidget_plans_description>SM theme\n");
  for (const SystemVersion version : {SystemVersion{16, 9}, SystemVersion{17, 0}}) {
    for (const auto& one : LumenquestWidgets::configurations(version)) {
      EXPECT_EQ(one.contentMarginsDisabled, version.major >= 17);
    }
  }
}

}  // namespace
}  // namespace lumenquest::widgets
