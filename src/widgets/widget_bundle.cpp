#include "widgets/widget_bundle.h"

#include <type_traits>
#include <utility>
#include <vector>

#include "platform/localized_strings.h"

namespace lumenquest::widgets {

namespace {

constexpr WidgetFamily kSmall = WidgetFamily::systemSmall;
constexpr WidgetFamily kMedium = WidgetFamily::systemMedium;
constexpr WidgetFamily kLarge = WidgetFamily::systemLarge;

std::string Common(const char* key) {
  return platform::localizedString(key, platform::kTableCommon);
}

template <typename Widget>
WidgetConfiguration Configuration(const Widget& widget, std::vector<WidgetFamily> families,
                                  std::string displayName, std::string description,
                                  const SystemVersion& system) {
  constexpr bool kHasPlace =
      std::is_same_v<typename Widget::Provider::Intent, LocationSelectorIntent>;
  return {widget.kind,
          kHasPlace ? ConfigurationIntent::locationSelector : ConfigurationIntent::themeSelector,
          std::move(families),
          std::move(displayName),
          std::move(description),
          system >= kSystemWithContentMargins};
}

}  // namespace

WidgetConfiguration SunWidget::configuration(const SystemVersion& system) const {
  return Configuration(*this, {kSmall, kMedium}, Common("appwidget_sun"),
                       Common("appwidget_sun_description"), system);
}

WidgetConfiguration MoonWidget::configuration(const SystemVersion& system) const {
  return Configuration(*this, {kSmall, kMedium}, Common("appwidget_moon"),
                       Common("appwidget_moon_description"), system);
}

WidgetConfiguration GalacticCenterWidget::configuration(const SystemVersion& system) const {
  return Configuration(*this, {kSmall}, Common("appwidget_milky_way"),
                       Common("appwidget_milky_way_description"), system);
}

WidgetConfiguration LumenquestWidget::configuration(const SystemVersion& system) const {
  // The application's name is the same in every language.
  return Configuration(*this, {kLarge}, "Lumenquest", Common("appwidget_lumenquest_description"),
                       system);
}

WidgetConfiguration PlansWidget::configuration(const SystemVersion& system) const {
  return Configuration(*this, {kSmall, kMedium}, Common("appwidget_plans"),
                       Common("appwidget_plans_description"), system);
}

std::array<WidgetConfiguration, std::tuple_size_v<LumenquestWidgets::Body>>
LumenquestWidgets::configurations(const SystemVersion& system) {
  return std::apply(
      [&](const auto&... widget) { return std::array{widget.configuration(system)...}; },
      LumenquestWidgets{}.body);
}

}  // namespace lumenquest::widgets
