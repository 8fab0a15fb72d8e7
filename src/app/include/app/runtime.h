#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "adapters/gazetteer.h"
#include "platform/services.h"

namespace lumenquest::app {

/// The folder that this process's program lies in; empty where the system does not say.
std::filesystem::path programFolder();
/// Folder of the string tables and the other resources: beside the program's folder in the build
/// and in an installed tree that was moved, else where the installation put it.
std::string resourceFolder();

/// What went wrong last with the file of the settings shared with the main application, or that
/// there is no folder for it; nothing when all went well.
std::optional<std::string> settingsError();

/// The places of the world, countries in the language of a locale. Throws adapters::GazetteerError
/// when its file is missing or damaged.
std::unique_ptr<adapters::Gazetteer> openGazetteer(const std::string& locale);

/// Who asks for the plans: the main application, which makes, migrates and changes their store, or
/// a widget, which reads it.
enum class StoreRole { reader, owner };

/// Where the device is by the user's configuration, for devices that never move and have no
/// location service: `lumenquest/position.json` in $XDG_CONFIG_HOME (else ~/.config), {"latitude":
/// 46.36, "longitude": 14.09}. Absent: there is no such file. Throws std::runtime_error when it
/// says something else.
std::optional<platform::CLLocationCoordinate2D> configuredPosition();
/// Where that file is, or would be; absent: the user has no folder for it.
std::optional<std::filesystem::path> configuredPositionFile();

/// Which adapters to install.
struct RuntimeOptions {
  /// An ICU identifier.
  std::string locale;
  /// Null: the system's.
  std::shared_ptr<platform::Clock> clock{};
  StoreRole role = StoreRole::reader;
  /// Settings that end with the process, in the place of those shared with the main application.
  bool hasOwnSettings = false;
  /// Where the device is; absent: the location service is asked.
  std::optional<platform::CLLocationCoordinate2D> here{};
};

/// Beside the shared settings: its change asks running hosts to ask their widgets again. Widgets
/// themselves write the settings, so that these cannot tell.
inline constexpr const char* kReloadRequestFile = "reload-request";
/// Asks running hosts. Does nothing where they cannot be reached: they reload in time anyway.
void requestReload();

void installServices(const RuntimeOptions& options);

}  // namespace lumenquest::app
