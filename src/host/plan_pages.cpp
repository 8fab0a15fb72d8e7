#include "host/plan_pages.h"

#include <memory>
#include <utility>
#include <vector>

#include "host/web_page.h"
#include "host/web_text.h"
#include "platform/database.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/planning.h"
#include "platform/services.h"

namespace lumenquest::host {

namespace {

using platform::kTableApp;
using platform::kTableCommon;
using platform::localizedString;
using platform::NSDate;
using platform::NSDateFormatterStyle;
using platform::NSTimeZone;
using platform::Planning;

/// Absent where the plan's identifier names no zone; a plan without one is in the device's.
std::optional<NSTimeZone> ZoneOf(const Planning& plan) {
  const std::string name = plan.timezone().value_or("");
  return name.empty() ? NSTimeZone::localTimeZone() : NSTimeZone::timeZoneWithName(name);
}

std::string DateOf(const Planning& plan) {
  if (!plan.date()) return "--";
  platform::FormatterService& service = platform::Services::current().formatters();
  const auto formatter =
      service.dateFormatter("", NSDateFormatterStyle::shortStyle, NSDateFormatterStyle::shortStyle);
  formatter->setDateFormat(service.dateFormatFromTemplate("yMMMMEEEEdjmm"));
  formatter->setTimeZone(ZoneOf(plan).value_or(NSTimeZone::localTimeZone()));
  return formatter->stringFromDate(*plan.date());
}

std::string NameOf(const Planning& plan) {
  const std::string name = plan.name().value_or("");
  return name.empty() ? localizedString("web_plan_without_name", kTableApp) : name;
}

std::optional<std::string> CoordinateOf(const Planning& plan) {
  if (!plan.latitude() || !plan.longitude()) return std::nullopt;
  return platform::LocationUtils::latLonStringWithCoordinate({*plan.latitude(), *plan.longitude()});
}

}  // namespace

FoundPlans savedPlans(std::optional<platform::NSPredicate> predicate) {
  FoundPlans found;
  const auto context = platform::Database::sharedInstance().managedObjectContext();
  if (!context || !context->persistentStoreCoordinator()->persistentStore()) {
    found.error = localizedString("persistent_store_unresolved_error_title", kTableCommon);
    return found;
  }
  const auto fetched = context->executeFetchRequest(
      {platform::kEntityPlanning, std::move(predicate), platform::kAttributeDate});
  if (fetched.error) found.error = fetched.error->localizedDescription();
  for (const auto& object : fetched.value) {
    if (auto plan = std::dynamic_pointer_cast<Planning>(object)) {
      found.plans.push_back(std::move(plan));
    }
  }
  return found;
}

std::string plansPageContent() {
  const FoundPlans found = savedPlans(platform::NSPredicate::greaterThanOrEqual(
      platform::kAttributeDate, NSDate::dateWithStartDateTime(NSDate::date())));
  std::string html = pageHeading(localizedString("appwidget_plans", kTableCommon));
  if (found.error) return html + "<p class=\"card\">" + htmlEscaped(*found.error) + "</p>\n";
  if (found.plans.empty()) {
    return html + "<p class=\"card empty\">" +
           htmlEscaped(localizedString("plan_no_scheduled", kTableCommon)) + "</p>\n";
  }
  html += "<ul class=\"plans\">\n";
  for (const auto& plan : found.plans) {
    html += "<li><a class=\"card\" href=\"/plan?id=" +
            percentEncoded(plan->objectID().URIRepresentation()) + "\"><span class=\"name\">" +
            bdi(NameOf(*plan)) + "</span> <span class=\"date\">" + bdi(DateOf(*plan)) + "</span>";
    if (const auto zone = ZoneOf(*plan)) {
      html += " <span class=\"zone\">" + bdi(zone->name) + "</span>";
    }
    if (const auto coordinate = CoordinateOf(*plan)) {
      html += " <span class=\"coordinates\">" + bdi(*coordinate) + "</span>";
    }
    html += "</a></li>\n";
  }
  return html + "</ul>\n";
}

std::optional<PlanPage> planPage(const std::string& objectId) {
  const FoundPlans found = savedPlans();
  for (const auto& plan : found.plans) {
    if (plan->objectID().URIRepresentation() != objectId) continue;
    std::string html = "<header class=\"heading\">\n<a class=\"back\" href=\"/plans\">" +
                       htmlEscaped(localizedString("appwidget_plans", kTableCommon)) +
                       "</a>\n<h1>" + bdi(NameOf(*plan)) +
                       "</h1>\n</header>\n<section class=\"card\"><dl class=\"facts\">\n";
    const auto row = [&](const char* key, const std::string& value) {
      html += "<div><dt>" + webText(key) + "</dt><dd>" + bdi(value) + "</dd></div>\n";
    };
    row("web_date", DateOf(*plan));
    if (const auto zone = ZoneOf(*plan)) row("row_time_zone", zone->name);
    if (const auto coordinate = CoordinateOf(*plan)) row("row_coordinates", *coordinate);
    return PlanPage{NameOf(*plan), html + "</dl></section>\n"};
  }
  return std::nullopt;
}

}  // namespace lumenquest::host
