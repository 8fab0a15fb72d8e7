#pragma once

#include <string>

#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets::view {

// One grid and one scale of type for all widgets. Points.

inline constexpr double kWidgetCornerRadius = 22.0;
/// Between the widget's edge and its panels; their corners run parallel.
inline constexpr double kPanelMargin = 5.0;
inline constexpr double kPanelCornerRadius = kWidgetCornerRadius - kPanelMargin;
/// Between a panel's edge and what stands on it.
inline constexpr double kContentInset = 12.0;
inline constexpr double kGap = 4.0;
/// Of a medium or large widget's panel, where its columns have all their room.
inline constexpr double kRoomyWidth = 320.0;

/// The least size of what people look for, times above all.
inline constexpr double kDense = 9.0;
inline constexpr double kCaption = 10.0;
inline constexpr double kBody = 11.0;
inline constexpr double kTitle = 12.0;
inline constexpr double kHeadline = 15.0;
inline constexpr double kSmallIcon = 11.0;

/// The smallest part of its size to which a text may shrink before words are left out.
inline constexpr double kLeastScale = 0.75;

/// A panel that fills its room; without its colour where the host tints.
Element panel(const Element& content, const char* colorName, const Environment& environment);

/// A widget on its background, which the host draws where it tints.
Element widgetBackground(const Element& content, const Environment& environment);

/// A medium panel's two columns, the same in every widget: a picture, which may be smaller where
/// there is less width, and a table beside it.
Element pictureAndTable(const Element& roomyPicture, const Element& picture, const Element& table);

/// A picture as a host shows it that tints: its lights and shades in those of one colour.
platform::UIImage accentedStyle(const platform::UIImage& picture, const platform::UIColor& accent);

/// A line of small text.
Element caption(std::string text);
/// A line that a widget is about.
Element body(std::string text, platform::FontWeight weight = platform::FontWeight::regular);

/// A hair line.
Element divider();

}  // namespace lumenquest::widgets::view
