#include "widgets/location/location_views.h"

#include "platform/localized_strings.h"
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
                 color(named("contentTertiary")) | minScale(kLeastScale));
  return hstack(std::move(line), kGap);
}

Element BodyRiseSetTimeView(const BodyRiseSetTime& time, double size) {
  return hstack(
      {image(time.isRise ? "bodyRise" : "bodySet", size) | color(named("contentTertiary")),
       text(time.text) | font(size) | monospacedDigits() | minScale(kLeastScale)},
      kGap);
}

Element RiseSetView(double mjdRise, double mjdSet, double mjdTomorrowAt0,
                    const LocationWidgetData& data) {
  const RiseSetContent content = riseSetContent(mjdRise, mjdSet, mjdTomorrowAt0, data);
  if (!content.sentence.empty()) return caption(content.sentence);
  if (content.times.empty()) return nothing();
  const auto line = [&](double size, double gap) {
    return hstack({BodyRiseSetTimeView(content.times[0], size), spacer(gap),
                   BodyRiseSetTimeView(content.times[1], size)});
  };
  constexpr double kDense = 9.0;
  return firstThatFits(Axis::horizontal,
                       {line(kBody, 2.0 * kGap), line(kCaption, kGap), line(kDense, kGap),
                        vstack({BodyRiseSetTimeView(content.times[0], kBody),
                                BodyRiseSetTimeView(content.times[1], kBody)},
                               0.0, Alignment::start)});
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
