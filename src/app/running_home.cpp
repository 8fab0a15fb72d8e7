#include "app/running_home.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "adapters/files.h"
#include "adapters/xdg_file_manager.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;

constexpr const char* kScheme = "lumenquest://";

/// Where running hosts say where they listen, a file each, which its host keeps locked.
std::optional<fs::path> AddressFolder() {
  const auto folder = adapters::cacheFolder();
  return folder ? std::optional(*folder / "hosts") : std::nullopt;
}

/// Whether the host that wrote the file still runs. What a host that died left behind is removed.
bool IsHeld(const fs::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  const bool isHeld = flock(file, LOCK_SH | LOCK_NB) != 0;
  std::error_code ignored;
  if (!isHeld) fs::remove(path, ignored);
  close(file);
  return isHeld;
}

/// The page of a host that runs.
std::string RunningHost() {
  std::error_code error;
  if (const auto folder = AddressFolder()) {
    for (const auto& entry : fs::directory_iterator(*folder, error)) {
      if (IsHeld(entry.path())) return adapters::contentsOfFile(entry.path());
    }
  }
  throw std::runtime_error(appText("error_no_host"));
}

}  // namespace

HomeAnnouncement::HomeAnnouncement(std::uint16_t port, const std::string& url) {
  const auto folder = AddressFolder();
  if (!folder) return;
  std::error_code ignored;
  fs::create_directories(*folder, ignored);
  path_ = (*folder / std::to_string(port)).string();
  do {
    if (file_ >= 0) close(file_);
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file_ < 0) return;
    flock(file_, LOCK_EX);
    // Whoever looked meanwhile may have taken it for that of a host that died.
    struct stat status {};
    if (fstat(file_, &status) != 0 || status.st_nlink > 0) break;
  } while (true);
  // Where it cannot be written the host is one that `home open` does not find.
  if (ftruncate(file_, 0) != 0 || write(file_, url.data(), url.size()) < 0) unlink(path_.c_str());
}

HomeAnnouncement::~HomeAnnouncement() {
  if (file_ < 0) return;
  unlink(path_.c_str());
  close(file_);
}

std::string runningPage(const OptionText& deepLink) {
  if (deepLink && !deepLink->starts_with(kScheme)) {
    throwBadOption("URL", *deepLink, "expect_deep_link");
  }
  const std::string url = RunningHost();
  if (!deepLink) return url;
  char* const escaped = g_uri_escape_string(deepLink->c_str(), nullptr, FALSE);
  const std::string page = url + "open?url=" + escaped;
  g_free(escaped);
  return page;
}

}  // namespace lumenquest::app
