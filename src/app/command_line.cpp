#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <map>
#include <memory>
#include <ostream>
#include <system_error>

#include "adapters/clocks.h"
#include "adapters/gazetteer.h"
#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "app/option_values.h"
#include "app/places_command.h"
#include "app/runtime.h"
#include "app/settings_command.h"
#include "app/today_command.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

namespace {

using platform::stringWithFormat;

constexpr const char* kCommands = "today, places, settings";

/// An option or argument of a command: the keys of its help and of what would be right for it.
struct OptionSpec {
  /// As in "--latitude"; a positional argument has no dashes.
  const char* name;
  const char* valueName;
  const char* helpKey;
  const char* expectationKey;
  OptionText* value;
};

/// The language of help and errors: a valid --locale wherever it stands, else the environment's.
std::string MessageLocale(const std::vector<std::string>& arguments) {
  static const std::string option = "--locale";
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    OptionText tag;
    if (arguments[i] == option && i + 1 < arguments.size()) tag = arguments[i + 1];
    if (arguments[i].starts_with(option + "=")) tag = arguments[i].substr(option.size() + 1);
    if (!tag) continue;
    if (const auto locale = adapters::localeIdentifier(*tag)) return *locale;
  }
  return adapters::environmentLocale();
}

/// Help with the words of the user's language.
class HelpFormatter final : public CLI::Formatter {
 public:
  void SetUsage(const CLI::App& command, const char* key) { usageKeys_[&command] = key; }

  std::string make_usage(const CLI::App* command, std::string) const override {
    return "\n" + appText(usageKeys_.at(command)) + "\n";
  }

 private:
  std::map<const CLI::App*, const char*> usageKeys_;
};

[[noreturn]] void ThrowNoValue(const OptionSpec& option) {
  throw UsageError(
      stringWithFormat(appText("error_no_value"), {option.name, appText(option.expectationKey)}));
}

/// The command line: commands with their options, in the user's language.
class CommandLine {
 public:
  CommandLine() : app_(appText("help_app"), "lumenquest") {
    formatter_->label("Positionals", appText("help_arguments"));
    formatter_->SetUsage(app_, "help_usage_app");
    app_.formatter(formatter_);
    app_.footer(appText("help_app_examples"));
    SetHelp(app_);
    app_.set_version_flag("--version", "lumenquest " LUMENQUEST_VERSION, appText("help_version"))
        ->group(appText("help_options"));
  }

  CLI::App* AddCommand(CLI::App* parent, const char* name, const char* usageKey,
                       const char* helpKey, const char* examplesKey,
                       std::initializer_list<OptionSpec> options) {
    CLI::App* command = parent->add_subcommand(name, appText(helpKey));
    formatter_->SetUsage(*command, usageKey);
    command->group(appText("help_commands"));
    command->footer(appText(examplesKey));
    command->option_defaults()->group(appText("help_options"));
    SetHelp(*command);
    for (const OptionSpec& option : options) {
      options_.push_back(option);
      const auto take = [option](const std::string& text) {
        // The next option where a value should stand: the value was forgotten.
        if (text.starts_with("--")) ThrowNoValue(option);
        *option.value = text;
      };
      command->add_option_function<std::string>(option.name, take, appText(option.helpKey))
          ->type_name(option.valueName)
          ->take_last();
    }
    return command;
  }

  CLI::App& app() { return app_; }

  /// The innermost command that was named.
  const CLI::App& named() const {
    const CLI::App* command = &app_;
    while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
    return *command;
  }

