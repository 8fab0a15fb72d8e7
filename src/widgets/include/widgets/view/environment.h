#pragma once

#include "platform/drawing.h"
#include "platform/ui_color.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets::view {

/// How the host draws widgets.
enum class WidgetRenderingMode {
  fullColor,
  /// Flat shapes that the system tints: white ones and ones in the user's accent colour.
  accented
};

enum class LayoutDirection { leftToRight, rightToLeft };

/// What a view may know of where it is shown. Handed down, never looked up.
struct Environment {
  WidgetFamily family = WidgetFamily::systemSmall;
  platform::ColorScheme colorScheme = platform::ColorScheme::dark;
  WidgetRenderingMode renderingMode = WidgetRenderingMode::fullColor;
  SystemVersion system{};
  LayoutDirection layoutDirection = LayoutDirection::leftToRight;
  /// Of accented elements in the accented mode.
  platform::UIColor accent{0.55, 0.78, 1.0, 1.0};

  /// Whether a view draws its tinted variant.
  bool isTinted() const {
    return system >= kSystemWithRenderingModes && renderingMode == WidgetRenderingMode::accented;
  }
};

/// Size of a family in points, on a phone of the common size.
platform::CGSize sizeOf(WidgetFamily family);
/// On the smallest phone, in points: the views are laid out for no less.
platform::CGSize leastSizeOf(WidgetFamily family);

}  // namespace lumenquest::widgets::view
