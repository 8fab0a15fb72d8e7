#include "widgets/location/location_views.h"

#include "platform/localized_strings.h"
#include "widgets/text.h"
#include "widgets/view/style.h"

namespace lumenquest::widgets {

using namespace view;
using platform::localizedString;

namespace {

/// An icon with a sentence under it, in the middle.
Element Message(const Element& icon, const char* key, double size) {
  constexpr int kLines = 6;
  return vstack({icon, text(localizedString(key, platform::kTableCommon)) | font(size) |
                           lineLimit(kLines) | align(platform::TextAlignment::center) |
                           minScale(kLeastScale)},
                2.0 * kGap) |
         padding(insets(kContentInset));
}

}  // namespace

Element LocationServicesDisabledView() {
  constexpr double kIcon = 28.0;
  return Message(image("disabledLocationIcon", kIcon) | color(named("contentTertiary")),
                 "location_denied_error_message_ios", kBody);
}

Element LocationTimeOutView() {
  return Message(image("location.fill", kCaption) | color(named("contentTertiary")),
                 "location_timeout", kBody);
}

Element PostalAddressView(const LocationWidgetData& data) {
  const std::string address = data.address.value_or("");
  if (address.empty()) return nothing();
  constexpr double kArrow = 8.0;
  Elements line;
  if (data.isCurrentLocation) {
    line.push_back(image("location.fill", kArrow) | color(named("contentTertiary")) | mirrored());
  }
  line.push_back(text(address) | font(kBody, platform::FontWeight::semibold) |
                 color(named("contentTertiary")) | minScale(kLeastScale) | given());
  const Element title = hstack(std::move(line), kGap);
  if (!data.isCurrentLocation) return title;
  return title | label(spokenLine(localizedString("my_location", platform::kTableCommon),
                                  isolated(address)));
}

Element BodyRiseSetTimeView(const BodyRiseSetTime& time, double size, const BodyNames& names) {
  const std::string event =
      localizedString(time.isRise ? names.rise : names.set, platform::kTableEphemeris);
  return hstack(
             {image(time.isRise ? "bodyRise" : "bodySet", size) | color(named("contentTertiary")),
              text(time.text) | font(size) | monospacedDigits() | minScale(kLeastScale)},
             kGap) |
         label(spokenLine(event, spokenTime(time.text)));
}

Element RiseSetView(double mjdRise, double mjdSet, double mjdTomorrowAt0,
                    const LocationWidgetData& data, const BodyNames& names) {
  const RiseSetContent content = riseSetContent(mjdRise, mjdSet, mjdTomorrowAt0, data);
  if (!content.sentence.empty()) {
    return caption(content.sentence) |
           label(spokenLine(localizedString(names.body, platform::kTableCommon), content.sentence));
  }
  if (content.times.empty()) return nothing();
  const auto time = [&](std::size_t i, double size) {
    return BodyRiseSetTimeView(content.times[i], size, names);
  };
  const auto line = [&](double size, double gap) {
    return hstack({time(0, size), spacer(gap), time(1, size)});
  };
  return firstThatFits(Axis::horizontal,
                       {line(kBody, 2.0 * kGap), line(kCaption, kGap), line(kDense, kGap),
                        vstack({time(0, kBody), time(1, kBody)}, 0.0, Alignment::start)});
}

Element chosenView(const LocationWidgetData& data, const Environment& environment,
                   const std::function<Element()>& information) {
  switch (contentFor(data)) {
    case WidgetContent::locationDenied:
      return widgetBackground(LocationServicesDisabledView() | fillWidth(Alignment::center) |
                                  fillHeight(Alignment::center),
                              environment);
    case WidgetContent::locationTimeOut:
      return widgetBackground(
          LocationTimeOutView() | fillWidth(Alignment::center) | fillHeight(Alignment::center),
          environment);
    case WidgetContent::information:
      break;
  }
  return widgetBackground(information(), environment);
}

}  // namespace lumenquest::widgets
