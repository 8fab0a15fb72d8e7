#include <glib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
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

TEST(Documents, CommandLinesAreUnderstood) {
  app::installServices({"en"});
  static const std::regex inBlock(R"(\n(?:\$ )?(lumenquest (?:[^\n\\]|\\[^\n]|\\\n)*))");
  int count = 0;
  for (const fs::path& document : Documents()) {
    const std::string text = Contents(document);
    for (std::sregex_iterator it(text.begin(), text.end(), inBlock), end; it != end; ++it) {
      std::string line = (*it)[1];
      std::replace(line.begin(), line.end(), '\n', ' ');
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
      ++count;
      EXPECT_NO_THROW(commands.Check(arguments)) << document << ": " << line;
    }
  }
  EXPECT_GT(count, 30);
}

}  // namespace
}  // namespace lumenquest::testing
