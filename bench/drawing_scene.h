#pragma once

#include <string>

#include "adapters/pango_text.h"
#include "adapters/svg_pictures.h"
#include "platform/drawing.h"

namespace lumenquest::bench {

inline constexpr platform::CGSize kWidgetSize{364, 170};

/// As much as a wide widget shows: a background, a sky of colours, curves, symbols and a dozen
/// texts, each measured first.
inline void drawWidget(platform::Canvas& canvas, int hour) {
  using namespace platform;
  static const UIImage kMoon = adapters::readSvgPicture(
      "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><defs><radialGradient id='g' "
      "gradientUnits='userSpaceOnUse' cx='12' cy='12' r='10' fx='9' fy='8'>"
      "<stop offset='0' stop-color='#fffbe8'/><stop offset='1' stop-color='#b8b4a6'/>"
      "</radialGradient><clipPath id='c'><circle cx='12' cy='12' r='10'/></clipPath></defs>"
      "<g clip-path='url(#c)'><circle cx='12' cy='12' r='10' fill='url(#g)'/>"
      "<path d='M12 2a10 10 0 1 1 0 20 14 14 0 0 0 0-20z' fill='#101820' opacity='.8'/></g></svg>",
      "moon.svg");
  adapters::PangoTextMeasurer measurer;
  constexpr UIColor kWhite{0.95, 0.95, 0.97, 1};
  canvas.fill(UIBezierPath::roundedRect({0, 0, 364, 170}, 22), UIColor{0.06, 0.08, 0.11, 1});
  const Gradient sky{false,
                     {16, 0},
                     {348, 0},
                     0,
                     {{0, {0.1, 0.2, 0.5, 1}}, {0.5, {0.9, 0.5, 0.2, 1}}, {1, {0.1, 0.1, 0.3, 1}}},
                     {}};
  canvas.fill(UIBezierPath::roundedRect({16, 126, 332, 30}, 10), sky);
  UIBezierPath curve;
  curve.moveTo({16, 110});
  for (int i = 0; i < 8; ++i) {
    const double x = 16 + 41.5 * i;
    curve.curveTo({x + 20, i % 2 == 0 ? 80.0 : 120.0}, {x + 30, 100}, {x + 41.5, 105});
  }
  canvas.stroke(curve, kWhite, Stroke{1.5, LineEnds::round, true});
  canvas.drawImage(kMoon, {290, 12, 56, 56}, kWhite);
  const char* const names[] = {"Golden hour", "Sunset",        "Civil dusk",
                               "Blue hour",   "Nautical dusk", "Moonrise"};
  double y = 12;
  for (const char* name : names) {
    const std::string time = std::to_string(hour++ % 24) + ":32";
    TextStyle style;
    const TextMetrics metrics = measurer.measure(name, style, 160);
    canvas.drawText(name, style, kWhite, {16, y, 160, metrics.size.height});
    style.hasMonospacedDigits = true;
    style.weight = FontWeight::semibold;
    style.alignment = TextAlignment::trailing;
    measurer.measure(time, style, 80);
    canvas.drawText(time, style, kWhite, {180, y, 80, metrics.size.height});
    y += metrics.size.height;
  }
}

}  // namespace lumenquest::bench
