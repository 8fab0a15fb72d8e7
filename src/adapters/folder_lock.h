#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace lumenquest::adapters {

/// An open folder and a lock on it, which the system takes back when its process ends, however it
/// ends. Who makes files holds it with others; who sweeps holds it alone. So a file that a sweeper
/// finds has no living maker, in whatever container he lives, which neither process numbers nor
/// ages could tell; and no file is locked that SQLite locks itself.
class FolderLock {
 public:
  FolderLock(const std::filesystem::path& folder, int operation)
      : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor_ < 0) return;
    int result = 0;
    do {
      result = ::flock(descriptor_, operation);
    } while (result != 0 && errno == EINTR);
    isHeld_ = result == 0;
  }
  ~FolderLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  bool isHeld() const { return isHeld_; }
  void Sync() const { ::fsync(descriptor_); }

 private:
  int descriptor_;
  bool isHeld_ = false;
};

}  // namespace lumenquest::adapters
