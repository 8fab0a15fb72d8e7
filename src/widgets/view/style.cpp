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

Element pictureAndTable(const Element& roomyPicture, const Element& picture, const Element& table) {
  const auto columns = [&](const Element& left, double width, double gap) {
    return hstack({left | frameWidth(width) | fillHeight(Alignment::center), table | fillWidth()},
                  gap);
  };
  return fromWidth(kRoomyWidth, columns(roomyPicture, 100.0, kContentInset),
                   columns(picture, 88.0, kGap));
}

namespace {

platform::UIColor Shade(const platform::UIColor& color, const platform::UIColor& accent) {
  // Luma of sRGB components: as bright as the eye takes them. Source: ITU-R BT.709.
  const double luma = 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
  return {luma * accent.red, luma * accent.green, luma * accent.blue, color.alpha * accent.alpha};
}

void Shade(platform::Paint& paint, const platform::UIColor& accent) {
  if (auto* const color = std::get_if<platform::UIColor>(&paint)) *color = Shade(*color, accent);
  if (auto* const gradient = std::get_if<platform::Gradient>(&paint)) {
    for (platform::GradientStop& stop : gradient->stops) stop.color = Shade(stop.color, accent);
  }
}

}  // namespace

platform::UIImage accentedStyle(const platform::UIImage& picture, const platform::UIColor& accent) {
  platform::UIImage shaded = picture;
  for (platform::PictureShape& shape : shaded.shapes) {
    if (shape.fill) Shade(*shape.fill, accent);
    if (shape.strokePaint) Shade(*shape.strokePaint, accent);
    if (!shape.embedded) continue;
    shape.embedded->image =
        std::make_shared<const platform::UIImage>(accentedStyle(*shape.embedded->image, accent));
    shape.embedded->color = Shade(shape.embedded->color, accent);
  }
  return shaded;
}

Element caption(std::string words) {
  return text(std::move(words)) | font(kCaption) | color(named("contentTertiary")) |
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
