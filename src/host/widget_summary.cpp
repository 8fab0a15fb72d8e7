#include "host/widget_summary.h"

#include "widgets/location/location_views.h"
#include "widgets/moon/moon_content.h"
#include "widgets/sun/sun_content.h"

namespace lumenquest::host {

namespace {

using widgets::WidgetContent;
using widgets::WidgetFamily;

constexpr const char* kSeparator = " · ";

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
  std::string line;
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    line += (line.empty() ? "" : separator) + text;
  }
  return line;
}

std::string Summary(const widgets::SunTimelineEntry& entry) {
  const widgets::SunContent content = widgets::sunContent(entry.data, WidgetFamily::systemSmall);
  return Joined({content.lightType, content.nextLight}, kSeparator);
}

std::string Summary(const widgets::MoonTimelineEntry& entry) {
  return widgets::moonContent(entry.data, nullptr, WidgetFamily::systemSmall).phase;
}

std::string Summary(const widgets::GalacticCenterTimelineEntry& entry) {
  const widgets::GCVisibilityContent content =
      widgets::gcVisibilityContent(entry.data, WidgetFamily::systemSmall);
  std::vector<std::string> texts;
  for (const widgets::GCRiseSetTime& end : content.window) texts.push_back(end.time);
  return Joined({Joined(texts, " – "), content.notVisibleUntil, content.alwaysInvisible},
                kSeparator);
}

std::string Summary(const widgets::PlansTimelineEntry& entry) {
  const widgets::PlansContent content = widgets::plansContent(entry, WidgetFamily::systemSmall);
  if (entry.plans.empty()) return content.nothingScheduled;
  const widgets::PlanRow& first = content.columns.front().front();
  return Joined({first.name, first.date}, kSeparator);
}

WidgetContent ContentOf(const AnyEntry& entry) {
  return std::visit(
      [](const auto& kind) {
        if constexpr (requires { kind.data; }) return contentFor(kind.data.locationData);
        return WidgetContent::information;
      },
      entry);
}

/// What the smallest view says in place of values.
std::string Reason(const AnyEntry& entry) {
  widgets::view::Environment environment;
  return Joined(widgets::view::textsOf(viewOf(entry, environment)), kSeparator);
}

}  // namespace

std::string summaryOf(const AnyEntry& entry) {
  if (ContentOf(entry) != WidgetContent::information) {
    return Reason(entry);
  }
  return std::visit([](const auto& kind) { return Summary(kind); }, entry);
}

std::string detailsOf(const AnyEntry& entry, WidgetFamily family) {
  widgets::view::Environment environment;
  environment.family = family;
  return widgets::view::descriptionOf(viewOf(entry, environment), "\n");
}

std::string stateOf(const AnyEntry& entry) {
  switch (ContentOf(entry)) {
    case WidgetContent::locationDenied:
      return "denied";
    case WidgetContent::locationTimeOut:
      return "no-location";
    case WidgetContent::information:
      break;
  }
  const auto* const plans = std::get_if<widgets::PlansTimelineEntry>(&entry);
  return plans != nullptr && plans->plans.empty() ? "empty" : "information";
}

}  // namespace lumenquest::host
