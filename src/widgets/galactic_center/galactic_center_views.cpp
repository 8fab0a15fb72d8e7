#include "widgets/galactic_center/galactic_center_views.h"

#include "platform/localized_strings.h"
#include "widgets/location/location_views.h"
#include "widgets/text.h"
#include "widgets/view/style.h"

namespace lumenquest::widgets {

using namespace view;
using platform::kTableCommon;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::stringWithFormat;

Element GCRiseSetTimeView(const GCRiseSetTime& end, WidgetFamily family, bool hasBand,
                          double captionSize) {
  constexpr double kSmallBand = 18.0;
  constexpr double kLargeBand = 30.0;
  const double azimuthColumn = captionSize < kCaption ? 44.0 : 52.0;
  const bool isSmall = family == WidgetFamily::systemSmall;
  const Element band = image("galacticCenterIcon", isSmall ? kLargeBand : kSmallBand) |
                       rotated(end.bandTilt) | color(named("accent")) | accented();
  const Element time = text(end.time) | monospacedDigits() | minScale(kLeastScale) |
                       font(isSmall ? kHeadline : kBody, platform::FontWeight::semibold);
  const Element azimuth = caption(end.azimuth) | font(captionSize) | monospacedDigits();
  const Element title = caption(end.title) | font(captionSize);
  Elements parts;
  std::string spoken = spokenTime(end.time);
  if (!end.azimuth.empty()) {
    spoken =
        stringWithFormat(localizedString("spoken_azimuth", kTableEphemeris), {spoken, end.azimuth});
  }
  spoken = spokenLine(
      localizedString(end.isBegin ? "gc_visible_from" : "gc_visible_to", kTableEphemeris), spoken);
  if (hasBand) parts.push_back(band);
  if (isSmall) {
    parts.push_back(vstack({hstack({title, spacer(kGap), azimuth}), time}, 0.0, Alignment::start) |
                    fillWidth());
    return hstack(std::move(parts), 2.0 * kGap) | label(spoken);
  }
  parts.insert(parts.end(),
               {title, spacer(kGap), time,
                hasBand ? azimuth | frameWidth(azimuthColumn, Alignment::end) : azimuth});
  return hstack(std::move(parts), kGap) | label(spoken);
}

Element GalacticCenterNotVisibleUntilView(const GCVisibilityContent& content) {
  constexpr double kIcon = 20.0;
  Elements lines;
  std::string spoken;
  for (const std::string& words : {content.alwaysInvisible, content.notVisibleUntil}) {
    if (words.empty()) continue;
    lines.push_back(text(words) | font(kBody) | lineLimit(3) | minScale(kLeastScale));
    spoken += (spoken.empty() ? "" : ". ") + words;
  }
  return hstack({image("gcNotVisibleUntilIcon", kIcon) | color(named("contentTertiary")),
                 vstack(std::move(lines), 0.0, Alignment::start)},
                2.0 * kGap) |
         label(spokenLine(localizedString("appwidget_milky_way", kTableCommon), spoken));
}

Element MoonlessHoursView(const std::string& title, const std::string& hours) {
  return hstack({image("moonlessHoursIcon", kSmallIcon) | color(named("contentTertiary")),
                 caption(title), spacer(kGap),
                 body(hours, platform::FontWeight::medium) | monospacedDigits()},
                kGap) |
         label(spokenLine(title, hours));
}

Element GCVisibilityView(const GCVisibilityContent& content, WidgetFamily family) {
  const double gap = family == WidgetFamily::systemSmall ? 1.5 * kGap : kGap;
  Elements lines;
  if (!content.window.empty()) {
    constexpr double kDenseCaption = 9.0;
    const auto window = [&](bool hasBand, double captionSize) {
      Elements ends;
      for (const GCRiseSetTime& end : content.window) {
        ends.push_back(GCRiseSetTimeView(end, family, hasBand, captionSize));
      }
      return vstack(std::move(ends), gap, Alignment::start);
    };
    lines.push_back(
        firstThatFits(Axis::horizontal, {window(true, kCaption), window(true, kDenseCaption),
                                         window(false, kCaption), window(false, kDenseCaption)}));
  }
  if (!content.notVisibleUntil.empty() || !content.alwaysInvisible.empty()) {
    lines.push_back(GalacticCenterNotVisibleUntilView(content));
  }
  if (!content.moonlessHours.empty()) {
    constexpr double kTopInset = 2.0;
    lines.push_back(MoonlessHoursView(content.moonlessHoursTitle, content.moonlessHours) |
                    padding({kTopInset, 0.0, 0.0, 0.0}));
  }
  return vstack(std::move(lines), gap, Alignment::start);
}

Element GalacticCenterWidgetEntryView(const GalacticCenterTimelineEntry& entry,
                                      const Environment& environment) {
  return chosenView(entry.data.locationData, environment, [&] {
    const GCVisibilityContent content = gcVisibilityContent(entry.data, environment.family);
    return panel(
        vstack({PostalAddressView(entry.data.locationData) | fillWidth(), spacer(),
                caption(localizedString("appwidget_milky_way", kTableCommon)) | fillWidth(),
                GCVisibilityView(content, environment.family), spacer()},
               kGap, Alignment::start),
        "backgroundPrimary", environment);
  });
}

}  // namespace lumenquest::widgets
