#include "app/command_set.h"

#include <CLI/CLI.hpp>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "adapters/printable_text.h"
#include "app/suggestions.h"
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

}  // namespace

/// A command, or a group of them. Each parses its own arguments: in a tree of parsers an argument
/// that is spelled like some other command ("plans add today") would be taken for that command.
class CommandSet::Command {
 public:
  Command(const std::string& name, const CommandHelp& help,
          const std::shared_ptr<HelpFormatter>& formatter, std::string fullName)
      : app(appText(help.helpKey), name), path(std::move(fullName)), help_(help) {
    formatter->SetUsage(app, help.usageKey);
    app.formatter(formatter);
    app.footer(appText(help.examplesKey));
    app.option_defaults()->group(appText("help_options"));
    app.set_help_flag("-h,--help", appText("help_help"))->group(appText("help_options"));
  }

  void AddOption(const OptionSpec& option) {
    options_.push_back(option);
    const std::string help = appText(option.helpKey);
    if (auto* const flag = std::get_if<bool*>(&option.value)) {
      app.add_flag(option.name, **flag, help);
      return;
    }
    if (auto* const list = std::get_if<std::vector<std::string>*>(&option.value)) {
      app.add_option(option.name, **list, help)->type_name(option.valueName);
      return;
    }
    const auto take = [option](const std::string& text) {
      // The next option where a value should stand: the value was forgotten.
      if (text.starts_with("--")) ThrowNoValue(option);
      *std::get<OptionText*>(option.value) = text;
    };
    app.add_option_function<std::string>(option.name, take, help)
        ->type_name(option.valueName)
        ->take_last();
  }

  Command* Find(const std::string& name) const {
    for (const auto& command : commands) {
      if (command->app.get_name() == name) return command.get();
    }
    return nullptr;
  }

  /// "today, places, settings": what may stand after it.
  std::string Subcommands() const {
    std::string names;
    for (const auto& command : commands) {
      if (!names.empty()) names += ", ";
      names += command->app.get_name();
    }
    return names;
  }

  /// What the parser found wrong, in one line of the user's language.
  std::string Describe(const CLI::ParseError& error) const {
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
      const std::string message = error.what();
      for (const OptionSpec& option : options_) {
        if (option.isFlag()) continue;
        const std::string_view name = option.name;
        if (!message.starts_with(std::string(name.substr(name.rfind(',') + 1)) + ":")) continue;
        return stringWithFormat(appText("error_no_value"),
                                {option.name, appText(option.expectationKey)});
      }
    }
    std::vector<std::string> unexpected = app.remaining();
    // What makes arguments of all that follows is none itself.
    std::erase(unexpected, "--");
    if (unexpected.empty()) return appText("error_usage");
    return stringWithFormat(appText("error_unexpected_argument"),
                            {adapters::printableText(unexpected.front()), path + " --help"});
  }

  CommandOutline Outline() const {
    CommandOutline outline{app.get_name(), path, help_, options_, {}};
    for (const auto& command : commands) outline.commands.push_back(command->Outline());
    return outline;
  }

  CLI::App app;
  /// "lumenquest plans add"
  std::string path;
  /// Null for a group.
  Action action;
  std::vector<std::unique_ptr<Command>> commands;

 private:
  CommandHelp help_;
  std::vector<OptionSpec> options_;
};

class CommandSet::Implementation {
 public:
  Implementation()
      : root("lumenquest", {"help_usage_app", "help_app", "help_app_examples"}, formatter,
             "lumenquest") {
    formatter->label("Positionals", appText("help_arguments"));
    root.app
        .set_version_flag("--version", "lumenquest " LUMENQUEST_VERSION, appText("help_version"))
        ->group(appText("help_options"));
  }

  Command& Add(Command& parent, const char* name, const CommandHelp& help) {
    auto made = std::make_unique<Command>(name, help, formatter, parent.path + " " + name);
    // For the parent's help alone.
    parent.app.add_subcommand(name, appText(help.helpKey))->group(appText("help_commands"));
    return *parent.commands.emplace_back(std::move(made));
  }

  /// What the arguments ask for: a command to act, or a text to show.
  struct Request {
    Command* command = nullptr;
    std::optional<std::string> text;
  };

  Request Read(const std::vector<std::string>& arguments);

  std::shared_ptr<HelpFormatter> formatter = std::make_shared<HelpFormatter>();
  Command root;
};

CommandSet::CommandSet() : implementation_(std::make_unique<Implementation>()) {}

CommandSet::~CommandSet() = default;

void CommandSet::Add(const char* name, const CommandHelp& help,
                     const std::vector<OptionSpec>& options, Action action) {
  Add(implementation_->root, name, help, options, std::move(action));
}

CommandSet::Command& CommandSet::AddGroup(const char* name, const CommandHelp& help) {
  return implementation_->Add(implementation_->root, name, help);
}

void CommandSet::Add(Command& group, const char* name, const CommandHelp& help,
                     const std::vector<OptionSpec>& options, Action action) {
  Command& command = implementation_->Add(group, name, help);
  for (const OptionSpec& option : options) command.AddOption(option);
  command.action = std::move(action);
}

CommandSet::Implementation::Request CommandSet::Implementation::Read(
    const std::vector<std::string>& arguments) {
  Command* command = &root;
  auto argument = arguments.begin();
  for (; argument != arguments.end(); ++argument) {
    Command* const next = command->Find(*argument);
    if (next == nullptr) break;
    command = next;
  }
  if (!command->action && argument != arguments.end() && !argument->starts_with("-")) {
    throw UsageError(
        stringWithFormat(appText("error_unknown_command"),
                         {adapters::printableText(*argument), command->Subcommands()}));
  }
  try {
    std::vector<std::string> reversed(arguments.rbegin(), std::make_reverse_iterator(argument));
    command->app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    return {command, command->app.help()};
  } catch (const CLI::CallForVersion& version) {
    return {command, std::string(version.what()) + "\n"};
  } catch (const CLI::ParseError& error) {
    throw UsageError(command->Describe(error));
  }
  if (!command->action) {
    throw UsageError(stringWithFormat(appText("error_no_command"), {command->Subcommands()}));
  }
  return {command, std::nullopt};
}

std::string CommandSet::Run(const std::vector<std::string>& arguments) {
  const Implementation::Request request = implementation_->Read(arguments);
  return request.text ? *request.text : request.command->action();
}

void CommandSet::Check(const std::vector<std::string>& arguments) {
  implementation_->Read(arguments);
}

CommandOutline CommandSet::outline() const { return implementation_->root.Outline(); }

OptionSpec placeOption(OptionText& value) {
  return {"--place", "TEXT", "help_place", "expect_place", &value, suggestPlaces};
}

OptionSpec latitudeOption(OptionText& value) {
  return {"--latitude", "DEG", "help_latitude", "expect_latitude", &value};
}

OptionSpec longitudeOption(OptionText& value) {
  return {"--longitude", "DEG", "help_longitude", "expect_longitude", &value};
}

OptionSpec timeZoneOption(OptionText& value) {
  return {"--time-zone", "IANA", "help_time_zone", "expect_time_zone", &value, suggestTimeZones};
}

OptionSpec atOption(OptionText& value) {
  return {"--at", "INSTANT", "help_at", "expect_at", &value};
}

OptionSpec localeOption(OptionText& value) {
  return {"--locale", "TAG", "help_locale", "expect_locale", &value, suggestLocales};
}

OptionSpec formatOption(OptionText& value) {
  return {"--format", "text|json", "help_format", "expect_format", &value};
}

}  // namespace lumenquest::app
