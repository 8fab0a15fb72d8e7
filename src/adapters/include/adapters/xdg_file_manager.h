#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/services.h"

namespace lumenquest::adapters {

/// The user's folder for our configuration, `$XDG_CONFIG_HOME/lumenquest` (`~/.config/lumenquest`
/// by default), whether it is there or not; absent when the user has none.
std::optional<std::filesystem::path> configurationFolder();

/// The same for what can be made again: `$XDG_CACHE_HOME/lumenquest` (`~/.cache/lumenquest`).
std::optional<std::filesystem::path> cacheFolder();

/// Folders below the user's data folder, `$XDG_DATA_HOME/lumenquest` (`~/.local/share/lumenquest`
/// by default), and the bundle's models. Makes no folder.
class XdgFileManager final : public platform::FileManager {
 public:
  explicit XdgFileManager(std::filesystem::path resourceFolder);

  std::vector<std::filesystem::path> documentDirectories() override;
  std::optional<std::filesystem::path> containerOfGroup(const std::string& identifier) override;
  std::optional<std::filesystem::path> resource(const std::string& name,
                                                const std::string& withExtension) override;

 private:
  std::filesystem::path resourceFolder_;
};

}  // namespace lumenquest::adapters
