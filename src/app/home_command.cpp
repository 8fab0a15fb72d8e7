#include "app/home_command.h"

#include <gio/gio.h>
#include <glib-unix.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <stdexcept>
#include <system_error>

#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "adapters/shared_text_file.h"
#include "app/entry_output.h"
#include "app/running_home.h"
#include "app/suggestions.h"
#include "app/table.h"
#include "app/widget_picture.h"
#include "platform/localized_strings.h"
#include "widgets/view/style.h"

namespace lumenquest::app {

namespace {

namespace fs = std::filesystem;
namespace view = widgets::view;
using host::HomeScreen;
using host::PlacedWidget;
using host::ShownWidget;
using Json = nlohmann::ordered_json;
using platform::stringWithFormat;

struct HomeCommandOptions {
  OptionText id;
  OptionText position;
  /// Of a widget to add, or what is changed of one.
  WidgetOptions widget;
  OptionText format;
  HomeOptions host;
  OptionText listen;
  OptionText folder;
  OptionText scale;
  OptionText scheme;
  bool once = false;
  std::vector<std::string> ids;
  OptionText url;
};

/// The widgets of the home screen; none where it cannot be read.
std::vector<Suggestion> SuggestWidgets(const std::string&) try {
  std::vector<Suggestion> words;
  const HomeScreen screen = homeScreenFile().load();
  for (const PlacedWidget& widget : screen.widgets()) {
    words.push_back({widget.id, widget.kind});
  }
  return words;
} catch (const std::exception&) {
  return {};
}

/// The sizes of the widget that the first argument names.
std::vector<Suggestion> SizesOfWidget(const std::vector<std::string>& arguments) try {
  if (arguments.empty()) return {};
  const HomeScreen screen = homeScreenFile().load();
  const PlacedWidget* const widget = screen.find(arguments.front());
  return widget == nullptr ? std::vector<Suggestion>() : suggestFamiliesOfKind({widget->kind});
} catch (const std::exception&) {
  return {};
}

std::string PlaceText(const PlacedWidget& widget) {
  const auto configuration = host::configurationOf(widget.kind);
  if (configuration->intent == widgets::ConfigurationIntent::themeSelector) return "--";
  const auto place = widget.place.value_or(widgets::IntentPlacemark::myLocation());
  return adapters::printableText(place.name, 60);
}

std::string List(const HomeCommandOptions& options) {
  installServices({checkedLocale(options.host.locale)});
  const bool isJson = parseFormat(options.format) == OutputFormat::json;
  const HomeScreen screen = homeScreenFile().load();
  if (isJson) return screen.toJson();
  if (screen.widgets().empty()) return appText("home_empty") + "\n";
  Table table;
  for (const PlacedWidget& widget : screen.widgets()) {
    table.Row({widget.id, widget.kind, host::familyName(widget.family),
               host::themeName(widget.theme), PlaceText(widget)});
  }
  return table.Text();
}

/// Counted from 1, as people do.
std::optional<std::size_t> ParsePosition(const char* option, const OptionText& text) {
  if (!text) return std::nullopt;
  const auto number = parseNumber(*text);
  if (!number || !(*number >= 1.0 && *number <= HomeScreen::kMostWidgets) ||
      *number != static_cast<double>(static_cast<std::size_t>(*number))) {
    throwBadOption(option, *text, "expect_position");
  }
  return static_cast<std::size_t>(*number) - 1;
}

std::string GivenId(const HomeCommandOptions& options) {
  if (options.id) return *options.id;
  throw UsageError(
      stringWithFormat(appText("error_missing_option"), {"ID", appText("expect_widget_id")}));
}

std::string Add(const HomeCommandOptions& options) {
  const std::string locale = checkedLocale(options.widget.locale);
  installServices({locale});
  PlacedWidget widget = parseWidget(options.widget, locale);
  widget.id = options.id.value_or("");
  const auto position = ParsePosition("--position", options.position);
  std::string id;
  homeScreenFile().update([&](HomeScreen& screen) { id = screen.add(widget, position); });
  return id + "\n";
}

std::string Remove(const HomeCommandOptions& options) {
  const std::string id = GivenId(options);
  homeScreenFile().update([&](HomeScreen& screen) { screen.remove(id); });
  return "";
}

std::string Move(const HomeCommandOptions& options) {
  const std::string id = GivenId(options);
  const auto position = ParsePosition("POSITION", options.position);
  if (!position) {
    throw UsageError(stringWithFormat(appText("error_missing_option"),
                                      {"POSITION", appText("expect_position")}));
  }
  homeScreenFile().update([&](HomeScreen& screen) { screen.move(id, *position); });
  return "";
}

std::string Set(const HomeCommandOptions& options) {
  const std::string locale = checkedLocale(options.widget.locale);
  installServices({locale});
  const std::string id = GivenId(options);
  const WidgetOptions& given = options.widget;
  const bool isAboutPlace = hasPlace(given.place) || given.myLocation;
  if (!isAboutPlace && !given.family && !given.theme) {
    throw UsageError(appText("error_nothing_to_set"));
  }
  homeScreenFile().update([&](HomeScreen& screen) {
    PlacedWidget changed = screen.at(id);
    WidgetOptions wanted = given;
    wanted.kind = changed.kind;
    const PlacedWidget parsed = parseWidget(wanted, locale);
    if (isAboutPlace) changed.place = parsed.place;
    if (given.family) changed.family = parsed.family;
    if (given.theme) changed.theme = parsed.theme;
    screen.replace(changed);
  });
  return "";
}

/// The widgets of a host that were named, or all of them.
class Chosen {
 public:
  Chosen(const std::vector<std::string>& ids, const HomeScreen& screen)
      : ids_(ids.begin(), ids.end()) {
    for (const std::string& id : ids) screen.at(id);
  }
  bool holds(const std::string& id) const { return ids_.empty() || ids_.contains(id); }

