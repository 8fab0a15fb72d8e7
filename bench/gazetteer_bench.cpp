// Speed of the gazetteer: places by name and by coordinate. Exits with 1 when a call takes longer
// than a person who types notices.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "adapters/gazetteer.h"

namespace {

using lumenquest::adapters::Gazetteer;

/// Milliseconds that the median call of any kind may take.
constexpr double kLimit = 50.0;

const std::string kFile = LUMENQUEST_BENCH_RESOURCES "/gazetteer.sqlite";
double slowestMedian = 0.0;

/// The times of one benchmark's calls. Their median, as single calls wait for whatever else the
/// machine does.
class Laps {
 public:
  ~Laps() {
    // A few calls are the library's trial run, with the file still on the disk.
    if (times_.size() < 5) return;
    const auto middle = times_.begin() + static_cast<std::ptrdiff_t>(times_.size() / 2);
    std::nth_element(times_.begin(), middle, times_.end());
    slowestMedian = std::max(slowestMedian, *middle);
  }
  Laps() = default;
  Laps(const Laps&) = delete;
  Laps& operator=(const Laps&) = delete;

  template <typename Call>
  void operator()(const Call& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    times_.push_back(time.count());
  }

 private:
  std::vector<double> times_;
};

void Open(benchmark::State& state) {
  Laps laps;
  for (auto _ : state) laps([] { Gazetteer gazetteer(kFile, "en_US"); });
}
BENCHMARK(Open)->Unit(benchmark::kMicrosecond);

/// The first search also learns the countries' names.
void FirstForward(benchmark::State& state) {
  Laps laps;
  for (auto _ : state) {
    laps([] {
      Gazetteer gazetteer(kFile, "de_AT");
      benchmark::DoNotOptimize(gazetteer.geocodeAddressString("chamonix frankreich"));
    });
  }
}
BENCHMARK(FirstForward)->Unit(benchmark::kMicrosecond);

/// Names, parts of names, single letters, words that are everywhere, names with areas, long texts.
const std::array<std::string, 14> kSearches{"s",
                                            "sa",
                                            "san jose",
                                            "são paulo",
                                            "Chamonix, France",
                                            "moab utah us",
                                            "münchen",
                                            "東京",
                                            "la la la la",
                                            "saint de la san el al",
                                            "a b c d e f g h i j k l m n o",
                                            "san san fr",
                                            "s us",
                                            std::string(10240, 'a')};

void Forward(benchmark::State& state) {
  Laps laps;
  Gazetteer gazetteer(kFile, "en_US");
  const std::string& text = kSearches[static_cast<std::size_t>(state.range(0))];
  state.SetLabel(text.substr(0, 30));
  for (auto _ : state) {
    laps([&] { benchmark::DoNotOptimize(gazetteer.geocodeAddressString(text)); });
  }
}
BENCHMARK(Forward)->DenseRange(0, kSearches.size() - 1)->Unit(benchmark::kMicrosecond);

struct Spot {
  const char* name;
  lumenquest::platform::CLLocationCoordinate2D coordinate;
};
constexpr std::array<Spot, 4> kSpots{{{"Moab", {38.5733, -109.5498}},
                                      {"Paris", {48.8566, 2.3522}},
                                      {"North Pole", {90.0, 0.0}},
                                      {"mid-ocean", {-48.88, -123.39}}}};

void Reverse(benchmark::State& state) {
  Laps laps;
  Gazetteer gazetteer(kFile, "en_US");
  const Spot& spot = kSpots[static_cast<std::size_t>(state.range(0))];
  state.SetLabel(spot.name);
  for (auto _ : state) {
    laps([&] { benchmark::DoNotOptimize(gazetteer.reverseGeocodeLocation({spot.coordinate})); });
  }
}
BENCHMARK(Reverse)->DenseRange(0, kSpots.size() - 1)->Unit(benchmark::kMicrosecond);

void TimeZoneAt(benchmark::State& state) {
  Laps laps;
  Gazetteer gazetteer(kFile, "en_US");
  const Spot& spot = kSpots[static_cast<std::size_t>(state.range(0))];
  state.SetLabel(spot.name);
  for (auto _ : state) {
    laps([&] { benchmark::DoNotOptimize(gazetteer.timeZoneAt(spot.coordinate)); });
  }
}
BENCHMARK(TimeZoneAt)->DenseRange(0, kSpots.size() - 1)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  std::printf("slowest median: %.1f ms (limit %.0f ms)\n", slowestMedian, kLimit);
  return slowestMedian > kLimit ? 1 : 0;
}
