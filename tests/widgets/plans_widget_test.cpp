// The plans' widget, on real stores.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unordered_set>

#include "plans_fixture.h"
#include "widgets/deep_links.h"
#include "widgets/plans/plans_provider.h"

namespace lumenquest::widgets {
namespace {

using platform::NSDate;
using ::testing::ElementsAre;
using testing::Instant;
using ::testing::IsEmpty;
using testing::PlansServices;
using testing::Role;
using testing::ScratchFolder;
using Text = std::optional<std::string>;

void Save(const Text& name, const char* date, const Text& zone) {
  const auto context = platform::Database::sharedInstance().managedObjectContext();
  const auto plan = context->insertNewObjectForEntityForName(platform::kEntityPlanning);
  if (name) plan->setValue(*name, platform::kAttributeName);
  if (date != nullptr) plan->setValue(Instant(date), platform::kAttributeDate);
  if (zone) plan->setValue(*zone, platform::kAttributeTimezone);
  ASSERT_FALSE(context->save());
}

PlansTimelineEntry Timeline(Enum theme = Enum::unknown) {
  ThemeSelectorIntent intent;
  intent.theme = theme;
  std::vector<PlansTimelineEntry> entries;
  PlansProvider().getTimeline(intent, {}, [&](auto timeline) {
    EXPECT_EQ(timeline.policy, TimelineReloadPolicy::atEnd());
    entries = timeline.entries;
  });
  EXPECT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].date, Instant("2024-08-12T12:00:00Z"));
  return entries[0];
}

std::vector<std::string> Names(const PlansTimelineEntry& entry) {
  std::vector<std::string> names;
  for (const PlanItem& plan : entry.plans) names.push_back(plan.name.value_or("-"));
  return names;
}

TEST(PlansWidget, TheNextFourFromTodaysMidnightOn) {
  const ScratchFolder folder;
  const PlansServices services(folder / "", Role::owner, "Europe/Berlin");
  EXPECT_THAT(Timeline().plans, IsEmpty());
  Save("fifth", "2025-01-01T00:00:00Z", "UTC");
  Save("yesterday 23:59", "2024-08-11T21:59:00Z", "UTC");
  Save("never", nullptr, {});
  Save("third", "2024-08-13T03:30:00Z", "Asia/Tokyo");
  Save("today 00:00", "2024-08-11T22:00:00Z", "");
  Save({}, "2024-12-24T20:00:00Z", "Mars/Base");
  EXPECT_THAT(Names(Timeline()), ElementsAre("today 00:00", "third", "-", "fifth"));
  Save("second", "2024-08-12T11:00:00Z", {});
  const PlansTimelineEntry entry = Timeline(Enum::light);
  EXPECT_THAT(Names(entry), ElementsAre("today 00:00", "second", "third", "-"));
  EXPECT_EQ(entry.theme, ThemeStyleEnum::themeLight);

  const platform::NSTimeZone berlin{"Europe/Berlin"};
  EXPECT_EQ(entry.plans[0].timeZone, berlin);
  EXPECT_EQ(entry.plans[1].timeZone, berlin);
  EXPECT_EQ(entry.plans[2].timeZone, platform::NSTimeZone{"Asia/Tokyo"});
  EXPECT_EQ(entry.plans[3].timeZone, std::nullopt);

  // Each says its own time, and leads to itself.
  const PlansContent medium = plansContent(entry, WidgetFamily::systemMedium);
  ASSERT_EQ(medium.columns.size(), 2u);
  const char* const dates[] = {"8/12/24, 12:00\u202FAM", "8/12/24, 1:00\u202FPM",
                               "8/13/24, 12:30\u202FPM", "12/24/24, 9:00\u202FPM"};
  std::unordered_set<std::string> links;
  for (std::size_t i = 0; i < 4; ++i) {
    const PlanRow& row = medium.columns.at(i / 2).at(i % 2);
    EXPECT_EQ(row.name, entry.plans[i].name.value_or(""));
    EXPECT_EQ(row.date, dates[i]);
    EXPECT_THAT(row.link,
                ::testing::MatchesRegex(
                    "lumenquest://plan\\?id=x-store:%2F%2F[-0-9A-F]+%2FPlanning%2Fp[0-9]+"));
    links.insert(row.link);
  }
  EXPECT_EQ(links.size(), 4u);
}

TEST(PlansWidget, OddDatesAndIdentifiersStopNothing) {
  const testing::TestServices services("2024-08-12T12:00:00Z");
  EXPECT_EQ(planDateText({}), "--");
  // Dates that no calendar has.
  for (const double seconds : {1e300, -1e300, 1e12}) {
    EXPECT_NE(planDateText({{}, NSDate(seconds), {}, ""}), "");
  }
  EXPECT_EQ(percentEncodedForUrlHost("aZ0!$&'()*+,-.:;=[]_~"), "aZ0!$&'()*+,-.:;=[]_~");
  EXPECT_EQ(percentEncodedForUrlHost("/?#%@ \"<>\\^`{|}\x01é"),
            "%2F%3F%23%25%40%20%22%3C%3E%5C%5E%60%7B%7C%7D%01%C3%A9");
}

TEST(PlansWidget, WithoutAStoreThatCanBeReadThereAreNone) {
  const ScratchFolder folder;
  {
    const PlansServices services(std::nullopt, Role::reader);
    EXPECT_THAT(Timeline().plans, IsEmpty());
  }
  {
    const PlansServices services(folder / "");
    Save("mine", "2024-08-13T00:00:00Z", {});
    // Samples are the same whatever the store holds, and lead nowhere.
    std::vector<PlanItem> snapshot;
    PlansProvider().getSnapshot({}, {}, [&](const auto& entry) { snapshot = entry.plans; });
    EXPECT_EQ(PlansProvider().placeholder({}).plans, snapshot);
    ASSERT_EQ(snapshot.size(), 4u);
    EXPECT_EQ(snapshot[0].objectId, "");
    EXPECT_EQ(*snapshot[3].date, snapshot[0].date->dateByAddingNumberOfDays(3));
  }
  {
    const PlansServices services(folder / "", Role::reader);
    EXPECT_THAT(Names(Timeline()), ElementsAre("mine"));
  }
  testing::TestServices nothing("2024-08-12T12:00:00Z");  // lets go of the file
  const auto path = folder / "Lumenquest.sqlite";
  const std::string whole = testing::Contents(path);
  for (const std::string& damaged :
       {std::string("no store at all"), std::string(), whole.substr(0, 5000),
        whole.substr(0, 100) + std::string(whole.size() - 100, 'x')}) {
    std::filesystem::remove(folder / "Lumenquest.sqlite-wal");
    std::ofstream(path, std::ios::binary) << damaged;
    const PlansServices services(folder / "", Role::reader);
    EXPECT_THAT(Timeline().plans, IsEmpty());
    EXPECT_EQ(testing::Contents(path), damaged);
  }
}

}  // namespace
}  // namespace lumenquest::widgets
