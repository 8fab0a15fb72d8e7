#include "app/widget_picture.h"

#include <stdexcept>

#include "adapters/cairo_canvas.h"
#include "adapters/files.h"
#include "adapters/printable_text.h"
#include "adapters/svg_canvas.h"
#include "platform/localized_strings.h"
#include "platform/services.h"
#include "widgets/view/layout.h"
#include "widgets/view/style.h"

namespace lumenquest::app {

namespace view = widgets::view;

void drawWidget(const view::Element& view, platform::CGSize size,
                const view::Environment& environment, platform::Canvas& canvas) {
  const platform::CGRect whole{0.0, 0.0, size.width, size.height};
  canvas.save();
  canvas.clip(platform::UIBezierPath::roundedRect(whole, view::kWidgetCornerRadius));
  if (environment.isTinted()) {
    constexpr platform::UIColor kPlate{0.13, 0.14, 0.17, 1.0};
    canvas.fill(platform::UIBezierPath::rect(whole), kPlate);
  }
  platform::Services& services = platform::Services::current();
  view::draw(view, size, environment, services.textMeasurer(), services.assets(), canvas);
  canvas.restore();
}

std::string pictureOf(const view::Element& view, const view::Environment& environment,
                      PictureFormat format, const PictureOptions& options) {
  if (format == PictureFormat::png) {
    adapters::CairoCanvas canvas(options.size, options.scale);
    drawWidget(view, options.size, environment, canvas);
    return canvas.pngBytes();
  }
  adapters::SvgCanvas canvas(options.size, options.idPrefix);
  drawWidget(view, options.size, environment, canvas);
  return canvas.document(options.title, view::descriptionOf(view));
}

void writePicture(const std::string& file, const std::string& contents) {
  if (const auto error = adapters::writeFileWhole(file, contents)) {
    throw std::runtime_error(platform::stringWithFormat(
        appText("error_file_write"), {adapters::printableText(file, 200), *error}));
  }
}

platform::ColorScheme parseScheme(const OptionText& text) {
  if (!text || *text == "dark") return platform::ColorScheme::dark;
  if (*text != "light") throwBadOption("--scheme", *text, "expect_scheme");
  return platform::ColorScheme::light;
}

double parseScale(const OptionText& text) {
  if (!text) return 2.0;
  const auto scale = parseNumber(*text);
  if (!scale || !(*scale >= 1.0 && *scale <= 4.0)) throwBadOption("--scale", *text, "expect_scale");
  return *scale;
}

OptionSpec scaleOption(OptionText& value) {
  return {"--scale", "1..4", "help_scale", "expect_scale", &value};
}

void makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error) return;
  throw std::runtime_error(
      platform::stringWithFormat(appText("error_file_write"),
                                 {adapters::printableText(folder.string(), 200), error.message()}));
}

}  // namespace lumenquest::app
