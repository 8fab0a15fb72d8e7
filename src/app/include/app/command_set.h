#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "app/option_values.h"

namespace lumenquest::app {

/// A word that the shell can put in the place of a beginning, and what it means.
struct Suggestion {
  std::string word;
  std::string meaning;
};

/// The words that go on from a beginning.
using Suggestions = std::function<std::vector<Suggestion>(const std::string& beginning)>;
/// Those that depend on the arguments given before.
using SuggestionsAfter =
    std::function<std::vector<Suggestion>(const std::vector<std::string>& arguments)>;

/// An option or argument of a command: the keys of its help and of what would be right for it.
struct OptionSpec {
  /// As in "--latitude" or "-o,--output"; a positional argument has no dashes.
  const char* name;
  /// How its value is called in the help; empty for a positional argument and for a flag.
  const char* valueName;
  const char* helpKey;
  /// Null for a flag, which takes no value.
  const char* expectationKey;
  /// Where a value goes: the last one given, whether the flag was given, or all arguments.
  std::variant<OptionText*, bool*, std::vector<std::string>*> value;
  /// What the shell offers as values. Empty: the choices that `valueName` lists, files for FILE and
  /// folders for DIR.
  Suggestions suggestions{};
  /// In the place of `suggestions`; the choices where it offers none.
  SuggestionsAfter suggestionsAfter{};

  bool isFlag() const { return std::holds_alternative<bool*>(value); }
  bool isList() const { return std::holds_alternative<std::vector<std::string>*>(value); }
  bool isPositional() const { return name[0] != '-'; }
};

/// What a command says of itself: keys of its texts.
struct CommandHelp {
  const char* usageKey;
  const char* helpKey;
  const char* examplesKey;
};

/// A command, or a group of them, as the manual and the shell's completion need it.
struct CommandOutline {
  std::string name;
  /// "lumenquest plans add"
  std::string path;
  CommandHelp help;
  std::vector<OptionSpec> options;
  std::vector<CommandOutline> commands;
};

/// The commands with their options, in the user's language. Each part of the application adds its
/// own.
class CommandSet {
 public:
  /// What a command does: returns the output; throws UsageError for wrong use and any other
  /// exception for a failure.
  using Action = std::function<std::string()>;
  class Command;

  CommandSet();
  ~CommandSet();
  CommandSet(const CommandSet&) = delete;
  CommandSet& operator=(const CommandSet&) = delete;

  /// A command whose options write to where `options` points, which has to outlive this set;
  /// Keep() sees to that.
  void Add(const char* name, const CommandHelp& help, const std::vector<OptionSpec>& options,
           Action action);
  /// A command that holds others.
  Command& AddGroup(const char* name, const CommandHelp& help);
  void Add(Command& group, const char* name, const CommandHelp& help,
           const std::vector<OptionSpec>& options, Action action);

  /// A record for option values that lives as long as the set.
  template <typename Options>
  Options& Keep() {
    auto options = std::make_shared<Options>();
    kept_.push_back(options);
    return *options;
  }

  /// Reads the arguments and does what they ask for. Throws as the actions do.
  std::string Run(const std::vector<std::string>& arguments);

  /// Whether the commands and options exist and have their values, nothing done. Throws UsageError
  /// when not; what an action alone can judge is not.
  void Check(const std::vector<std::string>& arguments);

  /// All commands, from the program itself on.
  CommandOutline outline() const;

 private:
  class Implementation;

  std::vector<std::shared_ptr<void>> kept_;
  std::unique_ptr<Implementation> implementation_;
};

// Options that many commands share.

OptionSpec placeOption(OptionText& value);
OptionSpec latitudeOption(OptionText& value);
OptionSpec longitudeOption(OptionText& value);
OptionSpec timeZoneOption(OptionText& value);
OptionSpec atOption(OptionText& value);
OptionSpec localeOption(OptionText& value);
OptionSpec formatOption(OptionText& value);

}  // namespace lumenquest::app
