#include "adapters/xdg_file_manager.h"

#include <cstdlib>
#include <system_error>
#include <utility>

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;

/// Our folder in the one that a variable names, else in one of the user's home. Absent when neither
/// says where; a relative path counts as unset.
std::optional<fs::path> OwnFolder(const char* variable, const char* inHome) {
  const auto absolutePath = [](const char* name) {
    const char* value = std::getenv(name);
    const fs::path path = value != nullptr ? value : "";
    return path.is_absolute() ? path : fs::path();
  };
  if (const fs::path folder = absolutePath(variable); !folder.empty()) {
    return folder / "lumenquest";
  }
  if (const fs::path home = absolutePath("HOME"); !home.empty()) {
    return home / inHome / "lumenquest";
  }
  return std::nullopt;
}

std::optional<fs::path> DataFolder() { return OwnFolder("XDG_DATA_HOME", ".local/share"); }

}  // namespace

std::optional<fs::path> configurationFolder() { return OwnFolder("XDG_CONFIG_HOME", ".config"); }

std::optional<fs::path> cacheFolder() { return OwnFolder("XDG_CACHE_HOME", ".cache"); }

XdgFileManager::XdgFileManager(fs::path resourceFolder)
    : resourceFolder_(std::move(resourceFolder)) {}

std::vector<fs::path> XdgFileManager::documentDirectories() {
  const auto data = DataFolder();
  if (!data) return {};
  return {*data / "documents"};
}

std::optional<fs::path> XdgFileManager::containerOfGroup(const std::string& identifier) {
  const auto data = DataFolder();
  if (!data) return std::nullopt;
  return *data / identifier;
}

std::optional<fs::path> XdgFileManager::resource(const std::string& name,
                                                 const std::string& withExtension) {
  const fs::path path = resourceFolder_ / "models" / (name + "." + withExtension);
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  return path;
}

}  // namespace lumenquest::adapters
