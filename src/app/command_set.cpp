#include "app/command_set.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string_view>
#include <utility>

#include "adapters/printable_text.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

using platform::stringWithFormat;

namespace {

[[noreturn]] void ThrowNoValue(const OptionSpec& option) {
  throw UsageError(
      stringWithFormat(appText("error_no_value"), {option.name, appText(option.expectationKey)}));
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

void SetHelp(CLI::App& command) {
  command.set_help_flag("-h,--help", appText("help_help"))->group(appText("help_options"));
}

}  // namespace

class CommandSet::Command : public CLI::App {
 public:
  using CLI::App::App;
};

class CommandSet::Implementation {
 public:
  Implementation() : app(appText("help_app"), "lumenquest") {
    formatter->label("Positionals", appText("help_arguments"));
    formatter->SetUsage(app, "help_usage_app");
    app.formatter(formatter);
    app.footer(appText("help_app_examples"));
    SetHelp(app);
    app.set_version_flag("--version", "lumenquest " LUMENQUEST_VERSION, appText("help_version"))
        ->group(appText("help_options"));
  }

  Command& Add(CLI::App& parent, const char* name, const CommandHelp& help) {
    auto made = std::make_shared<Command>(appText(help.helpKey), name);
    Command& command = *made;
    command.formatter(formatter);
    parent.add_subcommand(std::move(made));
    formatter->SetUsage(command, help.usageKey);
    command.group(appText("help_commands"));
    command.footer(appText(help.examplesKey));
    command.option_defaults()->group(appText("help_options"));
    SetHelp(command);
    return command;
  }

  void AddOption(CLI::App& command, const OptionSpec& option) {
    const std::string help = appText(option.helpKey);
    if (auto* const flag = std::get_if<bool*>(&option.value)) {
      command.add_flag(option.name, **flag, help);
      return;
    }
    options.push_back(option);
    if (auto* const list = std::get_if<std::vector<std::string>*>(&option.value)) {
      command.add_option(option.name, **list, help)->type_name(option.valueName);
      return;
    }
    const auto take = [option](const std::string& text) {
      // The next option where a value should stand: the value was forgotten.
      if (text.starts_with("--")) ThrowNoValue(option);
      *std::get<OptionText*>(option.value) = text;
    };
    command.add_option_function<std::string>(option.name, take, help)
        ->type_name(option.valueName)
        ->take_last();
  }

  /// The innermost command that was named.
  const CLI::App& named() const {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
    return *command;
  }

  /// "today, places, settings": what may stand after a command.
  static std::string SubcommandsOf(const CLI::App& command) {
    std::string names;
    for (const CLI::App* sub : command.get_subcommands([](const CLI::App*) { return true; })) {
      if (!names.empty()) names += ", ";
      names += sub->get_name();
    }
    return names;
  }

  /// What the parser found wrong, in one line of the user's language.
  std::string Describe(const CLI::ParseError& error,
                       const std::vector<std::string>& arguments) const {
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
      const std::string message = error.what();
      for (const OptionSpec& option : options) {
        const std::string_view name = option.name;
        if (!message.starts_with(std::string(name.substr(name.rfind(',') + 1)) + ":")) continue;
        return stringWithFormat(appText("error_no_value"),
                                {option.name, appText(option.expectationKey)});
      }
    }
    const std::vector<std::string> unexpected = app.remaining(true);
    if (unexpected.empty()) return appText("error_usage");
    const std::string shown = adapters::printableText(unexpected.front());
    const bool isCommand = unexpected.front() == arguments.front() && !shown.starts_with("-");
    if (isCommand) {
      return stringWithFormat(appText("error_unknown_command"), {shown, SubcommandsOf(app)});
    }
    std::string help = "--help";
    for (const CLI::App* command = &named(); command != nullptr; command = command->get_parent()) {
      help = command->get_name() + " " + help;
    }
    return stringWithFormat(appText("error_unexpected_argument"), {shown, help});
  }

  std::shared_ptr<HelpFormatter> formatter = std::make_shared<HelpFormatter>();
  CLI::App app;
  std::vector<OptionSpec> options;
  std::map<const CLI::App*, Action> actions;
};

CommandSet::CommandSet() : implementation_(std::make_unique<Implementation>()) {}

CommandSet::~CommandSet() = default;

void CommandSet::Add(const char* name, const CommandHelp& help,
                     std::initializer_list<OptionSpec> options, Action action) {
  Command& command = implementation_->Add(implementation_->app, name, help);
  for (const OptionSpec& option : options) implementation_->AddOption(command, option);
  implementation_->actions[&command] = std::move(action);
}

CommandSet::Command& CommandSet::AddGroup(const char* name, const CommandHelp& help) {
  return implementation_->Add(implementation_->app, name, help);
}

void CommandSet::Add(Command& group, const char* name, const CommandHelp& help,
                     std::initializer_list<OptionSpec> options, Action action) {
  Command& command = implementation_->Add(group, name, help);
  for (const OptionSpec& option : options) implementation_->AddOption(command, option);
  implementation_->actions[&command] = std::move(action);
}

std::string CommandSet::Run(const std::vector<std::string>& arguments) {
  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    implementation_->app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    return implementation_->named().help();
  } catch (const CLI::CallForVersion& version) {
    return std::string(version.what()) + "\n";
  } catch (const CLI::ParseError& error) {
    throw UsageError(implementation_->Describe(error, arguments));
  }
  const CLI::App& named = implementation_->named();
  const auto action = implementation_->actions.find(&named);
  if (action == implementation_->actions.end()) {
    throw UsageError(
        stringWithFormat(appText("error_no_command"), {Implementation::SubcommandsOf(named)}));
  }
  return action->second();
}

OptionSpec placeOption(OptionText& value) {
  return {"--place", "TEXT", "help_place", "expect_place", &value};
}

OptionSpec latitudeOption(OptionText& value) {
  return {"--latitude", "DEG", "help_latitude", "expect_latitude", &value};
}

OptionSpec longitudeOption(OptionText& value) {
  return {"--longitude", "DEG", "help_longitude", "expect_longitude", &value};
}

OptionSpec timeZoneOption(OptionText& value) {
  return {"--time-zone", "IANA", "help_time_zone", "expect_time_zone", &value};
}

OptionSpec atOption(OptionText& value) {
  return {"--at", "INSTANT", "help_at", "expect_at", &value};
}

OptionSpec localeOption(OptionText& value) {
  return {"--locale", "TAG", "help_locale", "expect_locale", &value};
}

OptionSpec formatOption(OptionText& value) {
  return {"--format", "text|json", "help_format", "expect_format", &value};
}

}  // namespace lumenquest::app
