// What the providers of the sky answer, and what their views say.

#include <gtest/gtest.h>

#include <cmath>

#include "ephemeris/constants.h"
#include "widget_world.h"
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

/// What a provider answers by itself, without anything from outside.
template <typename Provider>
auto Ask(WidgetWorld& world, const LocationSelectorIntent& intent, WidgetFamily family,
         Provider&& provider) {
  std::optional<Timeline<typename std::decay_t<Provider>::Entry>> answer;
  provider.getTimeline(intent, {family}, [&](auto timeline) { answer = std::move(timeline); });
  world.queue->RunAll();
  EXPECT_TRUE(answer && answer->entries.size() == 1u);
  return answer.value();
}

TEST(Providers, WithoutAPlaceRecordsAreEmptyInEveryFamily) {
  for (const bool isRefused : {true, false}) {
    for (const WidgetFamily family : kFamilies) {
      SCOPED_TRACE(::testing::Message() << isRefused << " " << static_cast<int>(family));
      WidgetWorld world("2024-08-12T12:00:00Z", "Europe/Berlin");
      SunProvider sunProvider;
      MoonProvider moonProvider;
      // An earlier answer, for all that there is, leaves nothing in a later one.
      world.device->last = CLLocation{{-33.0, 18.0}, world.clock->instant};
      const LocationSelectorIntent here;
      const auto earlier = Ask(world, here, WidgetFamily::systemLarge, sunProvider).entries[0];
      EXPECT_GT(earlier.data.nextEventMjd, kNoon);
      EXPECT_TRUE(earlier.gcData->hasWindow());
      EXPECT_EQ(earlier.moonData,
                Ask(world, here, WidgetFamily::systemLarge, moonProvider).entries[0].data);
      for (const auto& [key, value] : world.services.settings->dictionaryRepresentation()) {
        world.services.settings->setObject({}, key);
      }
      if (isRefused) world.device->status = Status::denied;
      world.device->isForWidgets = false;
      const SunTimelineEntry sun = Ask(world, here, family, sunProvider).entries[0];
      const MoonTimelineEntry moon = Ask(world, here, family, moonProvider).entries[0];
      const bool isLarge = family == WidgetFamily::systemLarge;
      EXPECT_EQ(sun.moonData.has_value(), isLarge || isRefused);
      EXPECT_EQ(sun.gcData.has_value(), isLarge && !isRefused);
      EXPECT_EQ(moon.gcData.has_value(), family != WidgetFamily::systemSmall && !isRefused);

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
      EXPECT_EQ(sun.moonData.value_or(emptyMoon), emptyMoon);
      EXPECT_EQ(sun.gcData.value_or(emptyGc), emptyGc);
    }
  }
  // Refusal counts before error.
  EXPECT_EQ(contentFor({{}, Status::denied, true, true, {}}), WidgetContent::locationDenied);
}

TEST(Providers, SamplesAskNobody) {
  // Which records they have stands in the command's tests.
  WidgetWorld world("2024-08-12T12:00:00Z", "Asia/Tokyo");
  const auto check = [&](auto provider) {
    const auto placeholder = provider.placeholder({WidgetFamily::systemLarge});
    std::optional<decltype(provider.placeholder({}))> snapshot;
    LocationSelectorIntent intent;
    intent.location = IntentPlacemark{CLLocation{{1.0, 2.0}}, "", {}};
    provider.getSnapshot(intent, {}, [&](auto entry) { snapshot = std::move(entry); });
    ASSERT_TRUE(snapshot);
    for (const auto* entry : {&placeholder, std::as_const(snapshot).operator->()}) {
      const char* zone = entry == &placeholder ? kSampleTimeZone : "Asia/Tokyo";
      EXPECT_EQ(entry->data.locationData,
                (LocationWidgetData{"<sample_place_name>", Status::authorizedWhenInUse, true, false,
                                    platform::NSTimeZone{zone}}));
      EXPECT_GT(entry->data.mjdTomorrowAt0, kNoon);
    }
  };
  check(SunProvider());
  check(MoonProvider());
  check(GalacticCenterProvider());
  EXPECT_EQ(world.device->requests + world.geocoder->requests, 0);
  EXPECT_EQ(SavedLocation::load(), std::nullopt);
}

