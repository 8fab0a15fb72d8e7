#include "app/running_home.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "adapters/files.h"
#include "adapters/xdg_file_manager.h"
#include "host/web_text.h"
#include "widgets/deep_links.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;

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
std::optional<std::string> RunningHost() {
  std::error_code error;
  if (const auto folder = AddressFolder()) {
    for (const auto& entry : fs::directory_iterator(*folder, error)) {
      if (!IsHeld(entry.path())) continue;
      if (auto url = adapters::contentsOfFile(entry.path())) return url;
    }
  }
  return std::nullopt;
}

/// Asks the user's service manager for the service that the package installs.
/// org.freedesktop.systemd1.Manager in systemd's D-Bus interface. False where there is none.
bool StartService() {
  GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (bus == nullptr) return false;
  GVariant* const job = g_dbus_connection_call_sync(
      bus, "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
      "org.freedesktop.systemd1.Manager", "StartUnit",
      g_variant_new("(ss)", "lumenquest-home.service", "replace"), G_VARIANT_TYPE("(o)"),
      G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
  g_object_unref(bus);
  if (job == nullptr) return false;
  g_variant_unref(job);
  return true;
}

/// The page of a host that runs or that a service manager starts now. Who opens the home screen
/// from the desktop's menu sees no advice to start a host first.
std::string HostToOpen() {
  std::optional<std::string> url = RunningHost();
  if (!url && StartService()) {
    constexpr int kLooks = 100;
    for (int look = 0; look < kLooks && !url; ++look) {
      g_usleep(G_USEC_PER_SEC / 10);
      url = RunningHost();
    }
  }
  if (!url) throw std::runtime_error(appText("error_no_host"));
  return *url;
}

}  // namespace

HomeAnnouncement::HomeAnnouncement(std::uint16_t port, const std::string& url) {
  const auto folder = AddressFolder();
  if (!folder) return;
  adapters::makePrivateFolder(*folder);
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
  if (deepLink && !deepLink->starts_with(widgets::kLinkScheme)) {
    throwBadOption("URL", *deepLink, "expect_deep_link");
  }
  const std::string url = HostToOpen();
  if (!deepLink) return url;
  return url + "open?url=" + host::percentEncoded(*deepLink);
}

}  // namespace lumenquest::app
