#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <ostream>

#include "adapters/clocks.h"
#include "adapters/icu_services.h"
#include "app/option_values.h"
#include "app/runtime.h"
#include "app/today_command.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

namespace {

using platform::stringWithFormat;

constexpr const char* kCommands = "today";

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

/// An option with a text value, taken as it stands.
void AddOption(CLI::App& command, const char* name, OptionText& value, const char* helpKey,
               const char* typeName) {
  command
      .add_option_function<std::string>(
          name, [&value](const std::string& text) { value = text; }, appText(helpKey))
      ->type_name(typeName)
      ->take_last();
}

/// What CLI11 found wrong, in one line of the user's language.
std::string Describe(const CLI::ParseError& error, const std::vector<std::string>& arguments,
                     const CLI::App& app) {
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string message = error.what();
    return stringWithFormat(appText("error_no_value"), {message.substr(0, message.find(':'))});
  }
  const std::vector<std::string> unexpected = app.remaining(true);
  if (unexpected.empty()) return error.what();
  const bool isCommand = !arguments.empty() && unexpected.front() == arguments.front() &&
                         !unexpected.front().starts_with("-");
  if (isCommand) {
    return stringWithFormat(appText("error_unknown_command"), {unexpected.front(), kCommands});
  }
  return stringWithFormat(appText("error_unexpected_argument"), {unexpected.front()});
}

}  // namespace

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  installServices(MessageLocale(arguments), std::make_shared<adapters::SystemClock>());
  const auto fail = [&](int code, const std::string& message) {
    err << stringWithFormat(appText("error_line"), {message}) << '\n';
    return code;
  };

  CLI::App app(appText("help_app"), "lumenquest");
  app.footer(appText("help_app_examples"));
  app.set_help_flag("-h,--help", appText("help_help"));
  app.set_version_flag("--version", "lumenquest " LUMENQUEST_VERSION, appText("help_version"));

  TodayOptions todayOptions;
  CLI::App* today = app.add_subcommand("today", appText("help_today"));
  today->footer(appText("help_today_examples"));
  today->set_help_flag("-h,--help", appText("help_help"));
  AddOption(*today, "--latitude", todayOptions.latitude, "help_latitude", "DEG");
  AddOption(*today, "--longitude", todayOptions.longitude, "help_longitude", "DEG");
  AddOption(*today, "--time-zone", todayOptions.timeZone, "help_time_zone", "IANA");
  AddOption(*today, "--at", todayOptions.at, "help_at", "INSTANT");
  AddOption(*today, "--locale", todayOptions.locale, "help_locale", "TAG");
  AddOption(*today, "--format", todayOptions.format, "help_format", "text|json");

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
  }

  out << output << std::flush;
  if (!out) {
    return fail(kExitFailure, stringWithFormat(appText("error_output"),
                                               {std::generic_category().message(errno)}));
  }
  return kExitSuccess;
}

}  // namespace lumenquest::app
