#include "widgets/sun/sun_views.h"

#include <utility>
#include <vector>

#include "platform/assertion.h"
#include "platform/localized_strings.h"
#include "widgets/deep_links.h"
#include "widgets/location/location_views.h"
#include "widgets/moon/moon_views.h"
#include "widgets/palette.h"
#include "widgets/text.h"
#include "widgets/view/style.h"

namespace lumenquest::widgets {

using namespace view;

namespace {

/// Between lines where height is short.
constexpr double kDenseGap = 1.0;

/// The icon on a faint disc of its own light, and the light's name under it.
Element LightNow(const SunContent& content, double haloSize) {
  constexpr double kHaloOpacity = 0.14;
  const double halo = content.iconSize * haloSize;
  // The faint Sun of the night would be lost on a light panel.
  constexpr platform::UIColor kNightSky{0.11, 0.17, 0.33, 0.25};
  const platform::UIColor glow =
      content.sunColor == palette::kNight ? kNightSky : content.sunColor.withAlpha(kHaloOpacity);
  return vstack({zstack({shape(glow, halo) | accented() | frame(halo, halo),
                         SunIconView(content.sunColor, content.iconSize)}),
                 text(content.lightType) | font(kCaption) | minScale(0.9) | lineLimit(2) |
                     align(platform::TextAlignment::center)},
                kGap);
}

Element NextLight(const SunContent& content) {
  if (content.nextLight.empty()) return nothing();
  const std::string spoken = platform::stringWithFormat(
      platform::localizedString("spoken_next_light", platform::kTableEphemeris),
      {spokenTime(content.nextLight)});
  const auto line = [&](double size, int lines) {
    return hstack({image("nextLightIcon", kSmallIcon) | color(named("contentTertiary")),
                   caption(content.nextLight) | font(size) | lineLimit(lines) | minScale(0.9) |
                       monospacedDigits()},
                  kGap) |
           label(spoken);
  };
  // The time stands last, and is what must not be left out.
  return firstThatFits(Axis::horizontal,
                       {line(kCaption, 1), line(0.9 * kCaption, 1), line(kCaption, 2)});
}

Element RiseSet(const SunLightWidgetData& data) {
  return RiseSetView(data.mjdRise, data.mjdSet, data.mjdTomorrowAt0, data.locationData, kSunNames);
}

/// The colours of light are the sky's: by day one hardly stands out from a light panel, in the
/// night from a dark one.
Modifier OnAnyGround() { return outlined(named("contentTertiary")); }

}  // namespace

Element SunIconView(const platform::UIColor& sunColor, double size) {
  return image("sunIcon", size) | color(sunColor) | accented() | OnAnyGround();
}

Element LightTypeIconView(const platform::UIColor& sunColor, double size) {
  return image("lightTypeIcon", size) | color(sunColor) | accented() | OnAnyGround();
}

Element LightTypeView(const LightTypeRow& row, double size, bool isOnTwoLines) {
  constexpr double kMarkInset = 2.0;
  const Element marker = LightTypeIconView(row.fillColor, size - kMarkInset);
  const Element title =
      text(row.title) | font(size) | color(named("contentTertiary")) | minScale(kLeastScale);
  const Element interval =
      text(row.interval) | font(size, platform::FontWeight::medium) | monospacedDigits();
  const std::string spoken =
      row.interval == kNoInterval
          ? platform::localizedString("event_no_rise_set", platform::kTableEphemeris)
          : row.interval;
  const Insets underTitle{0.0, size - kMarkInset + kGap, 0.0, 0.0};
  const Element line = isOnTwoLines
                           ? vstack({hstack({marker, title}, kGap), interval | padding(underTitle)},
                                    0.0, Alignment::start)
                           : hstack({marker, title, spacer(kGap), interval}, kGap);
  return line | label(spokenLine(row.title, spoken));
}

Element SunInfoViewSmall(const SunLightWidgetData& sunData) {
  const SunContent content = sunContent(sunData, WidgetFamily::systemSmall);
  const auto form = [&](double halo, double gap, const Element& riseSet) {
    return vstack({PostalAddressView(sunData.locationData) | fillWidth(), spacer(),
                   LightNow(content, halo) | fillWidth(Alignment::center), spacer(),
                   NextLight(content) | fillWidth(), riseSet},
                  gap, Alignment::start);
  };
  const Element riseSet = RiseSet(sunData);
  // On the smallest phones the light comes first.
  return firstThatFits(Axis::vertical, {form(1.55, kGap, riseSet), form(1.2, kGap, riseSet),
                                        form(1.0, kGap, riseSet), form(1.0, kDenseGap, riseSet),
                                        form(1.0, kDenseGap, nothing())});
}

Element SunInfoViewMedium(const SunLightWidgetData& sunData, WidgetFamily family) {
  const SunContent content = sunContent(sunData, family);
  // Rows are a table: all in the same size, be one of them too long for the largest. Three rows
  // are much to read, two may speak up.
  const double largest = family == WidgetFamily::systemLarge ? kBody : kTitle;
  const auto rows = [&](double size, bool areOnTwoLines, double gap) {
    Elements elements;
    for (const LightTypeRow& row : content.rows) {
      elements.push_back(LightTypeView(row, size, areOnTwoLines));
    }
    return vstack(std::move(elements), gap, Alignment::start);
  };
  const Element place = PostalAddressView(sunData.locationData) | fillWidth();
  const Element nextLight = NextLight(content) | fillWidth();
  const Element riseSet = RiseSet(sunData);
  std::vector<std::pair<double, Element>> onOneLine;
  for (const double size : {largest, kBody, kCaption, kDense}) {
    if (onOneLine.empty() || size < onOneLine.back().first) {
      onOneLine.emplace_back(size, rows(size, false, 1.5 * kGap));
    }
  }
  // Two lines a row rather than letters below `leastSize`.
  const auto table = [&](double leastSize, double lineGap) {
    Elements forms;
    for (const auto& [size, form] : onOneLine) {
      if (size >= leastSize) forms.push_back(form);
    }
    forms.push_back(rows(leastSize, true, lineGap));
    return vstack({place, spacer(), firstThatFits(Axis::horizontal, std::move(forms)), spacer(),
                   divider(), nextLight, riseSet},
                  lineGap, Alignment::start);
  };
  // Smaller letters on one line before lines stand close.
  return pictureAndTable(
      LightNow(content, 1.55), LightNow(content, 1.2),
      firstThatFits(Axis::vertical, {table(kBody, 1.5 * kGap), table(kBody, kGap),
                                     table(kCaption, kGap), table(kBody, kDenseGap),
                                     table(kCaption, kDenseGap), table(kDense, kDenseGap)}));
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
