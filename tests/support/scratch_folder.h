#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace lumenquest::testing {

/// A folder of the test's own, gone with it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "lumenquest-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~ScratchFolder() { std::filesystem::remove_all(path_); }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::string& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const {
    return std::filesystem::path(path_) / name;
  }

 private:
  std::string path_;
};

inline std::string Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace lumenquest::testing
