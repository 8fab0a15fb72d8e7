#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "host/scheduler.h"
#include "platform/drawing.h"

namespace lumenquest::host {

/// Draws a widget as an SVG document without an XML declaration, with a <desc> that tells those who
/// do not see it what it shows. `idPrefix` begins every id, so that documents can share a page.
using DrawWidget = std::function<std::string(const ShownWidget& shown, platform::ColorScheme scheme,
                                             const std::string& idPrefix)>;

/// Draws a widget as a PNG with `scale` pixels a point.
using DrawPng = std::function<std::string(const ShownWidget& shown, platform::ColorScheme scheme,
                                          double scale)>;

/// Where a deep link of a widget leads on the site; `widgetId` may be empty. Nothing for an address
/// that is none of ours.
std::string pageOfDeepLink(const std::string& deepLink, const std::string& widgetId);
/// Whether a widget of this kind leads to the Moon's page.
bool leadsToMoon(const std::string& kind);
/// Where a widget as a whole leads.
std::string pageOfWidget(const PlacedWidget& widget);

/// A widget's picture with the site's own links.
struct WidgetPicture {
  std::shared_ptr<const std::string> svg;
  /// What it shows; HTML.
  std::string description;
  /// Several things in it lead to several pages.
  bool hasInnerLinks = false;
};

/// Pictures of the shown widgets, drawn when first asked for and kept until the next entry.
class WidgetPictures {
 public:
  explicit WidgetPictures(DrawWidget draw) : draw_(std::move(draw)) {}

  const WidgetPicture& pictureOf(const ShownWidget& shown, platform::ColorScheme scheme);
  /// Of a widget that might be placed, with its sample data.
  const WidgetPicture& sampleOf(const std::string& kind, widgets::WidgetFamily family,
                                platform::ColorScheme scheme);
  /// Forgets widgets that are shown no more.
  void keepOnly(const std::vector<ShownWidget>& shown);

 private:
  struct Kept {
    PlacedWidget widget;
    std::uint64_t version = 0;
    WidgetPicture picture;
  };

  WidgetPicture Draw(const ShownWidget& shown, platform::ColorScheme scheme) const;

  DrawWidget draw_;
  std::map<std::pair<std::string, platform::ColorScheme>, Kept> kept_;
  std::map<std::tuple<std::string, widgets::WidgetFamily, platform::ColorScheme>, WidgetPicture>
      samples_;
};

/// The shown widgets as PNGs, drawn when first asked for and kept until the next entry. Of those
/// that take more than `mostBytes` together, the ones that nobody has asked for longest go.
class WidgetPngs {
 public:
  explicit WidgetPngs(DrawPng draw, std::size_t mostBytes = 16u << 20)
      : draw_(std::move(draw)), mostBytes_(mostBytes) {}

  std::shared_ptr<const std::string> pngOf(const ShownWidget& shown, platform::ColorScheme scheme,
                                           double scale);
  /// Forgets widgets that are shown no more.
  void keepOnly(const std::vector<ShownWidget>& shown);

 private:
  struct Kept {
    PlacedWidget widget;
    std::uint64_t version = 0;
    platform::ColorScheme scheme = platform::ColorScheme::dark;
    double scale = 0.0;
    std::shared_ptr<const std::string> png;
  };

  DrawPng draw_;
  std::size_t mostBytes_;
  /// The last asked for is the last.
  std::list<Kept> kept_;
};

}  // namespace lumenquest::host
