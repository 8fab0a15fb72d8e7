// The host's day on a clock of its own. LUMENQUEST_SOAK asks for the long forms.

#include "host/scheduler.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

#include "host/entry_json.h"
#include "host_fixture.h"

namespace lumenquest::host {
namespace {

using platform::CLLocation;
using platform::NSDate;
using testing::Instant;
using testing::Later;
using testing::TextInMemory;
using testing::WidgetWorld;

/// Rings in a world, on time unless the world's clock is set meanwhile.
class WorldAlarm final : public platform::Alarm {
 public:
  explicit WorldAlarm(WidgetWorld& world) : world_(world) {}
  void onRing(std::function<void(Reason)> listener) override { listener_ = std::move(listener); }
  void set(NSDate date) override {
    world_.At(date, [this, number = ++number_] {
      if (number == number_) listener_(Reason::due);
    });
  }
  /// The machine slept, or somebody set its clock.
  void ClockIsSet(double bySeconds) {
    world_.clock->Advance(bySeconds);
    listener_(Reason::clockChanged);
  }

 private:
  WidgetWorld& world_;
  std::uint64_t number_ = 0;
  std::function<void(Reason)> listener_;
};

/// A host of the standard home screen in a world, and what came of it.
struct Host {
  explicit Host(const std::string& now, const std::string& zone = "Europe/Ljubljana")
      : world(now, zone, testing::WithoutPlans()) {
    world.device->last = CLLocation{{46.36, 14.09}, Instant(now)};
    world.device->onRequest = [this] {
      world.After(2.0, [this] {
        if (!isSilent) world.device->Fix({{46.36, 14.09}, world.clock->instant});
      });
    };
    Start();
  }

  void Start() {
    due.clear();
    scheduler = std::make_unique<Scheduler>(Scheduler::Options{alarm, memory, "en"});
    scheduler->onEntry([this](const ShownWidget& shown) {
      ++entries;
      ++entriesOf[shown.widget.id];
      NSDate& expected = due[shown.widget.id];
      // A position is waited for; nothing else takes time.
      if (expected != NSDate()) {
        EXPECT_GE(dateOf(shown.entry), expected) << shown.widget.id;
        EXPECT_LE(dateOf(shown.entry), Later(expected, 1e-3)) << shown.widget.id;
      }
      expected = shown.reloadDate;
    });
  }

  void RunFor(double seconds) { world.RunUntil(Later(world.clock->instant, seconds)); }

  /// What holds of a host at rest.
  void ExpectAllUpToDate() {
    const NSDate now = world.clock->instant;
    for (const ShownWidget& shown : scheduler->shown()) {
      EXPECT_FALSE(shown.isPlaceholder) << shown.widget.id;
      EXPECT_LE(dateOf(shown.entry), now) << shown.widget.id;
      EXPECT_GT(shown.reloadDate, now) << shown.widget.id;
      EXPECT_LE(shown.reloadDate, Later(now, 3600.0)) << shown.widget.id;
    }
    const NSDate midnight = NSDate::dateWithStartDateTime(now.dateByAddingNumberOfDays(1));
    EXPECT_LE(scheduler->find("plans")->reloadDate, midnight);
  }

