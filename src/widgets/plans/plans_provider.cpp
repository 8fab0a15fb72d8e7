#include "widgets/plans/plans_provider.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/database.h"
#include "platform/planning.h"
#include "platform/services.h"

namespace lumenquest::widgets {

namespace {

using platform::NSDate;
using platform::NSTimeZone;
using platform::Planning;

constexpr std::size_t kMostPlans = 4;
constexpr double kSecondsPerDay = 86400.0;

/// The samples' dates are those of the first time that anybody asked.
const std::vector<PlanItem>& PreviewPlans() {
  static const std::vector<PlanItem> plans = [] {
    const double now = NSDate::date().timeIntervalSinceReferenceDate();
    std::vector<PlanItem> made;
    for (int i = 0; i < static_cast<int>(kMostPlans); ++i) {
      made.push_back({"Plan " + std::to_string(i + 1), NSDate(now + i * kSecondsPerDay),
                      NSTimeZone::localTimeZone(), ""});
    }
    return made;
  }();
  return plans;
}

PlanItem ItemOf(const Planning& plan) {
  PlanItem item;
  item.name = plan.name();
  item.date = plan.date();
  const std::string zone = plan.timezone().value_or("");
  item.timeZone = zone.empty() ? NSTimeZone::localTimeZone() : NSTimeZone::timeZoneWithName(zone);
  item.objectId = percentEncodedForUrlHost(plan.objectID().URIRepresentation());
  return item;
}

std::vector<PlanItem> FetchPlans(NSDate now) {
  const auto context = platform::Database::sharedInstance().managedObjectContext();
  if (!context) return {};
  const NSDate cutoff = NSDate::dateWithStartDateTime(now);
  const auto fetched = context->executeFetchRequest(
      {platform::kEntityPlanning,
       platform::NSPredicate::greaterThanOrEqual(platform::kAttributeDate, cutoff),
       platform::kAttributeDate, kMostPlans});
  if (fetched.error) return {};
  std::vector<PlanItem> plans;
  for (const auto& object : fetched.value) {
    if (const auto plan = std::dynamic_pointer_cast<Planning>(object)) {
      plans.push_back(ItemOf(*plan));
    }
  }
  return plans;
}

}  // namespace

PlansTimelineEntry PlansProvider::placeholder(const TimelineProviderContext&) {
  return {NSDate::date(), PreviewPlans(), ThemeStyleEnum::themeSystem};
}

void PlansProvider::getSnapshot(const Intent& configuration, const TimelineProviderContext&,
                                SnapshotCompletion completion) {
  completion({NSDate::date(), PreviewPlans(), themeStyleOf(configuration.theme)});
}

void PlansProvider::getTimeline(const Intent& configuration, const TimelineProviderContext&,
                                TimelineCompletion completion) {
  const NSDate now = NSDate::date();
  completion(
      {{{now, FetchPlans(now), themeStyleOf(configuration.theme)}}, TimelineReloadPolicy::atEnd()});
}

}  // namespace lumenquest::widgets
