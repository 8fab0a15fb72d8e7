// The five widgets in a process that has drawn before, at three pixels a point: laid out and
// recorded, drawn, and written as PNG. Milliseconds for all five, and for the largest picture of
// the Moon.

#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "adapters/cairo_canvas.h"
#include "app/runtime.h"
#include "app/widget_picture.h"
#include "app/widget_request.h"
#include "platform/services.h"
#include "widgets/view/style.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::bench {
namespace {

namespace view = widgets::view;

constexpr double kScale = 3.0;

struct Widget {
  host::AnyEntry entry;
  view::Environment environment;
};

/// Each in its largest family, under a full Moon.
const std::vector<Widget>& Widgets() {
  static const std::vector<Widget> widgets = [] {
    app::installServices({});  // the texts that reading options needs
    app::WidgetOptions options;
    options.kind = "SunWidget";
    options.place.latitude = "46.3625";
    options.place.longitude = "14.0936";
    options.at = "2026-06-29T12:00:00Z";
    app::WidgetRequest request = app::prepareWidgetRequest(options, "memory");
    std::vector<Widget> all;
    for (const auto& widget : widgets::LumenquestWidgets::configurations()) {
      request.widget.kind = widget.kind;
      request.widget.family = widget.supportedFamilies.back();
      Widget one{app::askWidget(request).entry, {}};
      one.environment.family = request.widget.family;
      all.push_back(std::move(one));
    }
    return all;
  }();
  return widgets;
}

template <typename Use>
void DrawAll(benchmark::State& state, Use use) {
  const std::vector<Widget>& widgets = Widgets();
  for (auto _ : state) {
    for (const Widget& widget : widgets) {
      view::Environment environment = widget.environment;
      const view::Element element = host::viewOf(widget.entry, environment);
      const platform::CGSize size = view::sizeOf(environment.family);
      adapters::CairoCanvas canvas(size, kScale);
      app::drawWidget(element, size, environment, canvas);
      use(canvas);
    }
  }
}

void TakePixels(adapters::CairoCanvas& canvas) {
  canvas.forEachRow([](const unsigned char* row) { benchmark::DoNotOptimize(*row); });
}

void LayOutFiveWidgets(benchmark::State& state) {
  DrawAll(state, [](adapters::CairoCanvas& canvas) { benchmark::DoNotOptimize(canvas); });
}
BENCHMARK(LayOutFiveWidgets)->Unit(benchmark::kMillisecond);

void DrawFiveWidgets(benchmark::State& state) { DrawAll(state, TakePixels); }
BENCHMARK(DrawFiveWidgets)->Unit(benchmark::kMillisecond);

void WriteFiveWidgetsAsPng(benchmark::State& state) {
  DrawAll(state,
          [](adapters::CairoCanvas& canvas) { benchmark::DoNotOptimize(canvas.pngBytes()); });
}
BENCHMARK(WriteFiveWidgetsAsPng)->Unit(benchmark::kMillisecond);

/// The Moon as none before: at another angle, say, for the pixels of the last ones are kept.
void DrawMoon(benchmark::State& state) {
  constexpr double kSide = 76.0;
  Widgets();
  const auto moon = platform::Services::current().assets().imageNamed("moon");
  for (auto _ : state) {
    adapters::CairoCanvas canvas({kSide, kSide}, kScale);
    canvas.drawImage(*moon, {0.0, 0.0, kSide, kSide}, {});
    TakePixels(canvas);
  }
}
BENCHMARK(DrawMoon)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenquest::bench

BENCHMARK_MAIN();