 private:
  std::set<std::string> ids_;
};

/// Writes pictures into a folder, and a list of them.
class Exporter {
 public:
  Exporter(fs::path folder, double scale, view::Environment environment)
      : folder_(std::move(folder)), scale_(scale), environment_(environment) {
    makeFolder(folder_);
    const auto old = adapters::SharedTextFile(folder_ / kList).contents();
    const Json list = Json::parse(old.value.value_or(""), nullptr, false);
    if (!list.is_object() || !list.contains("widgets") || !list.at("widgets").is_array()) return;
    for (const Json& one : list.at("widgets")) {
      if (one.is_object() && one.contains("file") && one.at("file").is_string()) {
        written_.insert(one.at("file").get<std::string>());
      }
    }
  }

  void Write(const ShownWidget& shown) {
    // Somebody may have swept it away meanwhile, as people do with a cache.
    makeFolder(folder_);
    view::Environment environment = environment_;
    environment.family = shown.widget.family;
    const view::Element element = host::viewOf(shown.entry, environment);
    PictureOptions options;
    options.size = view::sizeOf(shown.widget.family);
    options.scale = scale_;
    writePicture((folder_ / FileOf(shown)).string(),
                 pictureOf(element, environment, PictureFormat::png, options));
  }

  /// The list, last: what it names is there. Pictures that it named and names no more go.
  void WriteList(const std::vector<ShownWidget>& all) {
    Json widgets = Json::array();
    std::set<std::string> files;
    for (const ShownWidget& shown : all) {
      if (shown.isPlaceholder) continue;
      files.insert(FileOf(shown));
      widgets.push_back(widgetJson(shown));
      widgets.back()["file"] = FileOf(shown);
    }
    writePicture(
        (folder_ / kList).string(),
        Json{{"widgets", widgets}}.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    for (const std::string& file : written_) {
      // Names of our own making alone: the list might have been written by somebody else.
      const fs::path path = fs::path(file).filename();
      std::error_code ignored;
      if (!files.contains(file) && path == file && path.extension() == ".png") {
        fs::remove(folder_ / path, ignored);
      }
    }
    written_ = std::move(files);
  }

 private:
  static constexpr const char* kList = "index.json";
  static std::string FileOf(const ShownWidget& shown) { return shown.widget.id + ".png"; }

  fs::path folder_;
  double scale_;
  view::Environment environment_;
  std::set<std::string> written_;
};

std::string Export(const HomeCommandOptions& options) {
  if (!options.folder) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {"DIR", appText("expect_folder")}));
  }
  view::Environment environment;
  environment.colorScheme = parseScheme(options.scheme);
  const double scale = parseScale(options.scale);
  HomeHost home(options.host);
  if (adapters::isRightToLeft(home.locale())) {
    environment.layoutDirection = view::LayoutDirection::rightToLeft;
  }
  Exporter exporter(*options.folder, scale, environment);
  bool isDue = true;
  std::set<std::string> due;
  std::set<std::string> fresh;
  home.scheduler().onEntry([&](const ShownWidget& shown) {
    due.insert(shown.widget.id);
    fresh.insert(shown.widget.id);
    isDue = true;
  });
  home.onHomeScreen([&] { isDue = true; });
  const auto write = [&] {
    for (const ShownWidget& shown : home.scheduler().shown()) {
      if (!due.contains(shown.widget.id)) continue;
      exporter.Write(shown);
      due.erase(shown.widget.id);
    }
    exporter.WriteList(home.scheduler().shown());
  };
  std::string trouble;
  home.run([&] {
    try {
      if (std::exchange(isDue, false)) {
        write();
        trouble.clear();
      }
    } catch (const std::runtime_error& error) {
      if (options.once) throw;
      // The disk may be full for an hour: what is due is written with the next entry.
      if (trouble != error.what()) reportTrouble(error.what());
      trouble = error.what();
    }
    return options.once && fresh.size() == home.scheduler().shown().size();
  });
  return "";
}

