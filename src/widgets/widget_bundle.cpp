#include "widgets/widget_bundle.h"

#include <utility>

#include "platform/localized_strings.h"

namespace lumenquest::widgets {

namespace {

WidgetConfiguration Configuration(const std::string& kind, ConfigurationIntent intent,
                                  std::vector<WidgetFamily> families, std::string displayName,
                                  const char* descriptionKey, const SystemVersion& system) {
  return {kind,
          intent,
          std::move(families),
          std::move(displayName),
          platform::localizedString(descriptionKey, platform::kTableCommon),
          system >= kSystemWithContentMargins};
}

std::string Common(const char* key) {
  return platform::localizedString(key, platform::kTableCommon);
}

}  // namespace

WidgetConfiguration SunWidget::configuration(const SystemVersion& system) const {
  return Configuration(kind, ConfigurationIntent::locationSelector,
                       {WidgetFamily::systemSmall, WidgetFamily::systemMedium},
                       Common("appwidget_sun"), "appwidget_sun_description", system);
}

WidgetConfiguration MoonWidget::configuration(const SystemVersion& system) const {
  return Configuration(kind, ConfigurationIntent::locationSelector,
                       {WidgetFamily::systemSmall, WidgetFamily::systemMedium},
                       Common("appwidget_moon"), "appwidget_moon_description", system);
}

WidgetConfiguration GalacticCenterWidget::configuration(const SystemVersion& system) const {
  return Configuration(kind, ConfigurationIntent::locationSelector, {WidgetFamily::systemSmall},
                       Common("appwidget_milky_way"), "appwidget_milky_way_description", system);
}

WidgetConfiguration LumenquestWidget::configuration(const SystemVersion& system) const {
  // The application's name is its own key, and the same in every language.
  return Configuration(kind, ConfigurationIntent::locationSelector, {WidgetFamily::systemLarge},
                       "Lumenquest", "appwidget_lumenquest_description", system);
}

WidgetConfiguration PlansWidget::configuration(const SystemVersion& system) const {
  return Configuration(kind, ConfigurationIntent::themeSelector,
                       {WidgetFamily::systemSmall, WidgetFamily::systemMedium},
                       Common("appwidget_plans"), "appwidget_plans_description", system);
}

std::array<WidgetConfiguration, std::tuple_size_v<LumenquestWidgets::Body>>
LumenquestWidgets::configurations(const SystemVersion& system) {
  return std::apply(
      [&](const auto&... widget) { return std::array{widget.configuration(system)...}; },
      LumenquestWidgets{}.body);
}

}  // namespace lumenquest::widgets
