#include "widgets/sun/sun_views.h"

#include "platform/assertion.h"
#include "widgets/deep_links.h"
#include "widgets/location/location_views.h"
#include "widgets/moon/moon_views.h"
#include "widgets/view/style.h"

namespace lumenquest::widgets {

using namespace view;

namespace {

/// The icon on a faint disc of its own light, and the light's name under it.
Element LightNow(const SunContent& content, double haloSize = 1.55) {
  constexpr double kHaloOpacity = 0.14;
  const double halo = content.iconSize * haloSize;
  const platform::UIColor glow = content.sunColor.withAlpha(content.sunColor.alpha * kHaloOpacity);
  return vstack({zstack({shape(glow, halo) | accented() | frame(halo, halo),
                         SunIconView(content.sunColor, content.iconSize)}),
                 text(content.lightType) | font(kCaption) | minScale(0.9) | lineLimit(2) |
                     align(platform::TextAlignment::center)},
                kGap);
}

Element NextLight(const SunContent& content) {
  if (content.nextLight.empty()) return nothing();
  return hstack({image("nextLightIcon", kSmallIcon) | color(named("contentSecondary")) | mirrored(),
                 caption(content.nextLight) | monospacedDigits()},
                kGap);
}

Element RiseSet(const SunLightWidgetData& data) {
  return RiseSetView(data.mjdRise, data.mjdSet, data.mjdTomorrowAt0, data.locationData);
}

}  // namespace

Element SunIconView(const platform::UIColor& sunColor, double size) {
  return image("sunIcon", size) | color(sunColor) | accented();
}

Element LightTypeIconView(const platform::UIColor& sunColor, double size) {
  return image("lightTypeIcon", size) | color(sunColor) | accented();
}

Element LightTypeView(const LightTypeRow& row, double size) {
  return hstack(
      {LightTypeIconView(row.fillColor, size - 2.0),
       text(row.title) | font(size) | color(named("contentSecondary")) | minScale(kLeastScale),
       spacer(kGap),
       text(row.interval) | font(size, platform::FontWeight::medium) | monospacedDigits() |
           minScale(kLeastScale)},
      kGap);
}

Element SunInfoViewSmall(const SunLightWidgetData& sunData) {
  const SunContent content = sunContent(sunData, WidgetFamily::systemSmall);
  const auto form = [&](double halo) {
    return vstack({PostalAddressView(sunData.locationData) | fillWidth(), spacer(),
                   LightNow(content, halo) | fillWidth(Alignment::center), spacer(),
                   NextLight(content) | fillWidth(), RiseSet(sunData)},
                  kGap, Alignment::start);
  };
  return firstThatFits(Axis::vertical, {form(1.55), form(1.2), form(1.0)});
}

Element SunInfoViewMedium(const SunLightWidgetData& sunData, WidgetFamily family) {
  constexpr double kIconColumn = 100.0;
  const SunContent content = sunContent(sunData, family);
  Elements lines{PostalAddressView(sunData.locationData) | fillWidth(), spacer()};
  // Three rows are a table, two may speak up.
  const double size = family == WidgetFamily::systemLarge ? kBody : kTitle;
  for (const LightTypeRow& row : content.rows) lines.push_back(LightTypeView(row, size));
  lines.insert(lines.end(),
               {spacer(), divider(), NextLight(content) | fillWidth(), RiseSet(sunData)});
  return hstack({LightNow(content) | frameWidth(kIconColumn) | fillHeight(Alignment::center),
                 vstack(std::move(lines), 1.5 * kGap, Alignment::start) | fillWidth()},
                kContentInset);
}

Element SunInfoViewLarge(const SunLightWidgetData& sunData, const MoonWidgetData& moonData,
                         const GalacticCenterWidgetData& gcData, const Environment& environment) {
  return vstack({panel(SunInfoViewMedium(sunData, WidgetFamily::systemLarge), "backgroundPrimary",
                       environment) |
                     link(kSunLink),
                 panel(MoonInfoViewMedium(moonData, gcData, environment), "backgroundSecondary",
                       environment) |
                     link(kMoonLink)},
                kPanelMargin);
}

Element SunInfoView(const SunLightWidgetData& sunData, const MoonWidgetData* moonData,
                    const GalacticCenterWidgetData* gcData, const Environment& environment) {
  switch (environment.family) {
    case WidgetFamily::systemSmall:
      return panel(SunInfoViewSmall(sunData), "backgroundPrimary", environment);
    case WidgetFamily::systemMedium:
      return panel(SunInfoViewMedium(sunData, WidgetFamily::systemMedium), "backgroundPrimary",
                   environment);
    case WidgetFamily::systemLarge:
      break;
  }
  LUMENQUEST_ASSERT(moonData != nullptr && gcData != nullptr);
  return SunInfoViewLarge(sunData, *moonData, *gcData, environment);
}

Element SunInternalWidgetView(const SunLightWidgetData& data, const MoonWidgetData* moonData,
                              const GalacticCenterWidgetData* gcData,
                              const Environment& environment) {
  return chosenView(data.locationData, environment,
                    [&] { return SunInfoView(data, moonData, gcData, environment); }) |
         link(kSunLink);
}

Element SunWidgetViewForiOS18AndAbove(const SunLightWidgetData& data,
                                      const MoonWidgetData* moonData,
                                      const GalacticCenterWidgetData* gcData,
                                      const Environment& environment) {
  return SunInternalWidgetView(data, moonData, gcData, environment);
}

Element SunLightWidgetView(const SunLightWidgetData& data, const MoonWidgetData* moonData,
                           const GalacticCenterWidgetData* gcData, const Environment& environment) {
  if (environment.system >= kSystemWithRenderingModes) {
    return SunWidgetViewForiOS18AndAbove(data, moonData, gcData, environment);
  }
  Environment untinted = environment;
  untinted.renderingMode = WidgetRenderingMode::fullColor;
  return SunInternalWidgetView(data, moonData, gcData, untinted);
}

Element SunLightWidgetEntryView(const SunTimelineEntry& entry, const Environment& environment) {
  return SunLightWidgetView(entry.data, entry.moonData ? &*entry.moonData : nullptr,
                            entry.gcData ? &*entry.gcData : nullptr, environment);
}

}  // namespace lumenquest::widgets