  /// What the parser found wrong, in one line of the user's language.
  std::string Describe(const CLI::ParseError& error,
                       const std::vector<std::string>& arguments) const {
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
      const std::string message = error.what();
      for (const OptionSpec& option : options_) {
        if (!message.starts_with(std::string(option.name) + ":")) continue;
        return stringWithFormat(appText("error_no_value"),
                                {option.name, appText(option.expectationKey)});
      }
    }
    const std::vector<std::string> unexpected = app_.remaining(true);
    if (unexpected.empty()) return appText("error_usage");
    const std::string shown = adapters::printableText(unexpected.front());
    const bool isCommand = unexpected.front() == arguments.front() && !shown.starts_with("-");
    if (isCommand) return stringWithFormat(appText("error_unknown_command"), {shown, kCommands});
    std::string help = "--help";
    for (const CLI::App* command = &named(); command != nullptr; command = command->get_parent()) {
      help = command->get_name() + " " + help;
    }
    return stringWithFormat(appText("error_unexpected_argument"), {shown, help});
  }

 private:
  static void SetHelp(CLI::App& command) {
    command.set_help_flag("-h,--help", appText("help_help"))->group(appText("help_options"));
  }

  std::shared_ptr<HelpFormatter> formatter_ = std::make_shared<HelpFormatter>();
  CLI::App app_;
  std::vector<OptionSpec> options_;
};

}  // namespace

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  installServices(MessageLocale(arguments), std::make_shared<adapters::SystemClock>());
  const std::string errorLine = appText("error_line");
  if (errorLine.empty()) {
    // The one message that cannot come from the tables.
    err << "lumenquest: the string tables are missing: install them in " << resourceFolder()
        << "/strings\n";
    return kExitFailure;
  }
  const auto fail = [&](int code, const std::string& message) {
    err << stringWithFormat(errorLine, {message}) << '\n';
    return code;
  };

  CommandLine line;
  TodayOptions t;
  const OptionSpec format{"--format", "text|json", "help_format", "expect_format", &t.format};
  CLI::App* today =
      line.AddCommand(&line.app(), "today", "help_usage_today", "help_today", "help_today_examples",
                      {{"--place", "TEXT", "help_place", "expect_place", &t.place},
                       {"--latitude", "DEG", "help_latitude", "expect_latitude", &t.latitude},
                       {"--longitude", "DEG", "help_longitude", "expect_longitude", &t.longitude},
                       {"--time-zone", "IANA", "help_time_zone", "expect_time_zone", &t.timeZone},
                       {"--at", "INSTANT", "help_at", "expect_at", &t.at},
                       {"--locale", "TAG", "help_locale", "expect_locale", &t.locale},
                       format});

  PlacesOptions p;
  OptionSpec placesFormat = format;
  placesFormat.value = &p.format;
  const OptionSpec placesLocale{"--locale", "TAG", "help_locale", "expect_locale", &p.locale};
  CLI::App* places = line.AddCommand(&line.app(), "places", "help_usage_places", "help_places",
                                     "help_places_examples", {});
  const CLI::App* search = line.AddCommand(
      places, "search", "help_usage_places_search", "help_places_search", "help_places_examples",
      {{"TEXT", "", "help_places_text", "expect_place", &p.text}, placesLocale, placesFormat});
  const CLI::App* at = line.AddCommand(
      places, "at", "help_usage_places_at", "help_places_at", "help_places_examples",
      {{"COORDINATE", "", "help_places_coordinate", "expect_coordinate", &p.text},
       placesLocale,
       placesFormat});

  SettingsOptions s;
  OptionSpec settingsFormat = format;
  settingsFormat.value = &s.format;
  const OptionSpec key{"KEY", "", "help_setting_key", "expect_text", &s.key};
  CLI::App* settings = line.AddCommand(&line.app(), "settings", "help_usage_settings",
                                       "help_settings", "help_settings_examples", {});
  const CLI::App* list =
      line.AddCommand(settings, "list", "help_usage_settings_list", "help_settings_list",
                      "help_settings_examples", {settingsFormat});
  const CLI::App* get =
      line.AddCommand(settings, "get", "help_usage_settings_get", "help_settings_get",
                      "help_settings_examples", {key, settingsFormat});
  const CLI::App* set = line.AddCommand(
      settings, "set", "help_usage_settings_set", "help_settings_set", "help_settings_examples",
      {key, {"VALUE", "", "help_setting_value", "expect_text", &s.value}});

  std::string output;
  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    line.app().parse(reversed);
    if (today->parsed()) {
      output = runToday(t);
    } else if (search->parsed()) {
      output = searchPlaces(p);
    } else if (at->parsed()) {
      output = placesAt(p);
    } else if (list->parsed()) {
      output = listSettings(s);
    } else if (get->parsed()) {
      output = getSetting(s);
    } else if (set->parsed()) {
      output = setSetting(s);
    } else {
      const char* commands = settings->parsed() ? "list, get, set"
                             : places->parsed() ? "search, at"
                                                : kCommands;
      return fail(kExitUsage, stringWithFormat(appText("error_no_command"), {commands}));
    }
  } catch (const CLI::CallForHelp&) {
    output = line.named().help();
  } catch (const CLI::CallForVersion& version) {
    output = std::string(version.what()) + "\n";
  } catch (const CLI::ParseError& error) {
    return fail(kExitUsage, line.Describe(error, arguments));
  } catch (const UsageError& error) {
    return fail(kExitUsage, error.what());
  } catch (const adapters::GazetteerError& failure) {
    return fail(kExitFailure, adapters::printableText(failure.error.localizedDescription(), 400));
  } catch (const std::exception& error) {
    return fail(kExitFailure, adapters::printableText(error.what(), 400));
  }

  errno = 0;
  out << output << std::flush;
  if (!out) {
    return fail(kExitFailure, stringWithFormat(appText("error_output"),
                                               {std::generic_category().message(errno)}));
  }
  return kExitSuccess;
}

}  // namespace lumenquest::app
