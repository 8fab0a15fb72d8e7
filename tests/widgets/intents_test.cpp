// Configuration intents, with a geocoder of the test's.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "queue_in_memory.h"
#include "test_services.h"
#include "widgets/intents/intent_handler.h"
#include "widgets/intents/theme_selector_intent.h"
#include "widgets/intents/theme_style_enum.h"

namespace lumenquest::widgets {
namespace {

using platform::CLLocation;
using platform::CLPlacemark;
using platform::NSError;
using testing::TestServices;

/// Answers every search alike.
class FakeGeocoder final : public platform::Geocoder {
 public:
  explicit FakeGeocoder(std::shared_ptr<platform::MainQueue> queue) : queue_(std::move(queue)) {}

  void reverseGeocodeLocation(const CLLocation&, Completion) override {
    FAIL() << "nobody asked for the place of a coordinate";
  }
  void geocodeAddressString(const std::string& address, Completion completion) override {
    addresses.push_back(address);
    queue_->async([this, completion = std::move(completion)] { completion(placemarks, error); });
  }

  std::vector<std::string> addresses;
  std::vector<CLPlacemark> placemarks;
  std::optional<NSError> error;

 private:
  std::shared_ptr<platform::MainQueue> queue_;
};

CLPlacemark Placemark(std::optional<CLLocation> location, std::optional<std::string> locality,
                      std::optional<std::string> area, std::optional<std::string> country) {
  CLPlacemark placemark;
  placemark.location = location;
  placemark.locality = std::move(locality);
  placemark.administrativeArea = std::move(area);
  placemark.country = std::move(country);
  return placemark;
}

struct IntentHandlerTest : ::testing::Test {
  /// What the handler, gone by then, offers for a search.
  std::optional<LocationOptionsCollection> Options(const std::optional<std::string>& searchTerm) {
    std::optional<LocationOptionsCollection> options;
    IntentHandler().provideLocationOptionsCollectionForLocationSelector(
        LocationSelectorIntent(), searchTerm,
        [&](LocationOptionsCollection collection) { options = std::move(collection); });
    EXPECT_EQ(options.has_value(), !searchTerm);  // a search is answered by the main queue
    queue->RunAll();
    return options;
  }

  std::shared_ptr<testing::QueueInMemory> queue = std::make_shared<testing::QueueInMemory>();
  std::shared_ptr<FakeGeocoder> geocoder = std::make_shared<FakeGeocoder>(queue);
  TestServices services{"2024-03-05T12:00:00Z", "UTC", "en_US", Adapters()};

 private:
  platform::Services::Adapters Adapters() {
    platform::Services::Adapters with;
    with.mainQueue = queue;
    with.geocoder = geocoder;
    return with;
  }
};

const IntentPlacemark kMyLocation{CLLocation{{90.0, 180.0}}, "<my_location>", std::nullopt};
const LocationOptionsCollection kMyLocationAlone{{{"", {kMyLocation}}}};

TEST_F(IntentHandlerTest, MyLocationIsAlwaysOffered) {
  IntentHandler handler;
  EXPECT_EQ(&handler.handlerForIntent(LocationSelectorIntent()), &handler);
  EXPECT_EQ(&handler.handlerForIntent(ThemeSelectorIntent()), &handler);
  EXPECT_EQ(handler.defaultLocationForLocationSelector(LocationSelectorIntent()), kMyLocation);
  EXPECT_TRUE(IntentPlacemark::myLocation().isMyLocation());
  EXPECT_FALSE((IntentPlacemark{CLLocation{{90.0, 179.0}}, "<my_location>", {}}).isMyLocation());

  EXPECT_EQ(Options(std::nullopt), kMyLocationAlone);
  EXPECT_TRUE(geocoder->addresses.empty());
  EXPECT_EQ(Options("nowhere"), kMyLocationAlone);
  EXPECT_TRUE(services.log->messages.empty());
  geocoder->placemarks = {Placemark(CLLocation{{1.0, 2.0}}, "A", "B", "C")};
  geocoder->error = NSError{"Test", 7, "no_network"};
  EXPECT_EQ(Options("offline"), kMyLocationAlone);
  EXPECT_EQ(services.log->messages.size(), 1u);
  EXPECT_EQ(geocoder->addresses, (std::vector<std::string>{"nowhere", "offline"}));
}

TEST_F(IntentHandlerTest, FoundPlacesAreASectionOfTheirOwn) {
  const CLLocation here{{46.0, 14.0}};
  CLPlacemark town = Placemark(here, "Bled", "Upper Carniola", "Slovenia");
  town.postalAddress = platform::PostalAddress{"Bled", "Upper Carniola", "Slovenia"};
  geocoder->placemarks = {
      town,
      Placemark(std::nullopt, "Nowhere", "Area", "Country"),  // has no location
      Placemark(here, std::nullopt, "Utah", "United States"),
      Placemark(here, std::nullopt, std::nullopt, "Iceland"),
      Placemark(here, "A town without a country", std::nullopt, std::nullopt),  // has no title
  };
  const LocationOptionsCollection expected{{{"", {kMyLocation}},
                                            {"<other_locations>",
                                             {{here, "Bled, Slovenia", town.postalAddress},
                                              {here, "Utah, United States", std::nullopt},
                                              {here, "Iceland", std::nullopt}}}}};
  EXPECT_EQ(Options("somewhere"), expected);
}

TEST(Intents, RawValues) {
  EXPECT_EQ(fromRawValue<Enum>(3), Enum::light);
  for (const std::int64_t raw : {std::int64_t{4}, std::int64_t{-1}, std::int64_t{1} << 32}) {
    EXPECT_EQ(fromRawValue<Enum>(raw), std::nullopt) << raw;
  }
  EXPECT_EQ(fromRawValue<LocationSelectorIntentResponseCode>(6),
            LocationSelectorIntentResponseCode::failureRequiringAppLaunch);
  EXPECT_EQ(fromRawValue<ThemeSelectorIntentResponseCode>(4),
            ThemeSelectorIntentResponseCode::success);
  EXPECT_EQ(fromRawValue<ThemeSelectorIntentResponseCode>(7), std::nullopt);
}

TEST(Intents, AThemeThatWasNeverChosenIsDark) {
  EXPECT_EQ(themeStyleOf(LocationSelectorIntent().theme), ThemeStyleEnum::themeDark);
  EXPECT_EQ(themeStyleOf(ThemeSelectorIntent().theme), ThemeStyleEnum::themeDark);
  EXPECT_EQ(themeStyleOf(Enum::system), ThemeStyleEnum::themeSystem);
  EXPECT_EQ(themeStyleOf(Enum::dark), ThemeStyleEnum::themeDark);
  EXPECT_EQ(themeStyleOf(Enum::light), ThemeStyleEnum::themeLight);
}

}  // namespace
}  // namespace lumenquest::widgets
