#pragma once

#include <array>
#include <string>
#include <tuple>

#include "widgets/galactic_center/galactic_center_provider.h"
#include "widgets/moon/moon_provider.h"
#include "widgets/plans/plans_provider.h"
#include "widgets/sun/sun_provider.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

// The widgets. Each ties its kind, by which the host knows it, to its provider and to what it says
// of itself; each has one field, set when it is made.

struct SunWidget {
  using Provider = SunProvider;
  std::string kind = "SunWidget";
  WidgetConfiguration configuration(const SystemVersion& system) const;
};

struct MoonWidget {
  using Provider = MoonProvider;
  std::string kind = "MoonWidget";
  WidgetConfiguration configuration(const SystemVersion& system) const;
};

struct GalacticCenterWidget {
  using Provider = GalacticCenterProvider;
  std::string kind = "GalacticCenterSmallWidget";
  WidgetConfiguration configuration(const SystemVersion& system) const;
};

/// The large widget: Sun, Moon and galactic centre together.
struct LumenquestWidget {
  using Provider = SunProvider;
  std::string kind = "LumenquestWidget";
  WidgetConfiguration configuration(const SystemVersion& system) const;
};

struct PlansWidget {
  using Provider = PlansProvider;
  std::string kind = "PlansWidget";
  WidgetConfiguration configuration(const SystemVersion& system) const;
};

/// All widgets, in the order in which a host offers them.
struct LumenquestWidgets {
  using Body =
      std::tuple<SunWidget, MoonWidget, GalacticCenterWidget, LumenquestWidget, PlansWidget>;
  Body body;

  /// What they say of themselves to a host of this version, in the user's language.
  static std::array<WidgetConfiguration, std::tuple_size_v<Body>> configurations(
      const SystemVersion& system = {});
};

}  // namespace lumenquest::widgets
