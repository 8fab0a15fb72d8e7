// Serves a home screen for the browser tests: real widgets, drawn as the command draws them, on a
// clock that stands and goes on when a line on standard input says so.
//
//     home_server INSTANT LOCALE    prints its address
//     advance SECONDS               on standard input; prints "advanced"
//     file TEXT                     the home screen's file becomes this; prints "written"
//
// The home screen and the settings live in memory, the device is in Bled; the plans are those under
// $XDG_DATA_HOME.

#include <glib.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "adapters/icu_services.h"
#include "adapters/svg_canvas.h"
#include "app/runtime.h"
#include "app/widget_picture.h"
#include "host/home_site.h"
#include "host/web_server.h"
#include "widget_world.h"

namespace lumenquest::testing {
namespace {

class TextInMemory final : public platform::TextFile {
 public:
  platform::Outcome<std::optional<std::string>> contents() const override { return text_; }
  std::optional<platform::NSError> update(
      const std::function<std::string(const std::optional<std::string>& text)>& change) override {
    text_ = change(text_);
    return std::nullopt;
  }
  void Write(std::string text) { text_ = std::move(text); }

 private:
  std::optional<std::string> text_;
};

class AlarmOnVirtualClock final : public platform::Alarm {
 public:
  void onRing(std::function<void(Reason reason)> listener) override {
    listener_ = std::move(listener);
  }
  void set(platform::NSDate date) override { date_ = date; }
  void RingIfDue() {
    if (date_ && *date_ <= platform::NSDate::date()) listener_(Reason::due);
  }

 private:
  std::function<void(Reason reason)> listener_;
  std::optional<platform::NSDate> date_;
};

std::string Read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

int Serve(const std::string& instant, const std::string& locale) {
  const auto clock = std::make_shared<VirtualClock>(Instant(instant));
  app::RuntimeOptions runtime;
  runtime.locale = locale;
  runtime.clock = clock;
  runtime.hasOwnSettings = true;
  runtime.here = platform::CLLocationCoordinate2D{46.36, 14.09};
  app::installServices(runtime);

  const bool isRightToLeft = adapters::isRightToLeft(locale);
  host::HomeSiteOptions options;
  options.drawWidget = [&](const host::ShownWidget& shown, platform::ColorScheme scheme,
                           const std::string& idPrefix) {
    widgets::view::Environment environment;
    environment.family = shown.widget.family;
    environment.colorScheme = scheme;
    if (isRightToLeft) environment.layoutDirection = widgets::view::LayoutDirection::rightToLeft;
    const widgets::view::Element view = host::viewOf(shown.entry, environment);
    app::PictureOptions picture;
    picture.size = widgets::view::sizeOf(shown.widget.family);
    picture.title = host::configurationOf(shown.widget.kind)->displayName;
    picture.idPrefix = idPrefix;
    return app::pictureOf(view, environment, app::PictureFormat::svg, picture);
  };
  options.drawPng = [](const host::ShownWidget&, platform::ColorScheme, double) { return ""; };
  options.writeRecord = [](const host::ShownWidget&) { return "{}"; };
  options.drawImage = [](const platform::UIImage& image) {
    adapters::SvgCanvas canvas(image.size, "i");
    canvas.drawImage(image, {0.0, 0.0, image.size.width, image.size.height}, {});
    return canvas.document("", "");
  };
  const std::string resources = app::resourceFolder();
  for (const std::string name : {"style.css", "home.js", "edit.js"}) {
    options.files[name] = Read(resources + "/web/" + name);
  }
  options.files["icon.svg"] = Read(resources + "/art/appIcon.svg");
  options.language = {locale, isRightToLeft};
  std::replace(options.language.tag.begin(), options.language.tag.end(), '_', '-');
  host::WebServer* publisher = nullptr;
  options.publish = [&](const std::string& event, const std::string& data) {
    if (publisher != nullptr) publisher->publish(event, data);
  };

  const auto text = std::make_shared<TextInMemory>();
  host::HomeScreenFile file(text);
  const auto alarm = std::make_shared<AlarmOnVirtualClock>();
  host::Scheduler scheduler({alarm, nullptr, locale});
  host::HomeSite site(scheduler, file, options);
  scheduler.onEntry([&](const host::ShownWidget& shown) { site.entryIsNew(shown); });
  host::WebServer server({}, [&](const host::WebRequest& request) { return site.answer(request); });
  publisher = &server;
  scheduler.show(file.load());
  std::cout << server.url() << std::endl;

  GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
  std::function<bool()> readLine = [&] {
    std::string line;
    std::string word;
    double seconds = 0.0;
    if (!std::getline(std::cin, line)) {
      g_main_loop_quit(loop);
      return false;
    }
    constexpr std::string_view kFile = "file ";
    if (line.starts_with(kFile)) {
      text->Write(line.substr(kFile.size()));
      std::cout << "written" << std::endl;
      return true;
    }
    if (std::istringstream(line) >> word >> seconds && word == "advance") {
      clock->Advance(seconds);
      alarm->RingIfDue();
      std::cout << "advanced" << std::endl;
    }
    return true;
  };
  GIOChannel* const input = g_io_channel_unix_new(0);
  g_io_add_watch(
      input, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP),
      [](GIOChannel*, GIOCondition, gpointer data) -> gboolean {
        return (*static_cast<std::function<bool()>*>(data))() ? TRUE : FALSE;
      },
      &readLine);
  g_main_loop_run(loop);
  g_io_channel_unref(input);
  g_main_loop_unref(loop);
  return 0;
}

}  // namespace
}  // namespace lumenquest::testing

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "home_server: give an instant, such as 2027-08-12T21:30:00+02:00, and a locale\n";
    return 2;
  }
  return lumenquest::testing::Serve(argv[1], argv[2]);
}
