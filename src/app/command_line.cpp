#include "app/command_line.h"

#include <cerrno>
#include <ostream>
#include <system_error>

#include "adapters/gazetteer.h"
#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "app/command_set.h"
#include "app/completion.h"
#include "app/option_values.h"
#include "app/places_command.h"
#include "app/plans_command.h"
#include "app/runtime.h"
#include "app/settings_command.h"
#include "app/today_command.h"
#include "app/widget_picture.h"
#include "app/widget_request.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

namespace {

using platform::stringWithFormat;

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

}  // namespace

void addCommands(CommandSet& commands, std::ostream& out, const ServeHome& serveHome) {
  addTodayCommand(commands);
  addWidgetCommands(commands);
  addPictureCommands(commands);
  addPlacesCommands(commands);
  addPlansCommands(commands);
  addSettingsCommands(commands);
  addHomeCommands(commands, out, serveHome);
}

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
        const ServeHome& serveHome) {
  installServices({MessageLocale(arguments)});
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

  std::string output;
  try {
    CommandSet commands;
    addCommands(commands, out, serveHome);
    if (!arguments.empty() && arguments.front() == kCompleteCommand) {
      output = completionLines(commands.outline(), {arguments.begin() + 1, arguments.end()});
    } else {
      output = commands.Run(arguments);
    }
  } catch (const UsageError& error) {
    return fail(kExitUsage, error.what());
  } catch (const adapters::GazetteerError& failure) {
    return fail(kExitFailure, adapters::printableText(failure.error.localizedDescription(), 400));
  } catch (const std::exception& error) {
    return fail(kExitFailure, adapters::printableText(error.what(), 400));
  }

  // A command that writes as it goes has seen to its reader itself.
  if (output.empty()) return kExitSuccess;
  errno = 0;
  out << output << std::flush;
  if (!out) {
    return fail(kExitFailure, stringWithFormat(appText("error_output"),
                                               {std::generic_category().message(errno)}));
  }
  return kExitSuccess;
}

}  // namespace lumenquest::app