  WidgetWorld world;
  std::shared_ptr<WorldAlarm> alarm = std::make_shared<WorldAlarm>(world);
  std::shared_ptr<TextInMemory> memory = std::make_shared<TextInMemory>();
  std::unique_ptr<Scheduler> scheduler;
  std::map<std::string, NSDate> due;
  bool isSilent = false;
  int entries = 0;
  std::map<std::string, int> entriesOf;
};

/// Nothing where the heap is a sanitizer's own, which does not say.
std::optional<std::size_t> BytesInUse() {
#ifdef LUMENQUEST_SANITIZED
  return std::nullopt;
#else
  return ::mallinfo2().uordblks;
#endif
}

constexpr double kDay = 86400.0;

TEST(Scheduler, NoReloadIsMissedAndMemoryIsFlat) {
  const bool isLong = std::getenv("LUMENQUEST_SOAK") != nullptr;
  const int days = isLong ? 365 : 31;
  Host host("2024-10-10T12:00:00Z");
  host.scheduler->show(HomeScreen::standard());
  host.RunFor(7 * kDay);
  const auto before = BytesInUse();
  for (int day = 7; day < days; ++day) {
    host.RunFor(kDay);
    host.ExpectAllUpToDate();
  }
  // Every half hour, but that the light's next change is waited for within an hour.
  for (const auto& [id, count] : host.entriesOf) {
    const bool followsLight = id == "sun" || id == "lumenquest";
    EXPECT_GE(count, days * (followsLight ? 46 : 48)) << id;
    EXPECT_LE(count, days * 60) << id;
  }
  EXPECT_EQ(host.entriesOf.size(), 5u);
  const auto after = BytesInUse();
  if (!before || !after)
    GTEST_SKIP() << "no reload was missed; the memory in use is not known here";
  EXPECT_LE(*after, *before + 64 * 1024);
  if (isLong) std::cout << *before << " bytes in use after a week, " << *after << " at the end\n";
}

TEST(Scheduler, SleepSetClocksAndOtherZonesAreFollowed) {
  Host host("2024-03-28T12:00:00Z");
  host.scheduler->show(HomeScreen::standard());
  host.RunFor(60.0);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> pause(60.0, 5.0 * 3600.0);
  std::uniform_real_distribution<double> jump(-6.0 * 3600.0, 10.0 * 3600.0);
  for (int i = 0; i < 60; ++i) {
    host.RunFor(pause(random));
    host.due.clear();
    const int before = host.entries;
    host.alarm->ClockIsSet(jump(random));
    host.RunFor(10.0);
    EXPECT_GE(host.entries, before + 5);
    host.ExpectAllUpToDate();
    const char* const zones[] = {"Pacific/Auckland", "America/St_Johns", "Europe/Ljubljana"};
    host.due.clear();
    host.world.TravelTo(zones[i % 3]);
    host.scheduler->restart();
    host.RunFor(10.0);
    host.ExpectAllUpToDate();
    host.due.clear();
  }
}

TEST(Scheduler, ADeviceThatNeverAnswersIsAskedAnew) {
  Host host("2024-08-12T12:00:00Z");
  host.isSilent = true;
  host.world.device->last.reset();
  host.scheduler->show(HomeScreen::fromJson(R"({"widgets": [{"kind": "SunWidget"}]})"));
  host.RunFor(kDay);
  EXPECT_EQ(host.entries, 0);
  EXPECT_TRUE(host.scheduler->shown().front().isPlaceholder);
  // Now and then, and not all the time.
  EXPECT_GE(host.world.device->requests, 100);
  EXPECT_LE(host.world.device->requests, 300);
  host.isSilent = false;
  host.RunFor(600.0);
  EXPECT_EQ(host.entries, 1);
  EXPECT_FALSE(host.scheduler->shown().front().isPlaceholder);
}

TEST(Scheduler, EntriesSurviveARestart) {
  Host host("2024-08-12T12:00:00Z");
  host.scheduler->show(HomeScreen::standard());
  host.RunFor(600.0);
  std::map<std::string, std::string> before;
  for (const ShownWidget& shown : host.scheduler->shown()) {
    before[shown.widget.id] = entryToJson(shown.entry);
  }
  EXPECT_EQ(before.size(), 5u);

  const auto version = host.scheduler->find("sun")->version;
  host.scheduler.reset();
  host.world.device->last.reset();
  host.isSilent = true;
  host.Start();
  HomeScreen changed = HomeScreen::standard();
  PlacedWidget moon = changed.at("moon");
  moon.theme = widgets::Enum::light;
  changed.replace(moon);
  host.scheduler->show(changed);
  for (const ShownWidget& shown : host.scheduler->shown()) {
    EXPECT_EQ(shown.isPlaceholder, shown.widget.id == "moon") << shown.widget.id;
    // The plans were answered afresh already.
    if (shown.widget.id == "moon" || shown.widget.id == "plans") continue;
    EXPECT_EQ(entryToJson(shown.entry), before[shown.widget.id]);
  }
  host.isSilent = false;
  host.RunFor(600.0);
  host.ExpectAllUpToDate();
  // A page that was left open tells the new entry from the old one.
  EXPECT_NE(host.scheduler->find("sun")->version, version);
  EXPECT_GT(dateOf(host.scheduler->find("sun")->entry), Instant("2024-08-12T12:05:00Z"));

  // Something else in the file, or another language: as if there were none.
  host.scheduler.reset();
  std::string finnish = *host.memory->text;
  finnish.replace(finnish.find("\"en\""), 4, "\"fi\"");
  for (const std::string& text :
       {std::string(), std::string(R"({"locale": "en", "entries": [{}]})"), finnish}) {
    host.scheduler.reset();
    host.memory->text = text;
    host.isSilent = true;
    host.world.device->last.reset();
    host.Start();
    host.scheduler->show(HomeScreen::standard());
    EXPECT_TRUE(host.scheduler->find("sun")->isPlaceholder) << text;
  }
}

TEST(Scheduler, ChangesAskTheChangedAlone) {
  Host host("2024-08-12T12:00:00Z");
  HomeScreen screen = HomeScreen::standard();
  host.scheduler->show(screen);
  host.RunFor(60.0);
  const auto version = [&](const char* id) { return host.scheduler->find(id)->version; };
  const auto sun = version("sun");
  screen.move("sun", 4);
  screen.add({"", "MoonWidget", {}, widgets::IntentPlacemark{{{60.0, 25.0}}, "", {}}, {}});
  screen.remove("plans");
  host.scheduler->show(screen);
  host.RunFor(10.0);
  EXPECT_EQ(version("sun"), sun);
  EXPECT_EQ(host.scheduler->find("plans"), nullptr);
  EXPECT_FALSE(host.scheduler->find("moon-2")->isPlaceholder);
  EXPECT_TRUE(host.scheduler->isShowing(screen));
}

TEST(Scheduler, TheDayThatIsShownEndsAtItsPlacesMidnight) {
  Host host("2024-08-12T14:50:00Z");
  // Midnight in Tokyo is at 15 h UT.
  host.scheduler->show(HomeScreen::fromJson(
      R"({"widgets": [{"kind": "MoonWidget", "place": {"latitude": 36, "longitude": 140}}]})"));
  host.RunFor(5.0);
  const ShownWidget& moon = host.scheduler->shown().front();
  EXPECT_EQ(moon.reloadDate, Instant("2024-08-12T15:00:00Z"));
  host.RunFor(600.0);
  EXPECT_EQ(dateOf(moon.entry), Instant("2024-08-12T15:00:00Z"));
}

TEST(ReloadDate, OfATimelineWithoutOneIsAtMidnightOrBefore) {
  const std::pair<const char*, const char*> cases[] = {
      {"2024-08-12T12:00:00Z", "2024-08-12T12:30:00Z"},
      // A quarter before midnight in Ljubljana, also on the day of 25 hours.
      {"2024-08-12T21:45:00Z", "2024-08-12T22:00:00Z"},
      {"2024-10-27T22:45:00Z", "2024-10-27T23:00:00Z"},
  };
  for (const auto& [now, reload] : cases) {
    const WidgetWorld world(now, "Europe/Ljubljana");
    EXPECT_EQ(reloadDateOf(widgets::TimelineReloadPolicy::atEnd(), Instant(now)), Instant(reload));
  }
  // An answer that took its time.
  const NSDate now = Instant("2024-08-12T12:00:00Z");
  EXPECT_EQ(reloadDateOf(widgets::TimelineReloadPolicy::after(Later(now, -60.0)), now),
            Later(now, 1.0));
}

}  // namespace
}  // namespace lumenquest::host
