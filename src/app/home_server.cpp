#include "app/home_server.h"

#include <filesystem>
#include <ostream>
#include <system_error>

#include "adapters/files.h"
#include "adapters/icu_services.h"
#include "adapters/pango_text.h"
#include "adapters/svg_canvas.h"
#include "app/entry_output.h"
#include "app/running_home.h"
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

/// The site's own files.
std::map<std::string, std::string> SiteFiles() {
  const fs::path resources = resourceFolder();
  std::map<std::string, std::string> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(resources / "web", error)) {
    files[entry.path().filename().string()] = adapters::contentsOfResource(entry.path());
  }
  files["icon.svg"] = adapters::contentsOfResource(resources / "art" / "appIcon.svg");
  return files;
}

/// Where a host listens when nothing is said.
constexpr std::uint16_t kUsualPort = 8437;

host::ListenAddress Address(const OptionText& listen) {
  if (!listen) return {"127.0.0.1", kUsualPort};
  const auto address = host::parseListenAddress(*listen);
  if (!address) throwBadOption("--listen", *listen, "expect_listen");
  return *address;
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
  siteOptions.language = {adapters::textLanguage(), isRightToLeft};
  serverOptions.language = siteOptions.language;
  siteOptions.publish = [&](const std::string& event, const std::string& data) {
    if (server) server->publish(event, data);
  };
  host::HomeSite site(home.scheduler(), home.file(), siteOptions);
  server.emplace(serverOptions,
                 [&](const host::WebRequest& request) { return site.answer(request); });
  home.scheduler().onEntry([&](const host::ShownWidget& shown) { site.entryIsNew(shown); });
  home.onHomeScreen([&] { site.homeScreenIsNew(); });

  const HomeAnnouncement announcement(server->port(), server->url());
  out << stringWithFormat(appText("home_serving"), {server->url()}) << std::endl;
  home.run();
  server->stop();
}

}  // namespace lumenquest::app
