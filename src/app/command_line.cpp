#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <ostream>
#include <system_error>

#include "adapters/clocks.h"
#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "app/option_values.h"
#include "app/runtime.h"
#include "app/today_command.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

namespace {

using platform::stringWithFormat;

constexpr const char* kCommands = "today";

/// An option of `today`, with the keys of its help and of what would be right for it.
struct TodayOption {
  const char* name;
  const char* valueName;
  const char* helpKey;
  const char* expectationKey;
  OptionText TodayOptions::*value;
};

constexpr std::array<TodayOption, 6> kTodayOptions{{
    {"--latitude", "DEG", "help_latitude", "expect_latitude", &TodayOptions::latitude},
    {"--longitude", "DEG", "help_longitude", "expect_longitude", &TodayOptions::longitude},
    {"--time-zone", "IANA", "help_time_zone", "expect_time_zone", &TodayOptions::timeZone},
    {"--at", "INSTANT", "help_at", "expect_at", &TodayOptions::at},
    {"--locale", "TAG", "help_locale", "expect_locale", &TodayOptions::locale},
    {"--format", "text|json", "help_format", "expect_format", &TodayOptions::format},
}};

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
  std::string make_usage(const CLI::App* command, std::string) const override {
    return "\n" + appText(command->get_name() == "today" ? "help_usage_today" : "help_usage_app") +
           "\n";
  }
};

[[noreturn]] void ThrowNoValue(const TodayOption& option) {
  throw UsageError(
      stringWithFormat(appText("error_no_value"), {option.name, appText(option.expectationKey)}));
}

void AddOptions(CLI::App& command, TodayOptions& values) {
  command.option_defaults()->group(appText("help_options"));
  command.set_help_flag("-h,--help", appText("help_help"))->group(appText("help_options"));
  for (const TodayOption& option : kTodayOptions) {
    const auto take = [&option, &values](const std::string& text) {
      // The next option where a value should stand: the value was forgotten.
      if (text.starts_with("--")) ThrowNoValue(option);
      values.*option.value = text;
    };
    command.add_option_function<std::string>(option.name, take, appText(option.helpKey))
        ->type_name(option.valueName)
        ->take_last();
  }
}

/// What the parser found wrong, in one line of the user's language.
std::string Describe(const CLI::ParseError& error, const std::vector<std::string>& arguments,
                     const CLI::App& app) {
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string message = error.what();
    for (const TodayOption& option : kTodayOptions) {
      if (!message.starts_with(std::string(option.name) + ":")) continue;
      return stringWithFormat(appText("error_no_value"),
                              {option.name, appText(option.expectationKey)});
    }
  }
  const std::vector<std::string> unexpected = app.remaining(true);
  if (unexpected.empty()) return appText("error_usage");
  const bool isCommand = !arguments.empty() && unexpected.front() == arguments.front() &&
                         !unexpected.front().starts_with("-");
  const std::string shown = adapters::printableText(unexpected.front());
  if (isCommand) return stringWithFormat(appText("error_unknown_command"), {shown, kCommands});
  return stringWithFormat(
      appText("error_unexpected_argument"),
      {shown, arguments.front() == "today" ? "lumenquest today --help" : "lumenquest --help"});
}

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

  CLI::App app(appText("help_app"), "lumenquest");
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(appText("help_app_examples"));
  app.set_help_flag("-h,--help", appText("help_help"))->group(appText("help_options"));
  app.set_version_flag("--version", "lumenquest " LUMENQUEST_VERSION, appText("help_version"))
      ->group(appText("help_options"));

  TodayOptions todayOptions;
  CLI::App* today = app.add_subcommand("today", appText("help_today"));
  today->group(appText("help_commands"));
  today->footer(appText("help_today_examples"));
  AddOptions(*today, todayOptions);

  std::string output;
  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(reversed);
    if (!today->parsed()) {
      return fail(kExitUsage, stringWithFormat(appText("error_no_command"), {kCommands}));
    }
    output = runToday(todayOptions);
  } catch (const CLI::CallForHelp&) {
    output = (today->parsed() ? today : &app)->help();
  } catch (const CLI::CallForVersion& version) {
    output = std::string(version.what()) + "\n";
  } catch (const CLI::ParseError& error) {
    return fail(kExitUsage, Describe(error, arguments, app));
  } catch (const UsageError& error) {
    return fail(kExitUsage, error.what());
  } catch (const std::exception& error) {
    return fail(kExitFailure, adapters::printableText(error.what()));
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