std::string Markup(const std::string& text) {
  gchar* const escaped = g_markup_escape_text(text.c_str(), static_cast<gssize>(text.size()));
  std::string markup = escaped;
  g_free(escaped);
  return markup;
}

/// A line for status bars, whose modules take "text", "tooltip" and "class". The texts are
/// markup there: a plan called "Sun & Moon" would not be shown at all.
std::string WaybarLine(const std::vector<ShownWidget>& all,
                       const std::function<bool(const std::string& id)>& holds) {
  std::string text;
  std::string tooltip;
  Json classes = Json::array();
  for (const ShownWidget& shown : all) {
    if (!holds(shown.widget.id) || shown.isPlaceholder) continue;
    const Json widget = widgetJson(shown);
    text += (text.empty() ? "" : "  ") + Markup(widget["text"]);
    tooltip += (tooltip.empty() ? "" : "\n\n") + Markup(widget["details"]);
    for (const char* const name : {"id", "state"}) {
      if (std::find(classes.begin(), classes.end(), widget[name]) == classes.end()) {
        classes.push_back(widget[name]);
      }
    }
  }
  return Json{{"text", text}, {"tooltip", tooltip}, {"class", classes}}.dump(
      -1, ' ', false, Json::error_handler_t::replace);
}

std::string EntryLine(const ShownWidget& shown) {
  Json line = widgetJson(shown);
  line["entry"] = entryJson(shown.entry);
  return line.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Whether whoever reads the standard output has gone. A bar that is started anew would otherwise
/// leave its watchers behind until they have something to say.
class ReaderWatch {
 public:
  ReaderWatch() {
    const auto gone = [](gint, GIOCondition, gpointer self) -> gboolean {
      static_cast<ReaderWatch*>(self)->isGone_ = true;
      static_cast<ReaderWatch*>(self)->source_ = 0;
      return G_SOURCE_REMOVE;
    };
    struct stat status {};
    const bool isPipe = ::fstat(STDOUT_FILENO, &status) == 0 &&
                        (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
    if (isPipe) source_ = g_unix_fd_add(STDOUT_FILENO, G_IO_ERR, gone, this);
  }
  ~ReaderWatch() {
    if (source_ != 0) g_source_remove(source_);
  }
  ReaderWatch(const ReaderWatch&) = delete;
  ReaderWatch& operator=(const ReaderWatch&) = delete;

  bool isGone() const { return isGone_; }

 private:
  bool isGone_ = false;
  unsigned source_ = 0;
};

std::string Watch(const HomeCommandOptions& options, std::ostream& out) {
  const std::string format = options.format.value_or("jsonl");
  if (format != "waybar" && format != "jsonl") {
    throwBadOption("--format", format, "expect_watch_format");
  }
  HomeHost home(options.host);
  const bool isBar = format == "waybar";
  const Chosen chosen(options.ids, home.file().load());
  // A bar has room for one.
  const auto holds = [&](const std::string& id) {
    if (isBar && options.ids.empty()) return home.scheduler().shown().front().widget.id == id;
    return chosen.holds(id);
  };
  bool isLineDue = false;
  int failure = 0;
  const auto write = [&](const std::string& line) {
    errno = 0;
    if (out && !(out << line << '\n' << std::flush)) failure = errno;
  };
  std::set<std::string> fresh;
  home.scheduler().onEntry([&](const ShownWidget& shown) {
    fresh.insert(shown.widget.id);
    if (!holds(shown.widget.id)) return;
    if (isBar) {
      isLineDue = true;
    } else {
      write(EntryLine(shown));
    }
  });
  // What is there no more leaves the bar.
  home.onHomeScreen([&] { isLineDue = isBar; });
  const ReaderWatch reader;
  home.run([&] {
    if (std::exchange(isLineDue, false)) {
      write(WaybarLine(home.scheduler().shown(), holds));
    }
    const bool isOnceDone = options.once && fresh.size() == home.scheduler().shown().size();
    return reader.isGone() || !out.good() || isOnceDone;
  });
  // A reader who has enough is none that misses something.
  if (failure != 0 && failure != EPIPE) {
    throw std::runtime_error(
        stringWithFormat(appText("error_output"), {std::generic_category().message(failure)}));
  }
  return "";
}

std::string OpenPage(const HomeCommandOptions& options) {
  const std::string page = runningPage(options.url);
  GError* error = nullptr;
  if (!g_app_info_launch_default_for_uri(page.c_str(), nullptr, &error)) {
    const std::string reason = error->message;
    g_error_free(error);
    throw std::runtime_error(stringWithFormat(appText("error_browser"), {page, reason}));
  }
  return page + "\n";
}

}  // namespace

void addHomeCommands(CommandSet& commands, std::ostream& out, const ServeHome& serveHome) {
  HomeCommandOptions& o = commands.Keep<HomeCommandOptions>();
  CommandSet::Command& home =
      commands.AddGroup("home", {"help_usage_home", "help_home", "help_home_examples"});
  const auto add = [&](const char* name, const char* usageKey, const char* helpKey,
                       std::vector<OptionSpec> options, auto action) {
    commands.Add(home, name, {usageKey, helpKey, "help_home_examples"}, options, action);
  };
  const OptionSpec id{"ID", "", "help_widget_id", "expect_widget_id", &o.id, SuggestWidgets};
  const OptionSpec position{"POSITION", "", "help_position", "expect_position", &o.position};
  const auto family = [&o](SuggestionsAfter sizes) {
    return OptionSpec{"--family",      "small|medium|large", "help_home_family",
                      "expect_family", &o.widget.family,     {},
                      std::move(sizes)};
  };
  const std::vector<OptionSpec> configuration{
      placeOption(o.widget.place.place),
      latitudeOption(o.widget.place.latitude),
      longitudeOption(o.widget.place.longitude),
      {"--my-location", "", "help_home_my_location", nullptr, &o.widget.myLocation},
      {"--theme", "system|dark|light", "help_home_theme", "expect_theme", &o.widget.theme},
      localeOption(o.widget.locale)};
  const auto with = [](std::vector<OptionSpec> first, const std::vector<OptionSpec>& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
  };

  add("list", "help_usage_home_list", "help_home_list",
      {localeOption(o.host.locale), formatOption(o.format)}, [&o] { return List(o); });
  add("add", "help_usage_home_add", "help_home_add",
      with({{"KIND", "", "help_kind", "expect_kind", &o.widget.kind, suggestKinds},
            {"--id", "ID", "help_new_widget_id", "expect_widget_id", &o.id},
            {"--position", "N", "help_position", "expect_position", &o.position},
            family(suggestFamiliesOfKind)},
           configuration),
      [&o] { return Add(o); });
  add("set", "help_usage_home_set", "help_home_set",
      with({id, family(SizesOfWidget)}, configuration), [&o] { return Set(o); });
  add("move", "help_usage_home_move", "help_home_move", {id, position}, [&o] { return Move(o); });
  add("remove", "help_usage_home_remove", "help_home_remove", {id}, [&o] { return Remove(o); });
  add("serve", "help_usage_home_serve", "help_home_serve",
      with({{"--listen", "ADDRESS:PORT", "help_listen", "expect_listen", &o.listen}},
           homeOptionSpecs(o.host)),
      [&o, &out, serveHome] {
        serveHome(o.host, o.listen, out);
        return std::string();
      });
  const OptionSpec once{"--once", "", "help_once", nullptr, &o.once};
  add("export", "help_usage_home_export", "help_home_export",
      with({{"DIR", "", "help_export_folder", "expect_folder", &o.folder},
            scaleOption(o.scale),
            {"--scheme", "light|dark", "help_scheme", "expect_scheme", &o.scheme},
            once},
           homeOptionSpecs(o.host)),
      [&o] { return Export(o); });
  add("watch", "help_usage_home_watch", "help_home_watch",
      with({{"--format", "waybar|jsonl", "help_watch_format", "expect_watch_format", &o.format},
            {"--widget", "ID", "help_watch_widget", "expect_widget_id", &o.ids, SuggestWidgets},
            once},
           homeOptionSpecs(o.host)),
      [&o, &out] { return Watch(o, out); });
  add("open", "help_usage_home_open", "help_home_open",
      {{"URL", "", "help_open_url", "expect_deep_link", &o.url, suggestLinks}},
      [&o] { return OpenPage(o); });
}

}  // namespace lumenquest::app
