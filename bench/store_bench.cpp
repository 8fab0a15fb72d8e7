// Time of the stores' operations. Absolute times: a commit waits for the disk, whatever the
// processor.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/json_models.h"
#include "adapters/sqlite_object_store.h"
#include "adapters/sqlite_user_defaults.h"
#include "adapters/uuids.h"
#include "platform/ns_managed_object_context.h"
#include "platform/planning.h"
#include "platform/services.h"

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

/// Milliseconds that the widgets' fetch may take.
constexpr double kFetchLimit = 1.0;
constexpr int kPlans = 100000;
constexpr double kDay = 86400.0;

using Role = adapters::SqliteObjectStores::Role;
using Coordinator = platform::NSPersistentStoreCoordinator;

double fetchMedian = 0.0;

std::shared_ptr<Coordinator> OpenPlans(const std::string& path, Role role) {
  platform::Services::Adapters services;
  services.persistentStores = std::make_shared<adapters::SqliteObjectStores>(
      role, std::make_shared<adapters::RandomUUIDs>());
  platform::Services::install(std::move(services));
  const auto model = adapters::JsonModels().modelWithContentsOfURL(LUMENQUEST_BENCH_RESOURCES
                                                                   "/models/Lumenquest.momd");
  auto coordinator = std::make_shared<Coordinator>(model.value);
  if (coordinator->addPersistentStore(path, {})) std::abort();
  return coordinator;
}

/// Plans of two images each, four a day, saved in no order of their dates.
void MakePlans(const std::string& path) {
  const auto coordinator = OpenPlans(path, Role::owner);
  const auto* entity = coordinator->managedObjectModel()->entityNamed(platform::kEntityPlanning);
  platform::SaveRequest request;
  for (int i = 0; i < kPlans; ++i) {
    platform::NSManagedObject plan(*entity);
    plan.setValue("Plan " + std::to_string(i), platform::kAttributeName);
    const auto quarterDays = static_cast<double>(i * std::int64_t{7919} % kPlans);
    plan.setValue(platform::NSDate(kDay / 4.0 * quarterDays), platform::kAttributeDate);
    plan.setValue(46.0 + i * 1e-5, platform::kAttributeLatitude);
    plan.setValue(14.0 + i * 1e-5, platform::kAttributeLongitude);
    platform::ObjectRecord record;
    for (const auto& attribute : entity->attributes) {
      record.values.push_back(plan.valueForKey(attribute.name));
    }
    record.toMany = {{"1.jpg", "2.jpg"}};
    request.inserted.push_back({entity, std::move(record)});
  }
  if (coordinator->persistentStore()->save(request).error) std::abort();
}

/// The next four plans from the start of a day on, as a widget fetches them.
void FetchFour(benchmark::State& state) {
  static const Folder folder;
  const std::string path = folder / "Lumenquest.sqlite";
  if (!std::filesystem::exists(path)) MakePlans(path);
  platform::NSManagedObjectContext context(OpenPlans(path, Role::reader));
  std::vector<double> times;
  double day = 0.0;
  for (auto _ : state) {
    // Another day each time, and objects made anew.
    day = day < 20000.0 ? day + 37.0 : 0.0;
    context.reset();
    const auto start = std::chrono::steady_clock::now();
    const auto plans =
        context.executeFetchRequest({platform::kEntityPlanning,
                                     platform::NSPredicate::greaterThanOrEqual(
                                         platform::kAttributeDate, platform::NSDate(day * kDay)),
                                     platform::kAttributeDate, 4});
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    times.push_back(time.count());
    if (plans.value.size() != 4 ||
        plans.value[0]->dateForKey(platform::kAttributeDate) != platform::NSDate(day * kDay)) {
      state.SkipWithError("the wrong plans");
      break;
    }
  }
  if (times.empty()) return;
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  fetchMedian = *middle;
}

BENCHMARK(FetchFour)->Name("plans_fetch_four_of_100000")->Unit(benchmark::kMicrosecond);
BENCHMARK(ReadSetting)->Name("settings_read")->Unit(benchmark::kMicrosecond);
BENCHMARK(WriteSetting)->Name("settings_write")->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  std::printf("fetch of four plans, median: %.3f ms, at most %.0f: %s\n", fetchMedian, kFetchLimit,
              fetchMedian < kFetchLimit ? "ok" : "OVER");
  return fetchMedian < kFetchLimit ? 0 : 1;
}
