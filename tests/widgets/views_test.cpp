// What the widgets' views say, show and link to, without pixels: words are their keys.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "adapters/asset_catalog.h"
#include "boxes.h"
#include "ephemeris/constants.h"
#include "fake_views.h"
#include "test_services.h"
#include "widgets/galactic_center/galactic_center_views.h"
#include "widgets/location/location_views.h"
#include "widgets/moon/moon_views.h"
#include "widgets/plans/plans_views.h"
#include "widgets/sun/sun_views.h"
#include "widgets/view/layout.h"

namespace lumenquest::widgets {
namespace {

using platform::CLAuthorizationStatus;
using platform::UIColor;
using testing::BlockLetters;
using ::testing::ElementsAre;
using testing::FewAssets;
using testing::Instant;
using ::testing::IsEmpty;
using testing::Recorder;
using testing::TestServices;
using view::Element;
using view::Environment;
using view::imagesOf;
using view::linksOf;
using view::textsOf;
using view::WidgetRenderingMode;

using Texts = std::vector<std::string>;

double Mjd(const std::string& rfc3339) { return Instant(rfc3339).modifiedJulianDay(); }

LocationWidgetData Bled() {
  LocationWidgetData data;
  data.address = "Bled";
  data.authorizationStatus = CLAuthorizationStatus::authorizedWhenInUse;
  data.timeZone = platform::NSTimeZone{"UTC"};
  return data;
}

SunLightWidgetData Sun() {
  SunLightWidgetData data;
  data.locationData = Bled();
  data.mjdTomorrowAt0 = Mjd("2024-08-13T00:00:00Z");
  data.mjdRise = Mjd("2024-08-12T05:10:00Z");
  data.mjdSet = Mjd("2024-08-12T19:20:00Z");
  data.sunElevation = 12.0f;
  data.lightType = "Daytime";
  data.nextEventMjd = Mjd("2024-08-12T18:30:00Z");
  data.nextEventName = "Golden hour";
  data.goldenHourInterval = "18:30 - 19:40";
  data.blueHourInterval = "19:40 - 19:55";
  data.astronomicalTwilightInterval = "--";
  return data;
}

MoonWidgetData Moon() {
  MoonWidgetData data;
  data.locationData = Bled();
  data.mjdTomorrowAt0 = Mjd("2024-08-13T00:00:00Z");
  data.mjdRise = Mjd("2024-08-12T13:40:00Z");
  data.mjdSet = Mjd("2024-08-13T00:05:00Z");
  data.moonPhaseString = "First quarter (50.0%)";
  data.moonPhase = 0.5f;
  return data;
}

GalacticCenterWidgetData Centre() {
  GalacticCenterWidgetData data;
  data.locationData = Bled();
  data.mjdTomorrowAt0 = Mjd("2024-08-13T00:00:00Z");
  data.mjdVisibilityFrom = Mjd("2024-08-12T21:15:00Z");
  data.mjdVisibilityTo = Mjd("2024-08-13T00:25:00Z");
  data.visibilityFromAngle = 20.0;
  data.visibilityToAngle = 60.0;
  data.visibilityFromAzimuth = 178.2;
  data.visibilityToAzimuth = 221.0;
  data.moonlessHours = 2.25f;
  return data;
}

PlanItem Plan(const std::string& name, const std::string& date, const std::string& id) {
  return {name, Instant(date), platform::NSTimeZone{"UTC"}, id};
}

PlansTimelineEntry FourPlans() {
  return {Instant("2024-08-12T12:00:00Z"),
          {Plan("Perseids", "2024-08-12T23:30:00Z", "a%2F1"), Plan("", "2024-08-13T23:30:00Z", "2"),
           Plan("Bay", "2024-08-14T23:30:00Z", ""), Plan("Hills", "2024-08-15T23:30:00Z", "4")}};
}

Environment In(WidgetFamily family) {
  Environment environment;
  environment.family = family;
  return environment;
}
constexpr auto kSmall = WidgetFamily::systemSmall;
constexpr auto kMedium = WidgetFamily::systemMedium;
constexpr auto kLarge = WidgetFamily::systemLarge;

Element SunView(const SunLightWidgetData& data, const Environment& environment) {
  return SunLightWidgetEntryView({{}, data, Moon(), Centre(), {}}, environment);
}
Element MoonView(const MoonWidgetData& data, const Environment& environment) {
  const bool isSmall = environment.family == kSmall;
  return MoonWidgetEntryView({{}, data, isSmall ? std::nullopt : std::optional(Centre()), {}},
                             environment);
}
Element CentreView(const GalacticCenterWidgetData& data) {
  return GalacticCenterWidgetEntryView({{}, data, {}}, In(kSmall));
}

/// Of the first forms, parents first.
template <typename Kind>
std::vector<Kind> All(const Element& element) {
  std::vector<Kind> found;
  const auto collect = [&](const auto& self, const Element& at) -> void {
    if (const auto* const kind = std::get_if<Kind>(&at.node())) found.push_back(*kind);
    std::visit(
        [&](const auto& kind) {
          if constexpr (std::is_same_v<std::decay_t<decltype(kind)>, view::Choice>) {
            self(self, kind.children.front());
          } else if constexpr (requires { kind.children; }) {
            for (const Element& child : kind.children) self(self, child);
          } else if constexpr (requires { kind.child; }) {
            self(self, kind.child);
          }
        },
        at.node().base());
  };
  collect(collect, element);
  return found;
}

std::shared_ptr<platform::AssetCatalog> RealAssets() {
  return std::make_shared<adapters::FileAssetCatalog>(
      std::filesystem::path(LUMENQUEST_TEST_RESOURCES) / "art");
}

TestServices ServicesWith(std::shared_ptr<platform::AssetCatalog> assets) {
  platform::Services::Adapters adapters;
  adapters.assets = std::move(assets);
  return TestServices("2024-08-12T12:00:00Z", "UTC", "en_GB", std::move(adapters));
}

class Views : public ::testing::Test {
 protected:
  const TestServices services = ServicesWith(std::make_shared<FewAssets>());
};

const std::string kTomorrow = "00:05 <event_one_day_plus>";
const std::string kWindow =
    "<appwidget_milky_way>|<gc_visible_from>|21:15|178° <cardinal_point_south_abbr>|"
    "<gc_visible_to>|00:25 <event_one_day_plus>|221° <cardinal_point_south_west_abbr>";

/// The texts of a view, in order.
std::string Said(const Element& element) {
  std::string said;
  for (const std::string& text : textsOf(element)) said += (said.empty() ? "" : "|") + text;
  return said;
}

TEST_F(Views, SaySmallMediumAndLargeThingsOfTheSun) {
  const std::string rows =
      "<twilight_golden_hour>|18:30 - 19:40|<twilight_blue_hour>|19:40 - 19:55|";
  const std::string next = "Golden hour 18:30|05:10|19:20";
  const Element small = SunView(Sun(), In(kSmall));
  EXPECT_EQ(Said(small), "Bled|Daytime|" + next);
  EXPECT_EQ(imagesOf(small), (Texts{"sunIcon", "nextLightIcon", "bodyRise", "bodySet"}));
  EXPECT_EQ(linksOf(small), Texts{"lumenquest://sun"});
  EXPECT_EQ(Said(SunView(Sun(), In(kMedium))), "Daytime|Bled|" + rows + next);

  // Each half of the large one leads to its own.
  const Element large = SunView(Sun(), In(kLarge));
  EXPECT_EQ(linksOf(large), (Texts{"lumenquest://sun", "lumenquest://sun", "lumenquest://moon"}));
  const auto links = All<view::Link>(large);
  EXPECT_EQ(Said(links.at(1).child), "Daytime|Bled|" + rows + "<twilight_astronomical>|--|" + next);
  EXPECT_EQ(Said(links.at(2).child),
            "First quarter (50.0%)|" + kWindow +
                "|<night_with_no_moon>|2<unit_abbr_hour> 15<unit_abbr_minute>|13:40|" + kTomorrow);
}

TEST_F(Views, SayWhatThereIsOfTheMoon) {
  const Element small = MoonView(Moon(), In(kSmall));
  EXPECT_EQ(Said(small), "Bled|First quarter (50.0%)|13:40|" + kTomorrow);
  EXPECT_EQ(linksOf(small), Texts{"lumenquest://moon"});
  EXPECT_FALSE(All<view::Picture>(small).empty());
  EXPECT_EQ(Said(MoonView(Moon(), In(kMedium))),
            "First quarter (50.0%)|Bled|" + kWindow + "|13:40|" + kTomorrow);
  MoonWidgetData data = Moon();
  data.mjdRise = data.mjdSet = ephemeris::kMjdCircumpolar;
  // Who wants to know which place it is sees that it is his own.
  data.locationData.isCurrentLocation = true;
  EXPECT_EQ(Said(MoonView(data, In(kSmall))), "Bled|First quarter (50.0%)|<body_circumpolar>");
  EXPECT_EQ(imagesOf(MoonView(data, In(kSmall))), Texts{"location.fill"});
  // What only a picture says is said to those who do not see it.
  data.isSupermoon = true;
  EXPECT_THAT(view::descriptionOf(MoonView(data, In(kSmall))),
              ::testing::HasSubstr("<phase_supermoon>"));
}

TEST_F(Views, SayWhenTheGalacticCentreIsSeen) {
  const Element window = CentreView(Centre());
  EXPECT_EQ(
      Said(window),
      "Bled|<appwidget_milky_way>|<gc_visibility_from>|178° <cardinal_point_south_abbr>|21:15|"
      "<gc_visibility_to>|221° <cardinal_point_south_west_abbr>|00:25 <event_one_day_plus>");
  // The band leans as it does in the sky.
  std::vector<double> tilts;
  for (const view::Image& image : All<view::Image>(window)) {
    if (image.name == "galacticCenterIcon") tilts.push_back(image.rotation);
  }
  EXPECT_THAT(tilts, ElementsAre(20.0, 60.0));

  GalacticCenterWidgetData never = Centre();
  never.mjdVisibilityFrom = never.mjdVisibilityTo = ephemeris::kMjdAlwaysInvisible;
  never.dateNextVisibility = Instant("2025-02-03T04:00:00Z");
  EXPECT_EQ(Said(CentreView(never)),
            "Bled|<appwidget_milky_way>|<body_always_invisible>|Monday, 03/02/2025");
  EXPECT_EQ(imagesOf(CentreView(never)), Texts{"gcNotVisibleUntilIcon"});
}

TEST_F(Views, ListPlans) {
  const std::string rows[] = {"", "|Perseids|12/08/2024, 23:30", "||13/08/2024, 23:30",
                              "|Bay|14/08/2024, 23:30", "|Hills|15/08/2024, 23:30"};
  const Texts links{"lumenquest://plans", "lumenquest://plan?id=a%2F1", "lumenquest://plan?id=2",
                    "lumenquest://plans", "lumenquest://plan?id=4"};
  std::string says = "<appwidget_plans>";
  std::string saysSmall = says;
  for (std::size_t count = 0; count <= 4; ++count) {
    PlansTimelineEntry entry = FourPlans();
    entry.plans.resize(count);
    const Element small = PlansWidgetEntryView(entry, In(kSmall));
    const Element medium = PlansWidgetEntryView(entry, In(kMedium));
    says += rows[count];
    if (count <= 2) saysSmall = says;
    const std::string none = count == 0 ? "|<plan_no_scheduled>" : "";
    EXPECT_EQ(Said(small), saysSmall + none);
    EXPECT_EQ(Said(medium), says + none);
    EXPECT_EQ(linksOf(small), Texts{"lumenquest://plans"});
    EXPECT_EQ(linksOf(medium), Texts(links.begin(), links.begin() + static_cast<long>(1 + count)));
  }
}

TEST_F(Views, SayWhyThereIsNothing) {
  for (const bool isDenied : {true, false}) {
    SunLightWidgetData sun = Sun();
    MoonWidgetData moon = Moon();
    GalacticCenterWidgetData centre = Centre();
    for (auto* data : {&sun.locationData, &moon.locationData, &centre.locationData}) {
      data->withError = true;  // denied comes first
      if (isDenied) data->authorizationStatus = CLAuthorizationStatus::denied;
    }
    for (const auto family : {kSmall, kMedium, kLarge}) {
      for (const Element& view :
           {// Without a place the large widget's entry has no records of the Moon.
            SunLightWidgetEntryView({{}, sun, {}, {}, {}}, In(family)), MoonView(moon, In(family)),
            CentreView(centre)}) {
        EXPECT_EQ(Said(view),
                  isDenied ? "<location_denied_error_message_ios>" : "<location_timeout>");
        EXPECT_EQ(imagesOf(view), Texts{isDenied ? "disabledLocationIcon" : "location.fill"});
      }
    }
  }
}

TEST_F(Views, TheLargeFamilyNeedsItsRecords) {
  const SunTimelineEntry noMoon{{}, Sun(), {}, Centre(), {}};
  const SunTimelineEntry noCentre{{}, Sun(), Moon(), {}, {}};
  EXPECT_DEATH(SunLightWidgetEntryView(noMoon, In(kLarge)), "moonData != nullptr.*sun_views.cpp");
  EXPECT_DEATH(SunLightWidgetEntryView(noCentre, In(kLarge)), "gcData != nullptr.*sun_views.cpp");
  EXPECT_FALSE(textsOf(SunLightWidgetEntryView(noCentre, In(kMedium))).empty());
}

TEST_F(Views, TintedOnesHaveNoGrounds) {
  SunLightWidgetData denied = Sun();
  denied.locationData.authorizationStatus = CLAuthorizationStatus::denied;
  const auto shown = [&](const Environment& in) {
    // What each says, and on how many grounds.
    std::vector<std::pair<std::string, std::size_t>> all;
    for (const Element& view : {SunView(Sun(), in), SunView(denied, in), MoonView(Moon(), in),
                                PlansWidgetEntryView(FourPlans(), in)}) {
      all.emplace_back(Said(view), All<view::Background>(view).size());
    }
    return all;
  };
  for (const auto& [family, ofTheSun] : {std::pair(kMedium, 2u), std::pair(kLarge, 3u)}) {
    Environment environment = In(family);
    const auto full = shown(environment);
    EXPECT_EQ(full[0].second, ofTheSun);
    environment.renderingMode = WidgetRenderingMode::accented;
    auto flat = full;
    for (auto& [said, grounds] : flat) grounds = 0;
    EXPECT_EQ(shown(environment), flat);
    // Older systems know no such mode.
    environment.system = {17, 6};
    EXPECT_EQ(shown(environment), full);
  }
}

TEST(TintedViews, AreDrawnInWhiteAndShadesOfTheAccent) {
  const auto catalog = RealAssets();
  const TestServices services = ServicesWith(catalog);
  Environment environment = In(kLarge);
  environment.renderingMode = WidgetRenderingMode::accented;
  environment.accent = {0.2, 0.9, 0.4, 1.0};
  MoonWidgetData supermoon = Moon();
  supermoon.isSupermoon = supermoon.locationData.isCurrentLocation = true;
  const auto isShadeOrWhite = [&](const UIColor& color) {
    const UIColor& accent = environment.accent;
    const double part = color.green / accent.green;
    return color.withAlpha(1.0) == UIColor{1, 1, 1, 1} ||
           (part <= 1.0 + 1e-9 && std::fabs(color.red - part * accent.red) < 1e-9 &&
            std::fabs(color.blue - part * accent.blue) < 1e-9);
  };
  for (const Element& view :
       {SunView(Sun(), environment), MoonIconView(supermoon, 60.0, environment),
        PostalAddressView(supermoon.locationData),
        PlansWidgetEntryView(FourPlans(), environment)}) {
    for (const std::string& image : imagesOf(view)) {
      EXPECT_NE(catalog->imageNamed(image), nullptr) << image;
    }
    BlockLetters letters;
    Recorder canvas;
    draw(view, view::sizeOf(kLarge), environment, letters, *catalog, canvas);
    std::vector<UIColor> colors;
    for (const auto& word : canvas.words) colors.push_back(word.color);
    for (const auto& fill : canvas.fills) colors.push_back(fill.color);
    for (const auto& line : canvas.lines) colors.push_back(line.color);
    EXPECT_FALSE(colors.empty());
    for (const UIColor& color : colors) {
      EXPECT_TRUE(isShadeOrWhite(color)) << color.red << ' ' << color.green << ' ' << color.blue;
    }
  }
}

}  // namespace
}  // namespace lumenquest::widgets
