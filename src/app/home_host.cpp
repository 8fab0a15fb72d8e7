#include "app/home_host.h"

#include <glib-unix.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "adapters/clocks.h"
#include "adapters/files.h"
#include "adapters/glib_main_queue.h"
#include "adapters/printable_text.h"
#include "adapters/shared_text_file.h"
#include "adapters/system_alarm.h"
#include "adapters/xdg_file_manager.h"
#include "platform/localized_strings.h"
#include "platform/services.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;
using platform::stringWithFormat;

/// Where systems keep their time zone.
const std::vector<fs::path> kZoneFiles{"/etc/localtime", "/etc/timezone"};

fs::path HomeScreenPath() {
  const auto folder = adapters::configurationFolder();
  if (!folder) throw std::runtime_error(appText("error_no_configuration_folder"));
  return *folder / "home.json";
}

/// Ends a main loop when the process is told to end.
class EndSignals {
 public:
  EndSignals() {
    const auto end = [](gpointer self) -> gboolean {
      static_cast<EndSignals*>(self)->isGiven = true;
      return G_SOURCE_CONTINUE;
    };
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      sources_[i] = g_unix_signal_add(kSignals[i], end, this);
    }
  }
  ~EndSignals() {
    for (const unsigned source : sources_) g_source_remove(source);
  }
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  bool isGiven = false;

 private:
  static constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};
  std::array<unsigned, kSignals.size()> sources_{};
};

}  // namespace

std::vector<OptionSpec> homeOptionSpecs(HomeOptions& options) {
  return {{"--here", "LAT,LON", "help_here", "expect_coordinate", &options.here},
          {"--settings", "shared|memory", "help_settings_kind", "expect_settings_kind",
           &options.settings},
          {"--at", "INSTANT", "help_home_at", "expect_at", &options.at},
          localeOption(options.locale)};
}

void reportTrouble(const std::string& message) {
  const std::string line = adapters::printableText(message, 400);
  std::cerr << stringWithFormat(appText("error_line"), {line}) << std::endl;
  platform::Services::current().log().write(line);
}

host::HomeScreenFile homeScreenFile() {
  return host::HomeScreenFile(std::make_shared<adapters::SharedTextFile>(HomeScreenPath()));
}

HomeHost::HomeHost(const HomeOptions& options) : file_(homeScreenFile()) {
  runtime_.locale = checkedLocale(options.locale);
  runtime_.hasOwnSettings = parseSettingsKind(options.settings, "shared");
  runtime_.here =
      options.here ? parseCoordinate("--here", *options.here).coordinate : configuredPosition();
  double secondsAhead = 0.0;
  if (options.at) {
    const auto clock = std::make_shared<adapters::ShiftedClock>(parseInstant(options.at));
    secondsAhead = clock->secondsAhead();
    runtime_.clock = clock;
  }
  installServices(runtime_);
  // A folder that is not there yet can only be looked for now and then.
  adapters::makePrivateFolder(HomeScreenPath().parent_path());
  // What is wrong with it is better told before anything starts.
  file_.load();

  host::Scheduler::Options scheduling;
  scheduling.alarm = std::make_shared<adapters::SystemAlarm>(secondsAhead);
  scheduling.locale = runtime_.locale;
  // Entries of a clock of one's own are nothing for the next start.
  const auto cache = adapters::cacheFolder();
  if (cache && !options.at) {
    scheduling.memory = std::make_shared<adapters::SharedTextFile>(*cache / "entries.json");
  }
  scheduler_ = std::make_unique<host::Scheduler>(std::move(scheduling));

  const auto watch = [&](std::vector<fs::path> files, std::function<void()> changed) {
    watchers_.push_back(
        std::make_unique<adapters::FileWatcher>(std::move(files), std::move(changed)));
  };
  watch({HomeScreenPath()}, [this] { ReadAgain(); });
  const auto position = configuredPositionFile();
  if (position && !options.here) watch({*position}, [this] { ReadPosition(); });
  watch(kZoneFiles, [this] { Restart(); });
  const auto group =
      platform::Services::current().fileManager().containerOfGroup(platform::kApplicationGroup);
  if (group) {
    adapters::makePrivateFolder(*group);
    // The settings themselves are written by every widget that finds its place.
    watch({*group / kReloadRequestFile, *group / "Lumenquest.sqlite",
           *group / "Lumenquest.sqlite-wal"},
          [this] { Restart(); });
  }
}

void HomeHost::run(const std::function<bool()>& done) {
  EndSignals signals;
  scheduler_->show(file_.load());
  adapters::GlibMainQueue::runUntil([&] { return signals.isGiven || done(); });
}

/// Opens everything anew: stores that were made or replaced meanwhile, the device's time zone.
void HomeHost::Restart() {
  installServices(runtime_);
  scheduler_->restart();
}

void HomeHost::ReadPosition() {
  try {
    runtime_.here = configuredPosition();
    Restart();
  } catch (const std::runtime_error& error) {
    // What stood before goes on until the file is right.
    reportTrouble(error.what());
  }
}

void HomeHost::ReadAgain() {
  try {
    const host::HomeScreen screen = file_.load();
    if (scheduler_->isShowing(screen)) return;
    scheduler_->show(screen);
    onHomeScreen_();
  } catch (const host::HomeScreenError& error) {
    // Whoever edits it by hand goes on editing; what stood before stays on the screen.
    reportTrouble(error.what());
  }
}

}  // namespace lumenquest::app
