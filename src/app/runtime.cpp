#include "app/runtime.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "adapters/icu_services.h"
#include "adapters/icu_string_tables.h"
#include "adapters/sqlite_user_defaults.h"
#include "adapters/system_log.h"
#include "adapters/system_time_zones.h"

namespace lumenquest::app {

std::string resourceFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) {
    const auto folder = program.parent_path().parent_path() / "share" / "lumenquest";
    if (std::filesystem::is_directory(folder, error)) return folder.string();
  }
  return LUMENQUEST_INSTALLED_RESOURCES;
}

namespace {

std::shared_ptr<adapters::SqliteUserDefaults>& Suite() {
  static std::shared_ptr<adapters::SqliteUserDefaults> suite;
  return suite;
}

}  // namespace

std::string settingsPath() {
  const auto folderOf = [](const char* variable) {
    const char* value = std::getenv(variable);
    return std::filesystem::path(value != nullptr ? value : "");
  };
  std::filesystem::path data = folderOf("XDG_DATA_HOME");
  // A relative path there is invalid and to be ignored, says the base-directory standard.
  if (!data.is_absolute()) data = folderOf("HOME") / ".local" / "share";
  return (data / "lumenquest" / "group.lumenquest.lumenquest" / "settings.sqlite").string();
}

std::optional<std::string> settingsError() {
  const auto error = Suite() ? Suite()->error() : std::nullopt;
  return error ? std::optional(error->localizedDescription()) : std::nullopt;
}

std::unique_ptr<adapters::Gazetteer> openGazetteer(const std::string& locale) {
  return std::make_unique<adapters::Gazetteer>(resourceFolder() + "/gazetteer.sqlite", locale);
}

void installServices(const std::string& locale, std::shared_ptr<platform::Clock> clock) {
  platform::Services::Adapters services;
  services.clock = std::move(clock);
  services.timeZones = std::make_shared<adapters::SystemTimeZones>();
  services.calendars = std::make_shared<adapters::IcuCalendarService>(locale, services.timeZones);
  services.formatters = std::make_shared<adapters::IcuFormatterService>(locale, services.timeZones);
  services.strings =
      std::make_shared<adapters::IcuStringTables>(resourceFolder() + "/strings", locale);
  if (!Suite() || Suite()->path() != settingsPath()) {
    Suite() = std::make_shared<adapters::SqliteUserDefaults>(settingsPath());
  }
  services.settings = Suite();
  services.log = std::make_shared<adapters::SystemLog>();
  platform::Services::install(std::move(services));
}

}  // namespace lumenquest::app
