#include "app/running_home.h"

#include <gio/gio.h>

#include <optional>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "adapters/files.h"
#include "adapters/xdg_file_manager.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;

constexpr const char* kScheme = "lumenquest://";

/// Where running hosts say where they listen, a file each.
std::optional<fs::path> AddressFolder() {
  const auto folder = adapters::cacheFolder();
  return folder ? std::optional(*folder / "hosts") : std::nullopt;
}

bool Answers(const std::string& url) {
  GSocketClient* const client = g_socket_client_new();
  g_socket_client_set_timeout(client, 2);
  GSocketConnection* const connection =
      g_socket_client_connect_to_uri(client, url.c_str(), 80, nullptr, nullptr);
  const bool isThere = connection != nullptr;
  if (isThere) g_object_unref(connection);
  g_object_unref(client);
  return isThere;
}

/// The page of a host that answers.
std::string RunningHost() {
  std::vector<std::string> candidates;
  std::error_code error;
  if (const auto folder = AddressFolder()) {
    for (const auto& entry : fs::directory_iterator(*folder, error)) {
      candidates.push_back(adapters::contentsOfFile(entry.path()));
    }
  }
  // Where one may be that could not say so.
  candidates.push_back("http://127.0.0.1:" + std::to_string(kUsualHomePort) + "/");
  for (const std::string& url : candidates) {
    if (Answers(url)) return url;
  }
  throw std::runtime_error(appText("error_no_host"));
}

}  // namespace

HomeAnnouncement::HomeAnnouncement(std::uint16_t port, const std::string& url) {
  const auto folder = AddressFolder();
  if (!folder) return;
  std::error_code ignored;
  fs::create_directories(*folder, ignored);
  file_ = *folder / std::to_string(port);
  adapters::writeFileWhole(file_, url);
}

HomeAnnouncement::~HomeAnnouncement() {
  std::error_code ignored;
  if (!file_.empty()) fs::remove(file_, ignored);
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