TEST(Providers, GoWithTheirHostThoughNobodyAnswered) {
  // The device keeps silent, or the user does; hosts that ask for months drop many such providers.
  for (const Status status : {Status::authorizedWhenInUse, Status::notDetermined}) {
    WidgetWorld world;
    world.device->status = status;
    const auto held = std::make_shared<int>();
    {
      MoonProvider provider;
      provider.getTimeline({}, {}, [held](auto&&) { ADD_FAILURE() << "an answer to nobody"; });
      EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
    world.device->Decide(Status::authorizedWhenInUse);
    world.device->Fix({{46.0, 14.0}, Instant("2024-08-12T11:00:00Z")}, true);
    world.queue->RunAll();
  }
}

TEST(Providers, MayBeDroppedWhileTheyAnswer) {
  enum Event { kNothing, kFix, kDenied, kFailure };
  for (const Event event : {kNothing, kFix, kDenied, kFailure}) {
    WidgetWorld world;
    const CLLocation here{{46.0, 14.0}, world.clock->instant};
    if (event == kNothing) world.device->last = here;
    int answers = 0;
    auto provider = std::make_unique<SunProvider>();
    provider->getTimeline({}, {}, [&](auto&&) {
      provider.reset();
      ++answers;
    });
    if (event == kFix) world.device->Fix(here);
    if (event == kDenied) world.device->Decide(Status::denied);
    if (event == kFailure) world.device->Fail();
    world.queue->RunAll();
    EXPECT_EQ(answers, 1) << event;
  }
}

TEST(Records, HoldDegreesAndMarksOfWhatIsMissing) {
  const WidgetWorld world;
  events::WidgetAstrolib calculator;
  calculator.setCurrentLocation(CLLocation{{46.0, 14.0}});
  calculator.calculateData(15u);
  calculator.goldenHourInterval = "";
  const RecordSources sources{&calculator, Status::authorizedWhenInUse, "here", {}, true};
  const float degrees = 180.0f / static_cast<float>(M_PI);
  const SunLightWidgetData sun(sources);
  EXPECT_EQ(sun.goldenHourInterval, kNoInterval);
  EXPECT_EQ(sun.blueHourInterval, calculator.blueHourInterval);
  EXPECT_NE(sun.mjdRise, MoonWidgetData(sources).mjdRise);
  EXPECT_NEAR(MoonWidgetData(sources).zenithAngle, calculator.zenithAngle * degrees, 1e-4f);
  const GalacticCenterWidgetData gc(sources);
  EXPECT_NEAR(gc.visibilityFromAngle, calculator.gcVisibilityStartAngle * degrees, 1e-4);
  EXPECT_NEAR(gc.visibilityToAngle, calculator.gcVisibilityEndAngle * degrees, 1e-4);
  // On an August evening the centre stands in the south and moves westwards.
  EXPECT_GT(gc.visibilityFromAzimuth, 150.0);
  EXPECT_GT(gc.visibilityToAzimuth, gc.visibilityFromAzimuth);
  EXPECT_LT(gc.visibilityToAzimuth, 270.0);
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

TEST(WidgetsProgrammingErrors, Stop) {
  const WidgetWorld world;
  const NSDate now = world.clock->instant;
  for (const double bad : {double{NAN}, double{INFINITY}, -double{INFINITY}, 1e19}) {
    EXPECT_DEATH(moonlessHoursText(static_cast<float>(bad)), "Assertion failed.*moonlessHours");
    EXPECT_DEATH(eventTimeText(bad, 0.0, {}), "IntegerPart") << bad;
  }
  for (const double beyond : {1e9, 1e19, double{INFINITY}}) {
    EXPECT_DEATH(sunReloadDate(now, now, beyond), "Assertion failed") << beyond;
  }
}

TEST(Contents, TimesAreInTheRecordsZone) {
  const WidgetWorld world;
  SunLightWidgetData data;
  data.locationData.timeZone = platform::NSTimeZone{"Asia/Kathmandu"};
  data.mjdTomorrowAt0 = 60535.0;
  data.mjdRise = 60534.25;
  data.mjdSet = 60535.25;
  data.nextEventMjd = 60534.75;
  data.nextEventName = "Night";
  // Some other widget was in another zone last.
  platform::Formatters::sharedInstance().setTimeZone({"America/New_York"});
  const SunContent content = sunContent(data, WidgetFamily::systemSmall);
  EXPECT_EQ(content.nextLight, "Night 11:45\u202FPM");
  ASSERT_EQ(content.riseSet.times.size(), 2u);
  EXPECT_EQ(content.riseSet.times[0].text, "11:45\u202FAM");
  EXPECT_EQ(content.riseSet.times[1].text, "11:45\u202FAM <event_one_day_plus>");
}

TEST(Contents, RiseAndSet) {
  const WidgetWorld world;
  const struct {
    double rise, set;
    const char* shown;
  } cases[] = {
      {60535.0, 60534.75, "12:00\u202FAM <event_one_day_plus>|6:00\u202FPM"},
      {-3.0, 60534.75, "<body_circumpolar>"},
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
  const WidgetWorld world;
  GalacticCenterWidgetData data;
  data.locationData.timeZone = platform::NSTimeZone{"Pacific/Auckland"};
  data.mjdTomorrowAt0 = 60535.0;
  data.mjdVisibilityFrom = 60534.9;
  data.mjdVisibilityTo = 60535.1;
  data.visibilityToAzimuth = 359.6;
  const GCVisibilityContent seen = gcVisibilityContent(data, WidgetFamily::systemMedium);
  ASSERT_EQ(seen.window.size(), 2u);
  EXPECT_EQ(seen.window[1].time, "2:24\u202FPM <event_one_day_plus>");
  EXPECT_EQ(seen.window[1].azimuth.find("0° "), 0u);  // not 360
  EXPECT_EQ(seen.notVisibleUntil + seen.alwaysInvisible, "");
  // Sunday evening in London is Monday in Auckland.
  data.dateNextVisibility = Instant("2024-09-15T20:00:00Z");
  for (const auto& [from, says] :
       {std::pair(ephemeris::kMjdAlwaysInvisible, "<body_always_invisible>"),
        std::pair(ephemeris::kMjdNoRiseOrSet, "")}) {
    data.mjdVisibilityFrom = data.mjdVisibilityTo = from;
    const GCVisibilityContent content = gcVisibilityContent(data, WidgetFamily::systemSmall);
    EXPECT_EQ(content.notVisibleUntil, "Monday, 9/16/24");
    EXPECT_EQ(content.alwaysInvisible, says);
    EXPECT_TRUE(content.window.empty());
  }
}

TEST(Contents, MoonlessHours) {
  const WidgetWorld world;
  const std::string h = "<unit_abbr_hour>", m = "<unit_abbr_minute>";
  const std::pair<float, std::string> cases[] = {{0.004f, "0" + h},
                                                 {0.5f, "30" + m},
                                                 {2.0f, "2" + h},
                                                 {1.999f, "1" + h + " 60" + m},
                                                 {-1.5f, "-1" + h + " -30" + m},
                                                 {9.2e18f, "9200000267938955264" + h}};
  for (const auto& [hours, text] : cases) EXPECT_EQ(moonlessHoursText(hours), text) << hours;
}

TEST(Bundle, SaysWhatThereIs) {
  const WidgetWorld world;
  std::string said;
  for (const auto& widget : LumenquestWidgets::configurations()) {
    said += widget.kind + widget.displayName + widget.description;
    for (const auto family : widget.supportedFamilies) said += "SML"[static_cast<int>(family)];
    said += widget.intent == ConfigurationIntent::themeSelector ? " theme\n" : "\n";
  }
  EXPECT_EQ(said,
            "SunWidget<appwidget_sun><appwidget_sun_description>SM\n"
            "MoonWidget<appwidget_moon><appwidget_moon_description>SM\n"
            "GalacticCenterSmallWidget<appwidget_milky_way><appwidget_milky_way_description>S\n"
            "LumenquestWidgetLumenquest<appwidget_lumenquest_description>L\n"
            "PlansWidget<appwidget_plans><appwidget_plans_description>SM theme\n");
  for (const int major : {16, 17}) {
    const auto all = LumenquestWidgets::configurations(SystemVersion{major, 0});
    EXPECT_EQ(all[0].contentMarginsDisabled, major == 17);
  }
}

}  // namespace
}  // namespace lumenquest::widgets
