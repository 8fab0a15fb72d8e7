#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace lumenquest::adapters {

/// A file that other processes of this user find as long as its maker lives, however that ends: it
/// is locked, so that they tell it from one whose maker died.
class HeldFile {
 public:
  /// In a folder that is there. Where the file cannot be written nobody finds it.
  HeldFile(const std::filesystem::path& path, const std::string& contents);
  ~HeldFile();
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

 private:
  std::string path_;
  int file_ = -1;
};

/// What a held file says. Absent for one whose maker died; that one is removed.
std::optional<std::string> contentsOfHeldFile(const std::filesystem::path& path);

}  // namespace lumenquest::adapters
