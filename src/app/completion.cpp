#include "app/completion.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "adapters/gazetteer.h"
#include "adapters/printable_text.h"

namespace lumenquest::app {

namespace {

/// "-o,--output": its spellings.
std::vector<std::string> SpellingsOf(const OptionSpec& option) {
  const std::string names = option.name;
  const std::size_t comma = names.find(',');
  if (comma == std::string::npos) return {names};
  return {names.substr(0, comma), names.substr(comma + 1)};
}

/// "light|dark": its choices; nothing when the name is no such list.
std::vector<Suggestion> ChoicesOf(std::string_view valueName) {
  std::vector<Suggestion> choices;
  if (valueName == "1..4") return {{"1", ""}, {"2", ""}, {"3", ""}, {"4", ""}};
  if (valueName.find('|') == std::string_view::npos) return choices;
  for (std::size_t begin = 0; begin <= valueName.size();) {
    const std::size_t end = std::min(valueName.find('|', begin), valueName.size());
    choices.push_back({std::string(valueName.substr(begin, end - begin)), ""});
    begin = end + 1;
  }
  return choices;
}

std::vector<Suggestion> SuggestedFor(const OptionSpec& option,
                                     const std::vector<std::string>& arguments,
                                     const std::string& value) {
  if (option.suggestions) return option.suggestions(value);
  std::vector<Suggestion> suggested;
  if (option.suggestionsAfter) suggested = option.suggestionsAfter(arguments);
  return suggested.empty() ? ChoicesOf(option.valueName) : suggested;
}

class Answer {
 public:
  explicit Answer(std::string beginning) : beginning_(std::move(beginning)) {}

  /// A word of the command's own, which goes on from the very letters that were typed.
  void Add(const std::string& word, const std::string& meaning) {
    if (word.starts_with(beginning_)) Line(word, meaning);
  }

  /// The values of an option or argument; `before`: "--theme=", when it stands in the same word.
  void AddValues(const OptionSpec& option, const std::vector<std::string>& arguments,
                 const std::string& before = {}) {
    const std::string value = beginning_.substr(before.size());
    const std::string_view name = option.isPositional() ? option.name : option.valueName;
    if (name == "FILE") paths_ = ":files\n";
    if (name == "DIR") paths_ = ":folders\n";
    for (const Suggestion& one : SuggestedFor(option, arguments, value)) {
      if (!one.word.empty() && adapters::isBeginningOfName(value, one.word)) {
        Line(before + one.word, one.meaning);
      }
    }
  }

  std::string Text() const { return lines_ + paths_; }

 private:
  void Line(const std::string& word, const std::string& meaning) {
    // A place's or a plan's name may hold anything; here it has to stay in its line and column.
    lines_ += adapters::printableText(word, 200);
    if (!meaning.empty()) lines_ += "\t" + adapters::printableText(meaning, 200);
    lines_ += "\n";
  }

  std::string beginning_;
  std::string lines_;
  std::string paths_;
};

const OptionSpec* Find(const CommandOutline& command, const std::string& spelling) {
  for (const OptionSpec& option : command.options) {
    const auto spellings = SpellingsOf(option);
    if (std::find(spellings.begin(), spellings.end(), spelling) != spellings.end()) return &option;
  }
  return nullptr;
}

}  // namespace

std::string completionLines(const CommandOutline& program, const std::vector<std::string>& words) {
  const std::string typed = words.empty() ? "" : words.back();
  const std::size_t count = words.empty() ? 0 : words.size() - 1;
  Answer answer(typed);

  const CommandOutline* command = &program;
  std::size_t next = 0;
  for (; next < count; ++next) {
    const auto& commands = command->commands;
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const auto& one) { return one.name == words[next]; });
    if (found == commands.end()) break;
    command = &*found;
  }

  std::set<const OptionSpec*> given;
  std::vector<std::string> arguments;
  const OptionSpec* valueOf = nullptr;
  for (; next < count; ++next) {
    const std::string& word = words[next];
    if (valueOf != nullptr) {
      valueOf = nullptr;
    } else if (word.starts_with('-') && word != "-") {
      const std::size_t equals = word.find('=');
      const OptionSpec* const option = Find(*command, word.substr(0, equals));
      if (option == nullptr) continue;
      given.insert(option);
      if (!option->isFlag() && equals == std::string::npos) valueOf = option;
    } else {
      arguments.push_back(word);
    }
  }
  if (valueOf != nullptr) {
    answer.AddValues(*valueOf, arguments);
    return answer.Text();
  }

  if (typed.starts_with('-')) {
    const std::size_t equals = typed.find('=');
    if (equals != std::string::npos) {
      const OptionSpec* const option = Find(*command, typed.substr(0, equals));
      if (option != nullptr && !option->isFlag() && !option->isPositional()) {
        answer.AddValues(*option, arguments, typed.substr(0, equals + 1));
      }
      return answer.Text();
    }
    for (const OptionSpec& option : command->options) {
      // Once is enough, and the long spelling says more.
      if (option.isPositional() || given.contains(&option)) continue;
      answer.Add(SpellingsOf(option).back(), appText(option.helpKey));
    }
    answer.Add("--help", appText("help_help"));
    if (command == &program) answer.Add("--version", appText("help_version"));
    return answer.Text();
  }

  if (arguments.empty()) {
    for (const CommandOutline& one : command->commands)
      answer.Add(one.name, appText(one.help.helpKey));
  }
  std::size_t skipped = 0;
  for (const OptionSpec& option : command->options) {
    if (!option.isPositional()) continue;
    // The last argument of a list may be followed by more of them.
    if (skipped == arguments.size() || option.isList()) {
      answer.AddValues(option, arguments);
      break;
    }
    ++skipped;
  }
  return answer.Text();
}

}  // namespace lumenquest::app
