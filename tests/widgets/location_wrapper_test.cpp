// Where a widget gets its place from: scripts of a device, a user and a geocoder.

#include "widgets/location/location_wrapper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "widget_world.h"

namespace lumenquest::widgets {
namespace {

using platform::CLLocation;
using platform::CLLocationCoordinate2D;
using platform::SavedLocation;
using platform::SavedPlace;
using testing::ScriptedGeocoder;
using testing::WidgetWorld;
using Status = platform::CLAuthorizationStatus;
using Text = std::optional<std::string>;

constexpr CLLocationCoordinate2D kBled{46.0, 14.0};
constexpr CLLocationCoordinate2D kSydney{-34.0, 151.0};
const SavedPlace kSavedPlace{"Saved", "Asia/Tokyo"};

struct Answer {
  std::optional<CLLocationCoordinate2D> at;
  SavedPlace place;
  Status status;

  bool operator==(const Answer&) const = default;
};

LocationSelectorIntent For(CLLocationCoordinate2D place) {
  LocationSelectorIntent intent;
  intent.location = IntentPlacemark{CLLocation{place}, "", {}};
  return intent;
}

SavedPlace TownAt(CLLocationCoordinate2D at) {
  return {ScriptedGeocoder::Town(at), ScriptedGeocoder::Zone(at)};
}

/// A wrapper in its world, and what it answered.
struct Stage {
  void Ask(const LocationSelectorIntent* intent = nullptr) {
    const auto status = std::make_shared<Status>(Status::notDetermined);
    wrapper->getLocation(
        intent, [this](const std::string& text) { errors.push_back(text); }, status,
        [this, status](const std::optional<CLLocation>& location, const Text& address,
                       const Text& zone) {
          answers.push_back({location ? std::optional(location->coordinate) : std::nullopt,
                             {address, zone},
                             *status});
        });
    world.queue->RunAll();
  }
  void Fix(CLLocationCoordinate2D at, bool evenUnasked = false) {
    world.device->Fix({at, world.clock->instant}, evenUnasked);
    world.queue->RunAll();
  }
  void Save(CLLocationCoordinate2D at, const SavedPlace& place = kSavedPlace) {
    SavedLocation::save(at);
    SavedLocation::savePlace(place);
  }
  void ExpectSaved(CLLocationCoordinate2D at, const SavedPlace& place) {
    EXPECT_EQ(SavedLocation::load(), CLLocation{at});
    EXPECT_EQ(SavedLocation::readPlace(), place);
  }

