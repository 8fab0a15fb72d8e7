// Speed of the engine and of the calculator, as multiples of one eraMoon98 call in the same run,
// with libnova beside it where it offers the same. Exits with 1 when a figure is above its limit.

#include <benchmark/benchmark.h>
#include <erfa.h>
#include <libnova/lunar.h>
#include <libnova/rise_set.h>
#include <libnova/solar.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "adapters/clocks.h"
#include "adapters/rfc3339.h"
#include "app/runtime.h"
#include "ephemeris/pt_milky_way.h"
#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_moon_apogee_perigee.h"
#include "ephemeris/pt_phases_of_the_moon.h"
#include "ephemeris/pt_sun.h"
#include "events/milky_way.h"
#include "events/widget_astrolib.h"
#include "platform/calendar_zone.h"

namespace {

using namespace ephemeris;
using namespace lumenquest;

constexpr double kMjd = 61366.0;  // 2026-11-22
constexpr double kDeltaT = 0.0009;
constexpr const char* kUnit = "erfa_moon98";

/// A place of middle latitude whose zone has summer time.
PtPosition Place() {
  PtPosition position;
  position.latitude = 45.9237;
  position.longitude = 6.8694;
  position.CalcObserverCoords();
  return position;
}

ln_lnlat_posn NovaPlace() { return {6.8694, 45.9237}; }

/// Instants that no memory knows.
double NextInstant() {
  static double offset = 0.0;
  offset += 0.37;
  if (offset > 20000.0) offset = 0.0;
  return kMjd - 10000.0 + offset;
}

void InstallAt(const char* instant) {
  app::installServices(
      {"en", std::make_shared<adapters::FixedClock>(*adapters::parseRfc3339(instant))});
}

void Moon98(benchmark::State& state) {
  double pv[2][3];
  for (auto _ : state) {
    eraMoon98(2400000.5, NextInstant(), pv);
    benchmark::DoNotOptimize(pv);
  }
}

template <typename Body>
void ApparentPosition(benchmark::State& state) {
  Body body(Place());
  for (auto _ : state) {
    body.CalculateEclipticEquatorialAndHorizontalPositions(NextInstant(), kDeltaT, true);
    benchmark::DoNotOptimize(body.horizontalPosition());
  }
}

void NovaSun(benchmark::State& state) {
  ln_equ_posn position;
  for (auto _ : state) {
    ln_get_solar_equ_coords(NextInstant() + 2400000.5, &position);
    benchmark::DoNotOptimize(position);
  }
}

void NovaMoon(benchmark::State& state) {
  ln_equ_posn position;
  for (auto _ : state) {
    ln_get_lunar_equ_coords(NextInstant() + 2400000.5, &position);
    benchmark::DoNotOptimize(position);
  }
}

void SunriseSunset(benchmark::State& state) {
  for (auto _ : state) {
    PtSun sun(Place());
    double rise = 0.0, set = 0.0;
    sun.FindEvents(SearchEvent::RiseSet, NextInstant(), kDeltaT, &rise, &set);
    benchmark::DoNotOptimize(rise);
    benchmark::DoNotOptimize(set);
  }
}

void NovaSunriseSunset(benchmark::State& state) {
  ln_lnlat_posn place = NovaPlace();
  ln_rst_time times;
  for (auto _ : state) {
    ln_get_solar_rst(NextInstant() + 2400000.5, &place, &times);
    benchmark::DoNotOptimize(times);
  }
}

void FourPhases(benchmark::State& state) {
  PtDateTime date;
  for (auto _ : state) {
    date.FromModifiedJulianDay(NextInstant());
    PtMoonPhases phases;
    PtPhasesOfTheMoon().CalculatePhasesForMonth(date, &phases);
    benchmark::DoNotOptimize(phases);
  }
}

void YearOfApsides(benchmark::State& state) {
  int year = 2000;
  for (auto _ : state) {
    std::vector<std::unique_ptr<PtApogeePerigee>> events;
    PtMoonApogeePerigee().CalculateValuesForYear(2000 + year++ % 50, &events);
    benchmark::DoNotOptimize(events);
  }
}

void CalculateData(benchmark::State& state) {
  InstallAt("2026-11-22T20:30:00Z");
  events::WidgetAstrolib astrolib;
  astrolib.setCurrentLocation(platform::CLLocation{{45.9237, 6.8694}});
  astrolib.setCurrentTimeZone(platform::NSTimeZone{"Europe/Paris"});
  for (auto _ : state) astrolib.calculateData(15);
  state.counters["series"] = static_cast<double>(astrolib.positionsComputed());
}

/// North of 56.3° whole half years have no visible night, so that the search goes to its end.
void NextVisibleDate(benchmark::State& state) {
  InstallAt("2026-04-20T12:00:00Z");
  const platform::CalendarZone zone(platform::NSTimeZone{"Europe/Copenhagen"});
  PtPosition place;
  place.latitude = 57.5;
  place.longitude = 10.0;
  place.CalcObserverCoords();
  for (auto _ : state) {
    PtSun sun(place);
    PtMilkyWay milkyWay(place);
    const auto date =
        events::MilkyWay().nextDateGalacticCenterIsVisible(milkyWay, sun, platform::NSDate::date());
    if (date) state.SkipWithError("the search ended before the 180th day");
    state.counters["series"] = static_cast<double>(sun.positionsComputed());
  }
}

BENCHMARK(Moon98)->Name(kUnit);
BENCHMARK(ApparentPosition<PtSun>)->Name("sun_position");
BENCHMARK(NovaSun)->Name("libnova/sun_position");
BENCHMARK(ApparentPosition<PtMoon>)->Name("moon_position");
BENCHMARK(NovaMoon)->Name("libnova/moon_position");
BENCHMARK(SunriseSunset)->Name("sunrise_sunset");
BENCHMARK(NovaSunriseSunset)->Name("libnova/sunrise_sunset");
BENCHMARK(FourPhases)->Name("four_phases");
BENCHMARK(YearOfApsides)->Name("year_of_apsides");
BENCHMARK(CalculateData)->Name("calculate_data");
BENCHMARK(NextVisibleDate)->Name("next_visible_date");

struct Figure {
  const char* name;
  const char* what;
  double limit;
};

constexpr Figure kFigures[] = {
    {"sun_position", "one apparent Sun position", 0.3},
    {"moon_position", "one apparent Moon position", 0.45},
    {"sunrise_sunset", "a day's sunrise and sunset", 8.0},
    {"four_phases", "the four principal phases around a date", 6.0},
    {"year_of_apsides", "a year's apogees and perigees", 25.0},
    {"calculate_data", "all values of a place's day", 90.0},
    {"next_visible_date", "180 days searched for the galactic centre", 4000.0},
};

/// Keeps the median of each benchmark's repetitions.
class MedianReporter final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(),
                     run.error_message.c_str());
        std::exit(1);
      }
      if (run.aggregate_name != "median") continue;
      seconds_[run.run_name.function_name] = run.GetAdjustedCPUTime() * 1e-9;
      const auto series = run.counters.find("series");
      if (series != run.counters.end()) series_[run.run_name.function_name] = series->second;
    }
  }

  /// False when a figure is above its limit.
  bool Print() const {
    const double unit = seconds_.at(kUnit);
    std::printf("unit: one eraMoon98, %.2f us here\n\n", unit * 1e6);
    std::printf("%-44s %9s %9s %9s %8s\n", "", "units", "at most", "libnova", "series");
    bool held = true;
    for (const Figure& figure : kFigures) {
      const double units = seconds_.at(figure.name) / unit;
      held = held && units <= figure.limit;
      std::printf("%-44s %9.3f %9g %9s %8s %s\n", figure.what, units, figure.limit,
                  Text(seconds_, std::string("libnova/") + figure.name, unit, "%.3f").c_str(),
                  Text(series_, figure.name, 1.0, "%.0f").c_str(),
                  units <= figure.limit ? "" : "OVER");
    }
    return held;
  }

 private:
  static std::string Text(const std::map<std::string, double>& values, const std::string& name,
                          double unit, const char* format) {
    const auto found = values.find(name);
    if (found == values.end()) return "";
    char text[32];
    std::snprintf(text, sizeof text, format, found->second / unit);
    return text;
  }

  std::map<std::string, double> seconds_;
  std::map<std::string, double> series_;
};

std::string MachineName() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

}  // namespace

int main(int argc, char** argv) {
  // Repetitions of all benchmarks mixed, so that a slow moment of the machine hits all alike.
  std::vector<char*> arguments(argv, argv + argc);
  static char options[][64] = {"--benchmark_repetitions=11",
                               "--benchmark_enable_random_interleaving=true",
                               "--benchmark_min_time=0.05"};
  for (char* option : options) arguments.insert(arguments.begin() + 1, option);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

  std::printf("%s, %s\n", MachineName().c_str(), __VERSION__);
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return reporter.Print() ? 0 : 1;
}
