#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/file_watcher.h"
#include "app/runtime.h"
#include "app/widget_request.h"
#include "host/home_screen_file.h"
#include "host/scheduler.h"

namespace lumenquest::app {

/// The options of a host that keeps running.
struct HomeOptions {
  OptionText here;
  OptionText settings;
  OptionText at;
  OptionText locale;
};

std::vector<OptionSpec> homeOptionSpecs(HomeOptions& options);

/// Says on standard error, and in the log, what is wrong while a host goes on. One line.
void reportTrouble(const std::string& message);

/// The user's home screen. Throws std::runtime_error when the user has no folder for it.
host::HomeScreenFile homeScreenFile();

/// A host on this machine: the scheduler on the system's clock, and what makes it ask again before
/// time: a changed home screen, position or plans, `settings set`, another time zone.
class HomeHost {
 public:
  /// Installs the services. Throws UsageError, HomeScreenError, std::runtime_error.
  explicit HomeHost(const HomeOptions& options);

  host::Scheduler& scheduler() { return *scheduler_; }
  host::HomeScreenFile& file() { return file_; }
  const std::string& locale() const { return runtime_.locale; }

  /// Told after a change that somebody else made of the home screen's file is shown.
  void onHomeScreen(std::function<void()> listener) { onHomeScreen_ = std::move(listener); }

  /// Shows the home screen and runs the main loop until the process is told to end (SIGTERM,
  /// SIGINT, SIGHUP), or `done` holds.
  void run(const std::function<bool()>& done = [] { return false; });

 private:
  void Restart();
  void ReadAgain();
  void ReadPosition();

  RuntimeOptions runtime_;
  host::HomeScreenFile file_;
  std::unique_ptr<host::Scheduler> scheduler_;
  std::function<void()> onHomeScreen_ = [] {};
  std::vector<std::unique_ptr<adapters::FileWatcher>> watchers_;
};

}  // namespace lumenquest::app
