#include "widgets/plans/plan_item.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/localized_strings.h"
#include "platform/services.h"
#include "widgets/deep_links.h"

namespace lumenquest::widgets {

using platform::kTableCommon;
using platform::localizedString;

std::string percentEncodedForUrlHost(const std::string& text) {
  static constexpr std::string_view kAllowed = "!$&'()*+,-.:;=[]_~";
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') || kAllowed.find(c) != std::string_view::npos;
    if (isPlain) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15u]};
  }
  return encoded;
}

std::string planDateText(const PlanItem& plan) {
  if (!plan.date) return "--";
  const auto formatter = platform::Services::current().formatters().dateFormatter(
      "", platform::NSDateFormatterStyle::shortStyle, platform::NSDateFormatterStyle::shortStyle);
  formatter->setTimeZone(plan.timeZone ? *plan.timeZone : platform::NSTimeZone::localTimeZone());
  return formatter->stringFromDate(*plan.date);
}

PlansContent plansContent(const PlansTimelineEntry& entry, WidgetFamily family) {
  constexpr std::size_t kRowsInColumn = 2;
  PlansContent content;
  content.title = localizedString("appwidget_plans", kTableCommon);
  if (entry.plans.empty()) {
    content.nothingScheduled = localizedString("plan_no_scheduled", kTableCommon);
    return content;
  }
  const bool isSmall = family == WidgetFamily::systemSmall;
  const std::size_t columns = isSmall ? 1 : 2;
  const std::size_t shown = std::min(entry.plans.size(), columns * kRowsInColumn);
  for (std::size_t i = 0; i < shown; ++i) {
    if (i % kRowsInColumn == 0) content.columns.emplace_back();
    const PlanItem& plan = entry.plans[i];
    content.columns.back().push_back({plan.name.value_or(""), planDateText(plan),
                                      isSmall ? std::string() : planLink(plan.objectId)});
  }
  return content;
}

}  // namespace lumenquest::widgets

std::size_t std::hash<lumenquest::widgets::PlanItem>::operator()(
    const lumenquest::widgets::PlanItem& plan) const {
  std::size_t sum = 0;
  const auto add = [&sum](std::size_t value) { sum = sum * 31 + value; };
  add(std::hash<std::optional<std::string>>{}(plan.name));
  add(plan.date ? std::hash<double>{}(plan.date->timeIntervalSinceReferenceDate()) : 0);
  add(plan.timeZone ? std::hash<std::string>{}(plan.timeZone->name) : 0);
  add(std::hash<std::string>{}(plan.objectId));
  return sum;
}
