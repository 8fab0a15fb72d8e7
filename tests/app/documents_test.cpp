#include <glib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

#include "app/command_line.h"
#include "app/command_set.h"
#include "app/runtime.h"
#include "command_fixture.h"

namespace lumenquest::testing {
namespace {

namespace fs = std::filesystem;

/// The documents that come with the sources.
std::vector<fs::path> Documents() {
  const fs::path root = LUMENQUEST_SOURCE_DIR;
  std::vector<fs::path> documents;
  for (const char* folder :
       {".", "docs", "resources/gazetteer", "resources/static", "tests/data"}) {
    for (const auto& entry : fs::directory_iterator(root / folder)) {
      if (entry.path().extension() == ".md") documents.push_back(entry.path());
    }
  }
  return documents;
}

std::string TextOf(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// A heading's anchor, as the viewers of Markdown make it.
std::string AnchorOf(const std::string& heading) {
  std::string anchor;
  for (const char c : heading) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_' ||
        (c & 0x80) != 0) {
      anchor += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    } else if (c == ' ') {
      anchor += '-';
    }
  }
  return anchor;
}

bool HasHeading(const fs::path& file, const std::string& anchor) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    const std::size_t text = line.find_first_not_of('#');
    if (text > 0 && text != std::string::npos && line[text] == ' ' &&
        AnchorOf(line.substr(text + 1)) == anchor) {
      return true;
    }
  }
  return false;
}

TEST(Documents, LinksLeadSomewhere) {
  static const std::regex link(R"(\]\(([^)\s]+)\))");
  int count = 0;
  for (const fs::path& document : Documents()) {
    const std::string text = TextOf(document);
    for (std::sregex_iterator it(text.begin(), text.end(), link), end; it != end; ++it) {
      const std::string target = (*it)[1];
      if (target.find("://") != std::string::npos || target.starts_with("mailto:")) continue;
      const std::size_t hash = target.find('#');
      const std::string path = target.substr(0, hash);
      const fs::path file = path.empty() ? document : document.parent_path() / path;
      ++count;
      EXPECT_TRUE(fs::exists(file)) << document << ": " << target;
      if (hash == std::string::npos) continue;
      EXPECT_TRUE(HasHeading(file, target.substr(hash + 1))) << document << ": " << target;
    }
  }
  EXPECT_GT(count, 30);
}

/// Whether these are the names of a group of commands, as in "`lumenquest plans` keeps them".
bool IsGroup(const app::CommandOutline& program, const std::vector<std::string>& names) {
  const app::CommandOutline* command = &program;
  for (const std::string& name : names) {
    const auto found = std::find_if(command->commands.begin(), command->commands.end(),
                                    [&](const auto& one) { return one.name == name; });
    if (found == command->commands.end()) return false;
    command = &*found;
  }
  return !command->commands.empty();
}

/// The command lines of a document: those of its blocks, and those in its sentences that are whole.
std::vector<std::string> CommandLines(const std::string& text) {
  std::vector<std::string> lines;
  static const std::regex inBlock(R"(\n(?:\$ )?(lumenquest (?:[^\n\\]|\\[^\n]|\\\n)*))");
  static const std::regex inSentence(R"(`(lumenquest [^`]*)`)");
  for (const std::regex& pattern : {inBlock, inSentence}) {
    for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it) {
      std::string line = (*it)[1];
      std::replace(line.begin(), line.end(), '\n', ' ');
      lines.push_back(line);
    }
  }
  return lines;
}

TEST(Documents, CommandLinesAreUnderstood) {
  app::installServices({"en"});
  int count = 0;
  for (const fs::path& document : Documents()) {
    for (const std::string& line : CommandLines(TextOf(document))) {
      // What follows is the shell's.
      const std::string command = line.substr(0, line.find_first_of("|>;&"));
      gint size = 0;
      gchar** words = nullptr;
      ASSERT_TRUE(g_shell_parse_argv(command.c_str(), &size, &words, nullptr))
          << document << ": " << line;
      const std::vector<std::string> arguments(words + 1, words + size);
      g_strfreev(words);
      std::ostringstream out;
      app::CommandSet commands;
      app::addCommands(commands, out);
      if (IsGroup(commands.outline(), arguments)) continue;
      ++count;
      try {
        commands.Check(arguments);
      } catch (const app::UsageError& error) {
        ADD_FAILURE() << document << ": " << line << ": " << error.what();
      }
    }
  }
  EXPECT_GT(count, 30);
}

}  // namespace
}  // namespace lumenquest::testing
