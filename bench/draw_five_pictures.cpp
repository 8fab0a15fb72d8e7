// Draws five widgets at scale 3, for the memory that this takes: cold_start runs it.

#include <cstdio>
#include <string>

#include "adapters/cairo_canvas.h"
#include "drawing_scene.h"

int main() {
  using namespace lumenquest;
  for (int hour = 0; hour < 5; ++hour) {
    adapters::CairoCanvas canvas(bench::kWidgetSize, 3);
    bench::drawWidget(canvas, hour);
    const std::string png = canvas.pngBytes();
    if (std::fwrite(png.data(), 1, png.size(), stdout) != png.size()) return 1;
  }
  return 0;
}
