#include "app/home_server.h"

#include <gio/gio.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include "adapters/files.h"
#include "adapters/icu_services.h"
#include "adapters/svg_canvas.h"
#include "adapters/xdg_file_manager.h"
#include "app/entry_output.h"
#include "app/widget_picture.h"
#include "host/home_site.h"
#include "host/web_server.h"
#include "platform/localized_strings.h"
#include "widgets/view/style.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;
namespace view = widgets::view;
using platform::stringWithFormat;

constexpr const char* kScheme = "lumenquest://";
constexpr std::uint16_t kUsualPort = 8437;

/// Where running hosts say where they listen, a file each.
std::optional<fs::path> AddressFolder() {
  const auto folder = adapters::cacheFolder();
  return folder ? std::optional(*folder / "hosts") : std::nullopt;
}

std::string Contents(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Says where this host listens, as long as it does.
class Announcement {
 public:
  explicit Announcement(const host::WebServer& server) {
    const auto folder = AddressFolder();
    if (!folder) return;
    std::error_code ignored;
    fs::create_directories(*folder, ignored);
    file_ = *folder / std::to_string(server.port());
    adapters::writeFileWhole(file_, server.url());
  }
  ~Announcement() {
    std::error_code ignored;
    if (!file_.empty()) fs::remove(file_, ignored);
  }
  Announcement(const Announcement&) = delete;
  Announcement& operator=(const Announcement&) = delete;

 private:
  fs::path file_;
};

/// The site's own files.
std::map<std::string, std::string> SiteFiles() {
  const fs::path resources = resourceFolder();
  std::map<std::string, std::string> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(resources / "web", error)) {
    files[entry.path().filename().string()] = Contents(entry.path());
  }
  files["icon.svg"] = Contents(resources / "art" / "appIcon.svg");
  return files;
}

host::ListenAddress Address(const OptionText& listen) {
  if (!listen) return {"127.0.0.1", kUsualPort};
  const auto address = host::parseListenAddress(*listen);
  if (!address) throwBadOption("--listen", *listen, "expect_listen");
  return *address;
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
      candidates.push_back(Contents(entry.path()));
    }
  }
  // Where one may be that could not say so.
  candidates.push_back("http://127.0.0.1:" + std::to_string(kUsualPort) + "/");
  for (const std::string& url : candidates) {
    if (Answers(url)) return url;
  }
  throw std::runtime_error(appText("error_no_host"));
}

}  // namespace

void serveHome(const HomeOptions& options, const OptionText& listen, std::ostream& out) {
  host::WebServerOptions serverOptions;
  serverOptions.listen = Address(listen);
  HomeHost home(options);

  view::Environment environment;
  const bool isRightToLeft = adapters::isRightToLeft(home.locale());
  if (isRightToLeft) environment.layoutDirection = view::LayoutDirection::rightToLeft;

  std::optional<host::WebServer> server;
  host::HomeSiteOptions siteOptions;
  const auto draw = [&](const host::ShownWidget& shown, platform::ColorScheme scheme,
                        PictureFormat format, PictureOptions picture) {
    view::Environment own = environment;
    own.family = shown.widget.family;
    own.colorScheme = scheme;
    const view::Element element = host::viewOf(shown.entry, own);
    picture.size = view::sizeOf(own.family);
    return pictureOf(element, own, format, picture);
  };
  siteOptions.drawWidget = [&](const host::ShownWidget& shown, platform::ColorScheme scheme,
                               const std::string& idPrefix) {
    PictureOptions picture;
    picture.title = host::configurationOf(shown.widget.kind)->displayName;
    picture.idPrefix = idPrefix;
    return draw(shown, scheme, PictureFormat::svg, picture);
  };
  siteOptions.drawPng = [&](const host::ShownWidget& shown, platform::ColorScheme scheme,
                            double scale) {
    PictureOptions picture;
    picture.scale = scale;
    return draw(shown, scheme, PictureFormat::png, picture);
  };
  siteOptions.writeRecord = [](const host::ShownWidget& shown) {
    return widgetJson(shown).dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) +
           "\n";
  };
  siteOptions.drawImage = [](const platform::UIImage& image) {
    adapters::SvgCanvas canvas(image.size, "i");
    canvas.drawImage(image, {0.0, 0.0, image.size.width, image.size.height}, {});
    return canvas.document("", "");
  };
  siteOptions.files = SiteFiles();
  siteOptions.language = {home.locale(), isRightToLeft};
  std::replace(siteOptions.language.tag.begin(), siteOptions.language.tag.end(), '_', '-');
  siteOptions.publish = [&](const std::string& event, const std::string& data) {
    if (server) server->publish(event, data);
  };
  host::HomeSite site(home.scheduler(), home.file(), siteOptions);
  server.emplace(serverOptions,
                 [&](const host::WebRequest& request) { return site.answer(request); });
  home.scheduler().onEntry([&](const host::ShownWidget& shown) { site.entryIsNew(shown); });
  home.onHomeScreen([&] { site.homeScreenIsNew(); });

  const Announcement announcement(*server);
  out << stringWithFormat(appText("home_serving"), {server->url()}) << std::endl;
  home.run();
  server->stop();
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
