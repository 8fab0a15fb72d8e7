// How long a widget's picture takes, once fonts are loaded.

#include <benchmark/benchmark.h>

#include "adapters/cairo_canvas.h"
#include "adapters/svg_canvas.h"
#include "drawing_scene.h"

namespace lumenquest::bench {
namespace {

void DrawWidgetInPixels(benchmark::State& state) {
  int hour = 0;
  for (auto _ : state) {
    adapters::CairoCanvas canvas(kWidgetSize, static_cast<double>(state.range(0)));
    drawWidget(canvas, ++hour);
    benchmark::DoNotOptimize(canvas);
  }
}
BENCHMARK(DrawWidgetInPixels)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

void WriteWidgetAsPng(benchmark::State& state) {
  int hour = 0;
  for (auto _ : state) {
    adapters::CairoCanvas canvas(kWidgetSize, static_cast<double>(state.range(0)));
    drawWidget(canvas, ++hour);
    benchmark::DoNotOptimize(canvas.pngBytes());
  }
}
BENCHMARK(WriteWidgetAsPng)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

void WriteWidgetAsSvg(benchmark::State& state) {
  int hour = 0;
  for (auto _ : state) {
    adapters::SvgCanvas canvas(kWidgetSize, "w");
    drawWidget(canvas, ++hour);
    benchmark::DoNotOptimize(canvas.document("Sun", ""));
  }
}
BENCHMARK(WriteWidgetAsSvg)->Unit(benchmark::kMillisecond);

void MeasureText(benchmark::State& state) {
  adapters::PangoTextMeasurer measurer;
  for (auto _ : state) {
    benchmark::DoNotOptimize(measurer.measure("Golden hour ends 18:32", {}, 90));
  }
}
BENCHMARK(MeasureText)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace lumenquest::bench

BENCHMARK_MAIN();
