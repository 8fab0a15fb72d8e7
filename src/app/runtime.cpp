#include "app/runtime.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "adapters/icu_services.h"
#include "adapters/icu_string_tables.h"
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

void installServices(const std::string& locale, std::shared_ptr<platform::Clock> clock) {
  platform::Services::Adapters services;
  services.clock = std::move(clock);
  services.timeZones = std::make_shared<adapters::SystemTimeZones>();
  services.calendars = std::make_shared<adapters::IcuCalendarService>(locale, services.timeZones);
  services.formatters = std::make_shared<adapters::IcuFormatterService>(locale, services.timeZones);
  services.strings =
      std::make_shared<adapters::IcuStringTables>(resourceFolder() + "/strings", locale);
  services.settings = std::make_shared<platform::InMemoryUserDefaults>();
  services.log = std::make_shared<adapters::SystemLog>();
  platform::Services::install(std::move(services));
}

}  // namespace lumenquest::app
