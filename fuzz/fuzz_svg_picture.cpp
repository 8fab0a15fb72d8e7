// A picture is refused with one line, or can be drawn: every number in it is one.

#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "adapters/cairo_canvas.h"
#include "adapters/svg_canvas.h"
#include "adapters/svg_pictures.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace lumenquest;
  const std::string text(reinterpret_cast<const char*>(data), size);
  // Most inputs are no XML: each is tried as a path, too.
  const std::string path =
      "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 9'><path stroke='#000' d='" + text +
      "'/></svg>";
  for (const std::string& document : {text, path}) {
    platform::UIImage image;
    try {
      image = adapters::readSvgPicture(document, "picture.svg");
    } catch (const std::runtime_error&) {
      continue;
    }
    for (const platform::PictureShape& shape : image.shapes) {
      for (const auto& segment : shape.path.segments()) {
        for (const platform::CGPoint& point : segment.points) {
          if (!std::isfinite(point.x) || !std::isfinite(point.y)) std::abort();
        }
      }
    }
    constexpr platform::CGRect kBox{0, 0, 8, 8};
    constexpr platform::UIColor kBlack{0, 0, 0, 1};
    adapters::SvgCanvas svg({8, 8}, "f");
    svg.drawImage(image, kBox, kBlack);
    // Cairo needs long for many long curves; what matters are its complaints.
    if (size > 512) continue;
    adapters::CairoCanvas pixels({8, 8}, 1);
    pixels.drawImage(image, kBox, kBlack);
    pixels.pngBytes();
  }
  return 0;
}
