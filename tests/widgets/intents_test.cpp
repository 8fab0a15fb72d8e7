// Configuration intents, with a geocoder of the test's.

#include <gtest/gtest.h>

#include "widget_world.h"
#include "widgets/intents/intent_handler.h"
#include "widgets/intents/theme_selector_intent.h"
#include "widgets/intents/theme_style_enum.h"

namespace lumenquest::widgets {
namespace {

using platform::CLLocation;
using platform::CLPlacemark;
using testing::WidgetWorld;

const IntentPlacemark kMyLocation{CLLocation{{90.0, 180.0}}, "<my_location>", std::nullopt};
const LocationOptionsCollection kMyLocationAlone{{{"", {kMyLocation}}}};

/// What a handler, gone by then, offers for a search.
std::optional<LocationOptionsCollection> Options(WidgetWorld& world,
                                                 const std::optional<std::string>& searchTerm) {
  std::optional<LocationOptionsCollection> options;
  IntentHandler().provideLocationOptionsCollectionForLocationSelector(
      {}, searchTerm, [&](auto collection) { options = std::move(collection); });
  EXPECT_EQ(options.has_value(), !searchTerm);  // a search is answered by the main queue
  world.queue->RunAll();
  return options;
}

TEST(IntentHandler, OffersMyLocationAlwaysAndFoundPlacesInASectionOfTheirOwn) {
  WidgetWorld world;
  EXPECT_EQ(IntentHandler().defaultLocationForLocationSelector({}), kMyLocation);
  EXPECT_TRUE(IntentPlacemark::myLocation().isMyLocation());
  EXPECT_FALSE((IntentPlacemark{CLLocation{{90.0, 179.0}}, "<my_location>", {}}).isMyLocation());
  EXPECT_EQ(Options(world, std::nullopt), kMyLocationAlone);
  EXPECT_EQ(world.geocoder->searches, 0);
  EXPECT_EQ(Options(world, "nowhere"), kMyLocationAlone);

  const CLLocation here{{46.0, 14.0}};
  CLPlacemark town, area, country, nameless, nowhere;
  town.location = area.location = country.location = nameless.location = here;
  town.locality = nowhere.locality = "Bled";
  town.country = nowhere.country = "Slovenia";
  town.postalAddress = platform::PostalAddress{"Bled", "Upper Carniola", "Slovenia"};
  area.administrativeArea = "Utah";
  area.country = "United States";
  country.country = "Iceland";
  nameless.locality = "A town without a country";  // has no title
  world.geocoder->placesToFind = {town, nowhere, area, country, nameless};
  const LocationOptionsCollection found{{{"", {kMyLocation}},
                                         {"<other_locations>",
                                          {{here, "Bled, Slovenia", town.postalAddress},
                                           {here, "Utah, United States", std::nullopt},
                                           {here, "Iceland", std::nullopt}}}}};
  EXPECT_EQ(Options(world, "somewhere"), found);
  EXPECT_TRUE(world.services.log->messages.empty());
  world.geocoder->fails = true;
  EXPECT_EQ(Options(world, "offline"), kMyLocationAlone);
  EXPECT_EQ(world.services.log->messages.size(), 1u);
}

TEST(Intents, RawValuesAndThemes) {
  for (const std::int64_t raw : {std::int64_t{4}, std::int64_t{-1}, std::int64_t{1} << 32}) {
    EXPECT_EQ(fromRawValue<Enum>(raw), std::nullopt) << raw;
  }
  EXPECT_EQ(fromRawValue<Enum>(3), Enum::light);
  EXPECT_EQ(fromRawValue<LocationSelectorIntentResponseCode>(6),
            LocationSelectorIntentResponseCode::failureRequiringAppLaunch);
  EXPECT_EQ(fromRawValue<ThemeSelectorIntentResponseCode>(7), std::nullopt);
  // A theme that was never chosen is dark.
  EXPECT_EQ(themeStyleOf(ThemeSelectorIntent().theme), ThemeStyleEnum::themeDark);
  EXPECT_EQ(themeStyleOf(Enum::system), ThemeStyleEnum::themeSystem);
  EXPECT_EQ(themeStyleOf(Enum::light), ThemeStyleEnum::themeLight);
}

}  // namespace
}  // namespace lumenquest::widgets
