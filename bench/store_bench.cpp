// Time of the stores' operations. Absolute times: a commit waits for the disk, whatever the
// processor.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "adapters/sqlite_user_defaults.h"

namespace {

using namespace lumenquest;

/// A folder that goes with the benchmark.
class Folder {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "lumenquest-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  std::string operator/(const char* name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

void ReadSetting(benchmark::State& state) {
  const Folder folder;
  adapters::SqliteUserDefaults settings(folder / "settings.sqlite");
  settings.setDouble(46.36, platform::kUserDefaultsTodayExtensionLastLatitude);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        settings.doubleForKey(platform::kUserDefaultsTodayExtensionLastLatitude));
  }
}

void WriteSetting(benchmark::State& state) {
  const Folder folder;
  adapters::SqliteUserDefaults settings(folder / "settings.sqlite");
  double latitude = 0.0;
  for (auto _ : state) {
    settings.setDouble(latitude += 0.001, platform::kUserDefaultsTodayExtensionLastLatitude);
  }
  if (!settings.synchronize()) state.SkipWithError("a write failed");
}

BENCHMARK(ReadSetting)->Name("settings_read")->Unit(benchmark::kMicrosecond);
BENCHMARK(WriteSetting)->Name("settings_write")->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
