#include "widgets/view/style.h"

namespace lumenquest::widgets::view {

Element panel(const Element& content, const char* colorName, const Environment& environment) {
  const Element inner = content | padding(insets(kContentInset)) | fillWidth() | fillHeight();
  return environment.isTinted() ? inner : inner | background(named(colorName), kPanelCornerRadius);
}

Element widgetBackground(const Element& content, const Environment& environment) {
  const Element inset = content | padding(insets(kPanelMargin)) | fillWidth() | fillHeight();
  return environment.isTinted() ? inset : inset | background(named("WidgetBackground"));
}

Element caption(std::string words) {
  return text(std::move(words)) | font(kCaption) | color(named("contentSecondary")) |
         minScale(kLeastScale);
}

Element body(std::string words, platform::FontWeight weight) {
  return text(std::move(words)) | font(kBody, weight) | minScale(kLeastScale);
}

Element divider() {
  return shape(named("borderPrimary")) | Modifier([](const Element& line) {
           return Element(Frame{{}, 0.5, true, false, Alignment::center, Alignment::center, line});
         });
}

}  // namespace lumenquest::widgets::view
