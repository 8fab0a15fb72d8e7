#include "adapters/held_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

#include "adapters/files.h"

namespace lumenquest::adapters {

HeldFile::HeldFile(const std::filesystem::path& path, const std::string& contents)
    : path_(path.string()) {
  do {
    if (file_ >= 0) close(file_);
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file_ < 0) return;
    flock(file_, LOCK_EX);
    // Whoever looked meanwhile may have taken it for that of a maker who died.
    struct stat status {};
    if (fstat(file_, &status) != 0 || status.st_nlink > 0) break;
  } while (true);
  if (ftruncate(file_, 0) != 0 || write(file_, contents.data(), contents.size()) < 0) {
    unlink(path_.c_str());
  }
}

HeldFile::~HeldFile() {
  if (file_ < 0) return;
  unlink(path_.c_str());
  close(file_);
}

std::optional<std::string> contentsOfHeldFile(const std::filesystem::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return std::nullopt;
  const bool isHeld = flock(file, LOCK_SH | LOCK_NB) != 0;
  std::error_code ignored;
  if (!isHeld) std::filesystem::remove(path, ignored);
  close(file);
  return isHeld ? contentsOfFile(path) : std::nullopt;
}

}  // namespace lumenquest::adapters
