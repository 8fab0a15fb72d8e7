#include "adapters/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;

std::string LastError() { return std::generic_category().message(errno); }

bool WriteAll(int file, const std::string& contents) {
  for (std::size_t written = 0; written < contents.size();) {
    const ssize_t count = ::write(file, contents.data() + written, contents.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    written += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace

std::optional<std::string> writeFileWhole(const fs::path& given, const std::string& contents) {
  std::error_code error;
  // A device or a pipe cannot be renamed over and is written to as it is. Asked of the name as it
  // is given: /dev/stdout is a link to what may have no path.
  if (fs::exists(given, error) && !fs::is_regular_file(given, error)) {
    const int file = ::open(given.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) return LastError();
    std::optional<std::string> failure;
    if (!WriteAll(file, contents)) failure = LastError();
    ::close(file);
    return failure;
  }
  // What a link points to is replaced, not the link.
  fs::path path = given;
  if (fs::is_symlink(given, error)) {
    path = fs::canonical(given, error);
    if (error) return error.message();
  }
  // Renaming would ask the folder alone, and replace what its owner has protected.
  if (fs::exists(path, error) && ::access(path.c_str(), W_OK) != 0) return LastError();
  std::string unfinished = path.string() + ".XXXXXX";
  const int file = ::mkostemp(unfinished.data(), O_CLOEXEC);
  if (file < 0) return LastError();
  // As a new file would be made, rather than for its owner alone; an old file's mode is kept.
  struct stat old {};
  const mode_t mask = ::umask(0);
  ::umask(mask);
  const mode_t mode = ::stat(path.c_str(), &old) == 0 ? old.st_mode & 07777u : 0666u & ~mask;
  std::optional<std::string> failure;
  if (!WriteAll(file, contents) || ::fchmod(file, mode) != 0 || ::fsync(file) != 0) {
    failure = LastError();
  }
  if (::close(file) != 0 && !failure) failure = LastError();
  if (!failure && ::rename(unfinished.c_str(), path.c_str()) != 0) failure = LastError();
  if (failure) ::unlink(unfinished.c_str());
  return failure;
}

std::optional<std::string> contentsOfFile(const fs::path& path) {
  // A folder opens, and is none of which the stream would say that it cannot be read.
  std::error_code error;
  std::ifstream stream(path, std::ios::binary);
  if (!stream || fs::is_directory(path, error)) return std::nullopt;
  std::string contents{std::istreambuf_iterator<char>(stream), {}};
  if (!stream) return std::nullopt;
  return contents;
}

std::string contentsOfResource(const fs::path& path) {
  auto contents = contentsOfFile(path);
  if (!contents) throw std::runtime_error(path.string() + ": cannot be read; install it again");
  return std::move(*contents);
}

std::error_code makePrivateFolder(const fs::path& folder) {
  std::error_code error;
  if (folder.empty() || fs::exists(folder, error)) return {};
  if (const std::error_code above = makePrivateFolder(folder.parent_path())) return above;
  if (fs::create_directory(folder, error)) fs::permissions(folder, fs::perms::owner_all, error);
  return error;
}

}  // namespace lumenquest::adapters
