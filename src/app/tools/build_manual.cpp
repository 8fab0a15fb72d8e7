// Makes the manual page from its frame and from what the commands say of themselves.
//   build_manual FRAME VERSION PAGE
// A line "@COMMANDS@" of the frame becomes a section a command, "@COMMON_OPTIONS@" the options that
// several commands share.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/command_line.h"
#include "app/command_set.h"
#include "app/runtime.h"

namespace lumenquest::app {

namespace {

/// From so many commands on an option is described once for all of them.
constexpr int kCommonFrom = 2;

/// A text as man(7) takes it: its own signs shown as they are, hyphens as those that are typed.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else if ((c == '.' || c == '\'') && (escaped.empty() || escaped.back() == '\n')) {
      escaped += std::string("\\&") + c;
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string Sentence(const std::string& text) { return text.ends_with('.') ? text : text + "."; }

using OptionKey = std::pair<std::string, std::string>;

OptionKey KeyOf(const OptionSpec& option) { return {option.name, option.helpKey}; }

class Manual {
 public:
  explicit Manual(const CommandOutline& program) { Collect(program); }

  std::string Commands() const {
    std::string text;
    for (const CommandOutline* command : commands_) text += Section(*command);
    return text;
  }

  std::string CommonOptions() const {
    std::string text;
    for (const OptionSpec* option : common_) text += Item(*option);
    return text;
  }

 private:
  void Collect(const CommandOutline& command) {
    if (command.commands.empty()) commands_.push_back(&command);
    for (const OptionSpec& option : command.options) {
      if (!option.isPositional() && ++uses_[KeyOf(option)] == kCommonFrom) {
        common_.push_back(&option);
      }
    }
    for (const CommandOutline& one : command.commands) Collect(one);
  }

  bool IsCommon(const OptionSpec& option) const {
    return !option.isPositional() && uses_.at(KeyOf(option)) >= kCommonFrom;
  }

  static std::string Item(const OptionSpec& option) {
    std::string names = option.name;
    const std::size_t comma = names.find(',');
    if (comma != std::string::npos) names.replace(comma, 1, ", ");
    std::string text = ".TP\n";
    if (option.isPositional()) {
      text += "\\fI" + Escaped(names) + "\\fR";
    } else {
      text += "\\fB" + Escaped(names) + "\\fR";
      if (!option.isFlag()) text += " \\fI" + Escaped(option.valueName) + "\\fR";
    }
    return text + "\n" + Escaped(Sentence(appText(option.helpKey))) + "\n";
  }

  std::string Section(const CommandOutline& command) const {
    // "lumenquest plans add": the program's name goes without saying.
    std::string text = ".SS \"" + Escaped(command.path.substr(command.path.find(' ') + 1)) + "\"\n";
    std::string usage = appText(command.help.usageKey);
    const std::string label = "Usage: ";
    if (usage.starts_with(label)) usage.erase(0, label.size());
    const std::string indent = "\n" + std::string(label.size(), ' ');
    for (std::size_t at; (at = usage.find(indent)) != std::string::npos;) {
      usage.replace(at, indent.size(), "\n");
    }
    text += ".nf\n" + Escaped(usage) + "\n.fi\n.PP\n" +
            Escaped(Sentence(appText(command.help.helpKey)));
    text += "\n";
    std::string shared;
    for (const OptionSpec& option : command.options) {
      if (!IsCommon(option)) {
        text += Item(option);
      } else {
        shared += (shared.empty() ? "" : ", ") + ("\\fB" + Escaped(option.name) + "\\fR");
      }
    }
    if (!shared.empty()) text += ".PP\nCommon options: " + shared + ".\n";
    return text;
  }

  std::vector<const CommandOutline*> commands_;
  std::map<OptionKey, int> uses_;
  std::vector<const OptionSpec*> common_;
};

int Build(const std::string& frame, const std::string& version, const std::string& page) {
  RuntimeOptions runtime;
  runtime.locale = "en";
  runtime.hasOwnSettings = true;
  installServices(runtime);
  CommandSet commands;
  addCommands(commands, std::cout);
  const CommandOutline program = commands.outline();
  const Manual manual(program);

  std::ifstream in(frame);
  std::ofstream out(page, std::ios::trunc);
  const std::string versionMark = "@VERSION@";
  for (std::string line; std::getline(in, line);) {
    if (line == "@COMMANDS@") {
      out << manual.Commands();
    } else if (line == "@COMMON_OPTIONS@") {
      out << manual.CommonOptions();
    } else {
      const std::size_t at = line.find(versionMark);
      if (at != std::string::npos) line.replace(at, versionMark.size(), version);
      out << line << '\n';
    }
  }
  if (in.bad() || !in.eof() || !out.flush()) {
    std::cerr << "build_manual: " << frame << " cannot be read, or " << page << " written\n";
    return 1;
  }
  return 0;
}

}  // namespace

}  // namespace lumenquest::app

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "build_manual: give FRAME VERSION PAGE\n";
    return 2;
  }
  return lumenquest::app::Build(argv[1], argv[2], argv[3]);
}
