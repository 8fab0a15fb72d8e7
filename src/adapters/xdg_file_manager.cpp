#include "adapters/xdg_file_manager.h"

#include <cstdlib>
#include <system_error>
#include <utility>

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;

/// Absent when neither variable says where; a relative path counts as unset.
std::optional<fs::path> DataFolder() {
  const auto absolutePath = [](const char* variable) {
    const char* value = std::getenv(variable);
    const fs::path path = value != nullptr ? value : "";
    return path.is_absolute() ? path : fs::path();
  };
  if (const fs::path data = absolutePath("XDG_DATA_HOME"); !data.empty()) {
    return data / "lumenquest";
  }
  if (const fs::path home = absolutePath("HOME"); !home.empty()) {
    return home / ".local" / "share" / "lumenquest";
  }
  return std::nullopt;
}

}  // namespace

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
