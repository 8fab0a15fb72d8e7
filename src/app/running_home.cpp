#include "app/running_home.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include "adapters/files.h"
#include "adapters/user_services.h"
#include "adapters/xdg_file_manager.h"
#include "host/web_text.h"
#include "widgets/deep_links.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;

/// Where running hosts say where they listen, a file each.
std::optional<fs::path> AddressFolder() {
  const auto folder = adapters::cacheFolder();
  return folder ? std::optional(*folder / "hosts") : std::nullopt;
}

/// The page of a host that runs.
std::optional<std::string> RunningHost() {
  std::error_code error;
  if (const auto folder = AddressFolder()) {
    for (const auto& entry : fs::directory_iterator(*folder, error)) {
      if (auto url = adapters::contentsOfHeldFile(entry.path())) return url;
    }
  }
  return std::nullopt;
}

/// The page of a host that runs or that the package's service becomes now. Who opens the home
/// screen from the desktop's menu sees no advice to start a host first.
std::string HostToOpen() {
  std::optional<std::string> url = RunningHost();
  if (!url && adapters::startUserService("lumenquest-home.service")) {
    constexpr int kLooks = 100;
    for (int look = 0; look < kLooks && !url; ++look) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
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
  // Where it cannot be written the host is one that `home open` does not find.
  file_.emplace(*folder / std::to_string(port), url);
}

std::string runningPage(const OptionText& deepLink) {
  if (deepLink && !deepLink->starts_with(widgets::kLinkScheme)) {
    throwBadOption("URL", *deepLink, "expect_deep_link");
  }
  const std::string url = HostToOpen();
  return deepLink ? url + "open?url=" + host::percentEncoded(*deepLink) : url;
}

}  // namespace lumenquest::app
