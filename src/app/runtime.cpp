#include "app/runtime.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "adapters/asset_catalog.h"
#include "adapters/clocks.h"
#include "adapters/files.h"
#include "adapters/fixed_location.h"
#include "adapters/gazetteer_geocoder.h"
#include "adapters/geoclue_location.h"
#include "adapters/geographiclib_geodesy.h"
#include "adapters/glib_main_queue.h"
#include "adapters/icu_services.h"
#include "adapters/icu_string_tables.h"
#include "adapters/json_models.h"
#include "adapters/pango_text.h"
#include "adapters/sqlite_object_store.h"
#include "adapters/sqlite_user_defaults.h"
#include "adapters/system_log.h"
#include "adapters/system_time_zones.h"
#include "adapters/uuids.h"
#include "adapters/xdg_file_manager.h"
#include "app/option_values.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

std::filesystem::path programFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::string resourceFolder() {
  std::error_code error;
  const auto folder = programFolder().parent_path() / "share" / "lumenquest";
  if (std::filesystem::is_directory(folder, error)) return folder.string();
  return LUMENQUEST_INSTALLED_RESOURCES;
}

namespace {

std::shared_ptr<adapters::SqliteUserDefaults>& Suite() {
  static std::shared_ptr<adapters::SqliteUserDefaults> suite;
  return suite;
}

/// Of the words that are shown: where there are none in the locale's language, English ones are.
std::string WordsLanguage(const std::string& locale) {
  const std::string tag = adapters::languageTag(locale);
  const std::string words = appText("language_tag");
  return (tag + "-").starts_with(words + "-") ? tag : words;
}

/// One object as long as its file stays the same; null when the user has no folder for it.
void OpenSuite(platform::FileManager& files) {
  const auto folder = files.containerOfGroup(platform::kApplicationGroup);
  if (!folder) {
    Suite().reset();
    return;
  }
  const std::string path = *folder / "settings.sqlite";
  if (!Suite() || Suite()->path() != path) {
    Suite() = std::make_shared<adapters::SqliteUserDefaults>(path);
  }
}

}  // namespace

std::optional<std::string> settingsError() {
  if (!Suite()) return platform::localizedString("store_error_no_place", platform::kTableCommon);
  const auto error = Suite()->error();
  return error ? std::optional(error->localizedDescription()) : std::nullopt;
}

std::unique_ptr<adapters::Gazetteer> openGazetteer(const std::string& locale) {
  return std::make_unique<adapters::Gazetteer>(resourceFolder() + "/gazetteer.sqlite", locale);
}

std::optional<std::filesystem::path> configuredPositionFile() {
  const auto folder = adapters::configurationFolder();
  return folder ? std::optional(*folder / "position.json") : std::nullopt;
}

std::optional<platform::CLLocationCoordinate2D> configuredPosition() {
  const auto file = configuredPositionFile();
  std::error_code error;
  if (!file || !std::filesystem::exists(*file, error)) return std::nullopt;
  std::ifstream stream(*file);
  const auto json = nlohmann::json::parse(stream, nullptr, false);
  const auto number = [&](const char* name) {
    const auto found = json.is_object() ? json.find(name) : json.end();
    return found != json.end() && found->is_number() ? found->get<double>()
                                                     : std::numeric_limits<double>::quiet_NaN();
  };
  const platform::CLLocationCoordinate2D position{number("latitude"), number("longitude")};
  if (position.isValid()) return position;
  throw std::runtime_error(
      platform::stringWithFormat(appText("error_position_file"), {file->string()}));
}

void requestReload() {
  const auto group =
      platform::Services::current().fileManager().containerOfGroup(platform::kApplicationGroup);
  if (!group) return;
  adapters::writeFileWhole(*group / kReloadRequestFile,
                           adapters::RandomUUIDs().UUIDString() + "\n");
}

void installServices(const RuntimeOptions& options) {
  platform::Services::Adapters services;
  services.clock = options.clock ? options.clock : std::make_shared<adapters::SystemClock>();
  services.timeZones = std::make_shared<adapters::SystemTimeZones>();
  services.calendars =
      std::make_shared<adapters::IcuCalendarService>(options.locale, services.timeZones);
  services.formatters =
      std::make_shared<adapters::IcuFormatterService>(options.locale, services.timeZones);
  services.strings =
      std::make_shared<adapters::IcuStringTables>(resourceFolder() + "/strings", options.locale);
  services.log = std::make_shared<adapters::SystemLog>();
  services.fileManager = std::make_shared<adapters::XdgFileManager>(resourceFolder());
  if (options.hasOwnSettings) {
    services.settings = std::make_shared<platform::InMemoryUserDefaults>();
  } else {
    OpenSuite(*services.fileManager);
    services.settings = Suite();
  }
  services.models = std::make_shared<adapters::JsonModels>();
  services.uuids = std::make_shared<adapters::RandomUUIDs>();
  using Stores = adapters::SqliteObjectStores;
  services.persistentStores = std::make_shared<Stores>(
      options.role == StoreRole::owner ? Stores::Role::owner : Stores::Role::reader,
      services.uuids);
  services.mainQueue = std::make_shared<adapters::GlibMainQueue>();
  services.geocoder = std::make_shared<adapters::GazetteerGeocoder>(
      [locale = options.locale] { return std::shared_ptr(openGazetteer(locale)); },
      services.mainQueue);
  services.geodesy = std::make_shared<adapters::GeographicLibGeodesy>();
  services.assets = std::make_shared<adapters::FileAssetCatalog>(resourceFolder() + "/art");
  services.textMeasurer = std::make_shared<adapters::PangoTextMeasurer>();
  if (options.here) {
    services.locations =
        std::make_shared<adapters::FixedLocationService>(*options.here, services.mainQueue);
  } else {
    services.locations = std::make_shared<adapters::GeoclueLocationService>();
  }
  platform::Services::install(std::move(services));
  adapters::setTextLanguage(WordsLanguage(options.locale));
}

}  // namespace lumenquest::app