  WidgetWorld world;
  std::shared_ptr<LocationWrapper> wrapper = LocationWrapper::create();
  std::vector<Answer> answers;
  std::vector<std::string> errors;
};

TEST(LocationWrapper, WhereTheFirstAnswerComesFrom) {
  enum Outcome { kFix, kSaved, kAsksDevice, kWaitsForUser };
  const struct {
    Status status;
    bool isForWidgets;
    std::optional<double> fixAge;
    Outcome outcome;
  } cases[] = {
      {Status::authorizedWhenInUse, true, 599.9, kFix},
      {Status::authorizedWhenInUse, true, 600.0, kAsksDevice},
      {Status::authorizedWhenInUse, true, -599.9, kFix},  // the clock was set back since
      {Status::authorizedWhenInUse, true, -600.0, kAsksDevice},
      {Status::authorizedAlways, true, {}, kAsksDevice},
      {Status::restricted, true, {}, kAsksDevice},
      {Status::notDetermined, true, 0.0, kWaitsForUser},
      {Status::notDetermined, false, 0.0, kSaved},
      {Status::denied, false, 0.0, kSaved},
      {Status::authorizedWhenInUse, false, 0.0, kSaved},
  };
  for (const auto& c : cases) {
    for (const bool hasSaved : {true, false}) {
      SCOPED_TRACE(::testing::Message() << "status " << static_cast<int>(c.status) << ", widgets "
                                        << c.isForWidgets << ", age " << c.fixAge.value_or(NAN));
      Stage stage;
      stage.world.device->status = c.status;
      stage.world.device->isForWidgets = c.isForWidgets;
      const CLLocation fix{kBled, stage.world.clock->instant};
      if (c.fixAge) stage.world.device->last = fix;
      stage.world.clock->Advance(c.fixAge.value_or(0.0));
      if (hasSaved) stage.Save(kSydney);
      stage.Ask();
      EXPECT_EQ(stage.world.device->requests, c.outcome == kAsksDevice ? 1 : 0);
      std::vector<Answer> expected;
      if (c.outcome == kFix) expected = {{kBled, TownAt(kBled), c.status}};
      if (c.outcome == kSaved) {
        expected = {hasSaved ? Answer{kSydney, kSavedPlace, c.status} : Answer{{}, {}, c.status}};
      }
      EXPECT_EQ(stage.answers, expected);
      if (c.outcome == kFix) stage.ExpectSaved(kBled, TownAt(kBled));
      EXPECT_EQ(stage.wrapper->locationManager->activityType,
                platform::CLActivityType::otherNavigation);
      EXPECT_EQ(stage.wrapper->currentOrDefaultLocation(),
                c.isForWidgets && c.fixAge ? fix : CLLocation{kSampleCoordinate});
    }
  }
}

TEST(LocationWrapper, WhatTheUserDecidesWhileItWaits) {
  for (int decided = 0; decided <= 4; ++decided) {
    Stage stage;
    stage.Save(kSydney);
    stage.world.device->status = Status::notDetermined;
    // Fresh as it is, it was not found for this widget.
    stage.world.device->last = CLLocation{kBled, stage.world.clock->instant};
    stage.Ask();
    stage.world.device->Decide(static_cast<Status>(decided));
    const bool isAllowed = stage.world.device->status == Status::authorizedWhenInUse;
    EXPECT_EQ(stage.world.device->requests, isAllowed ? 1 : 0) << decided;
    std::vector<Answer> expected;
    if (stage.world.device->status == Status::denied) {
      expected = {{kSydney, kSavedPlace, Status::denied}};
    }
    EXPECT_EQ(stage.answers, expected) << decided;
  }
}

TEST(LocationWrapper, WhichPlaceAConfigurationMeans) {
  EXPECT_TRUE(wantsCurrentLocation(nullptr));
  const LocationSelectorIntent device = For({90.0, 180.0});
  EXPECT_TRUE(wantsCurrentLocation(&device));
  for (const CLLocationCoordinate2D place :
       {CLLocationCoordinate2D{90.0, 179.9}, {89.9, 180.0}, {90.0, -180.0}}) {
    Stage stage;
    stage.world.device->status = Status::denied;
    const LocationSelectorIntent intent = For(place);
    stage.Ask(&intent);
    // A configured place needs no permission, and is kept like any other.
    EXPECT_EQ(stage.wrapper->locationManager, nullptr);
    EXPECT_EQ(stage.answers,
              (std::vector<Answer>{{place, TownAt(place), Status::authorizedWhenInUse}}));
    stage.ExpectSaved(place, TownAt(place));
  }
}

TEST(LocationWrapper, APlaceKeepsItsTitleWithinAKilometre) {
  // WGS-84: metres of a degree at the equator, to the east and to the north. On a sphere those
  // near the limit would come out the other way round in one direction or the other.
  constexpr double kEast = 6378137.0 * M_PI / 180.0;
  constexpr double kNorth = kEast * (1.0 - 0.00669437999014);
  for (const double metres : {0.0, 999.9, 1000.1}) {
    for (const bool isEast : {true, false}) {
      SCOPED_TRACE(::testing::Message() << metres << (isEast ? " east" : " north"));
      Stage stage;
      stage.Save({0.0, 10.0});
      const CLLocationCoordinate2D place{isEast ? 0.0 : metres / kNorth,
                                         isEast ? 10.0 + metres / kEast : 10.0};
      const LocationSelectorIntent intent = For(place);
      stage.Ask(&intent);
      const bool isNear = metres < 1000.0;
      EXPECT_EQ(stage.world.geocoder->requests, isNear ? 0 : 1);
      const SavedPlace expected = isNear ? kSavedPlace : TownAt(place);
      ASSERT_EQ(stage.answers.size(), 1u);
      EXPECT_EQ(stage.answers[0].place, expected);
      stage.ExpectSaved(place, expected);
    }
  }
  // A place without a title has none to keep.
  Stage stage;
  stage.Save(kBled, {{}, "Asia/Tokyo"});
  const LocationSelectorIntent intent = For(kBled);
  stage.Ask(&intent);
  EXPECT_EQ(stage.answers.at(0).place, TownAt(kBled));
}

TEST(LocationWrapper, FailuresFallBackAndAreReported) {
  Stage stage;
  stage.Ask();
  stage.world.device->Fail();
  stage.Save(kSydney);
  stage.Ask();
  stage.world.device->Fail();
  stage.world.geocoder->fails = true;
  stage.Ask();
  stage.Fix(kBled);
  EXPECT_EQ(stage.errors, (std::vector<std::string>{"<no sky>", "<no sky>"}));
  const Status allowed = Status::authorizedWhenInUse;
  ASSERT_EQ(stage.answers.size(), 3u);
  EXPECT_EQ(stage.answers[0], (Answer{{}, {}, allowed}));
  EXPECT_EQ(stage.answers[1], (Answer{kSydney, kSavedPlace, allowed}));
  EXPECT_EQ(stage.answers[2].at, kBled);
  EXPECT_EQ(stage.answers[2].place.timeZone, std::nullopt);
  // A coordinate's text is shown and not kept, so that the next time the town is asked for.
  stage.ExpectSaved(kBled, {});
}

TEST(LocationWrapper, ASecondFixIsSavedAndAnswersNobody) {
  for (const bool isGeocodedBetween : {true, false}) {
    Stage stage;
    stage.world.geocoder->answersAtOnce = isGeocodedBetween;
    stage.Save(kSydney);
    stage.Ask();
    stage.Fix(kBled);
    stage.Fix({60.0, 30.0}, true);
    while (stage.world.geocoder->waiting() > 0) stage.world.geocoder->Answer();
    stage.world.queue->RunAll();
    EXPECT_EQ(stage.answers,
              (std::vector<Answer>{{kBled, TownAt(kBled), Status::authorizedWhenInUse}}));
    stage.ExpectSaved({60.0, 30.0}, TownAt({60.0, 30.0}));
  }
}

TEST(LocationWrapper, NoOrderOfEventsLosesOrMixesAnything) {
  // Three wrappers of one device, everything that can happen in any order. Places are towns of a
  // degree each, and fixes scatter within 200 m.
  const std::mt19937_64::result_type seed = std::random_device()();
  RecordProperty("seed", std::to_string(seed));
  std::mt19937_64 random(seed);
  const auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
  const auto somewhere = [&] {
    static constexpr CLLocationCoordinate2D kTowns[] = {kBled, kSydney, {0.0, 0.0}};
    const CLLocationCoordinate2D town = kTowns[below(3)];
    return CLLocationCoordinate2D{town.latitude + below(100) * 1e-5,
                                  town.longitude + below(100) * 1e-5};
  };
  int answered = 0;
  int refused = 0;
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed << ", round " << round);
    WidgetWorld world;
    testing::ScriptedLocations& device = *world.device;
    world.geocoder->answersAtOnce = false;
    const std::shared_ptr<LocationWrapper> wrappers[] = {
        LocationWrapper::create(), LocationWrapper::create(), LocationWrapper::create()};
    std::vector<int> completions;
    const auto ask = [&](bool isConfigured) {
      const std::size_t number = completions.size();
      completions.push_back(0);
      const auto status = std::make_shared<Status>(Status::notDetermined);
      const LocationSelectorIntent intent =
          isConfigured ? For(somewhere()) : LocationSelectorIntent();
      wrappers[below(3)]->getLocation(
          &intent, [](const std::string&) {}, status,
          [&, number, status, isConfigured](const auto& location, const Text& address,
                                            const Text& zone) {
            EXPECT_EQ(++completions[number], 1);
            const bool isRefused = *status == Status::denied;
            ++(isRefused ? refused : answered);
            EXPECT_EQ(isRefused, !isConfigured && device.status == Status::denied);
            if (!location || !zone) return;
            EXPECT_EQ((SavedPlace{address, zone}), TownAt(location->coordinate));
          });
    };
    device.status = static_cast<Status>(below(5));
    const std::function<void()> events[] = {
        [&] { ask(below(3) == 0); },
        [&] { ask(below(3) == 0); },
        [&] {
          device.Fix({somewhere(), world.clock->instant}, below(3) == 0);
        },
        [&] { device.Fail(); },
        [&] {
          device.Decide(static_cast<Status>(below(5)));
          device.isForWidgets = below(5) > 0;
        },
        [&] { world.clock->Advance(below(400)); },
        [&] { world.queue->RunAll(); },
        [&] {
          const int waiting = static_cast<int>(world.geocoder->waiting());
          if (waiting > 0) world.geocoder->Answer(static_cast<std::size_t>(below(waiting)));
        }};
    for (int step = 0; step < 40; ++step) {
      world.geocoder->fails = below(4) == 0;
      events[below(8)]();
    }
    // Then the user allows it, the device answers, and the geocoder too.
    device.isForWidgets = true;
    device.Decide(Status::authorizedWhenInUse);
    device.Fix({somewhere(), world.clock->instant});
    while (world.geocoder->waiting() > 0) world.geocoder->Answer();
    world.queue->RunAll();
    for (std::size_t i = 0; i < completions.size(); ++i) ASSERT_EQ(completions[i], 1) << i;
    if (const auto saved = SavedLocation::load()) {
      const SavedPlace place = SavedLocation::readPlace();
      EXPECT_TRUE(place == SavedPlace() || place == TownAt(saved->coordinate))
          << place.address.value_or("-");
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(answered, 10000);
  EXPECT_GT(refused, 500);
}

}  // namespace
}  // namespace lumenquest::widgets
