// Settings that processes share: what they hold, and what survives.

#include "adapters/sqlite_user_defaults.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

#include "child_process.h"
#include "plans_fixture.h"

namespace lumenquest::adapters {
namespace {

using platform::NSUserDefaults;
using testing::Contents;
using testing::ExitCode;
using testing::Fork;
using testing::ScratchFolder;
namespace fs = std::filesystem;

TEST(SqliteUserDefaults, HoldsEveryTypeAndText) {
  const ScratchFolder folder;
  const std::string path = folder / "a folder/settings.sqlite";
  const NSUserDefaults::Dictionary values{
      {"flag", true},
      {"integer", std::int64_t{-9007199254740993}},
      {"double", 0.1 + 0.2},
      {"text", std::string("München \u202Eשלום🌌 e\u0301 ' \" ; DROP TABLE setting")},
      {"nul", std::string("a\0b", 3)},
      {"long", std::string(10000, 'x')},
      {std::string("ключ 🔑"), std::string()},
  };
  {
    SqliteUserDefaults settings(path);
    EXPECT_TRUE(settings.dictionaryRepresentation().empty());
    EXPECT_FALSE(fs::exists(path));  // reading makes no file
    for (const auto& [key, value] : values) settings.setObject(value, key);
    settings.setObject(std::string("gone"), "removed");
    settings.setObject(std::nullopt, "removed");
    EXPECT_TRUE(settings.synchronize());
    EXPECT_FALSE(settings.error());
  }
  SqliteUserDefaults again(path);
  EXPECT_EQ(again.dictionaryRepresentation(), values);
  EXPECT_EQ(again.doubleForKey("double"), 0.1 + 0.2);
  EXPECT_FALSE(again.objectForKey("removed"));

  // Another process's write is seen by an object that is open already.
  ExitCode(Fork([&] {
    SqliteUserDefaults(path).setInteger(7, "integer");
    return 0;
  }));
  EXPECT_EQ(again.integerForKey("integer"), 7);
}

TEST(SqliteUserDefaults, TwoWritersLoseNoKeyAndKeepTogetherWhatIsDoneAtomically) {
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";  // made by whoever comes first
  constexpr int kRounds = 200;
  const auto count = [&](const std::string& writer) {
    SqliteUserDefaults settings(path);
    for (int i = 0; i < kRounds; ++i) {
      settings.setInteger(i, writer + std::to_string(i));
      settings.atomically([&] {
        const std::int64_t value = settings.integerForKey("first") + 1;
        settings.setInteger(value, "first");
        settings.atomically([&] { settings.setInteger(value, "second"); });
      });
    }
    return settings.synchronize() ? 0 : 1;
  };
  const pid_t children[] = {Fork([&] { return count("a"); }), Fork([&] { return count("b"); })};
  const SqliteUserDefaults watcher(path);
  for (int i = 0; i < kRounds; ++i) {
    auto values = watcher.dictionaryRepresentation();
    if (values.contains("second")) {
      EXPECT_EQ(values["first"], values["second"]);
    }
  }
  for (const pid_t child : children) EXPECT_EQ(ExitCode(child), 0);
  EXPECT_EQ(watcher.integerForKey("first"), 2 * kRounds);
  EXPECT_EQ(watcher.dictionaryRepresentation().size(), 2u * kRounds + 2u);
}

TEST(SqliteUserDefaults, LeavesForeignFilesAlone) {
  const ScratchFolder folder;
  const std::string foreign = folder / "foreign.sqlite";
  sqlite3* database = nullptr;
  sqlite3_open(foreign.c_str(), &database);
  sqlite3_exec(database, "CREATE TABLE setting (key); INSERT INTO setting VALUES ('a')", nullptr,
               nullptr, nullptr);
  sqlite3_close(database);
  const std::string text = folder / "text.sqlite";
  std::ofstream(text) << std::string(5000, '#');
  const std::string cut = folder / "cut.sqlite";
  SqliteUserDefaults(cut).setObject(std::string(9000, 'x'), "key");
  fs::resize_file(cut, 5000);

  // A page that neither what is asked for nor a new setting comes by.
  const std::string torn = folder / "torn.sqlite";
  for (int i = 0; i < 200; ++i) {
    SqliteUserDefaults(torn).setObject(std::string(200, 'x'), std::to_string(i));
  }
  std::fstream(torn, std::ios::binary | std::ios::in | std::ios::out).seekp(3 * 4096)
      << std::string(4096, 'z');
  for (const std::string& path : {foreign, text, cut, torn}) {
    SCOPED_TRACE(path);
    const std::string before = Contents(path);
    SqliteUserDefaults settings(path);
    settings.objectForKey("key");
    EXPECT_EQ(settings.error().has_value(), path != torn);
    settings.setBool(true, "key");
    EXPECT_FALSE(settings.synchronize());
    EXPECT_EQ(Contents(path), before);
  }

  // An empty file is one that was just made; a folder that cannot be is an error.
  fs::create_symlink("loop", folder / "loop");
  std::ofstream(folder / "empty.sqlite").flush();
  SqliteUserDefaults empty(folder / "empty.sqlite");
  empty.setBool(true, "key");
  EXPECT_TRUE(empty.boolForKey("key"));
  for (const std::string& path : {text + "/settings.sqlite", (folder / "loop/file").string()}) {
    SqliteUserDefaults impossible(path);
    impossible.setBool(true, "key");
    EXPECT_FALSE(impossible.synchronize());
    EXPECT_FALSE(impossible.boolForKey("key"));
    EXPECT_TRUE(impossible.error());
  }
}

TEST(SqliteUserDefaults, KeepsTheOldValueWhenTheDiskIsFull) {
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";
  SqliteUserDefaults(path).setObject(std::string("old"), "key");
  EXPECT_EQ(ExitCode(Fork([&] {
              testing::LimitFiles(200000);
              SqliteUserDefaults settings(path);
              settings.setObject(std::string(5000000, 'x'), "key");
              return settings.synchronize() || !settings.error() ? 1 : 0;
            })),
            0);
  EXPECT_EQ(SqliteUserDefaults(path).stringForKey("key"), "old");
}

TEST(SqliteUserDefaults, SurvivesAKillAtAnyMoment) {
  // Two keys are written in turn with the same number; what was acknowledged is there afterwards,
  // and nothing is torn.
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";
  std::int64_t acknowledged = 0;
  testing::KillWriters(
      path,
      [&](std::int64_t next, const auto& tell) {
        SqliteUserDefaults settings(path);
        // From the last number again, whose second half may be missing.
        for (std::int64_t n = next;; ++n) {
          settings.setInteger(n, "first");
          settings.setObject(std::string(static_cast<std::size_t>(n % 9000), 'x'), "second");
          tell(n);
        }
        return 1;
      },
      [&](bool isNew, const std::vector<std::int64_t>& told) {
        if (isNew) acknowledged = 0;
        if (!told.empty()) acknowledged = told.back();
        SqliteUserDefaults settings(path);
        const std::int64_t first = settings.integerForKey("first");
        EXPECT_FALSE(settings.error());
        EXPECT_TRUE(first == acknowledged || first == acknowledged + 1) << first;
        const auto second =
            static_cast<std::int64_t>(settings.stringForKey("second").value_or("").size());
        EXPECT_TRUE(second == first % 9000 || second == (first - 1) % 9000 || first == 0);
        acknowledged = first;
        return std::max<std::int64_t>(first, 1);
      });
  SqliteUserDefaults(path).setBool(true, "last");
  EXPECT_EQ(testing::FilesBeside(path), 0);
}

}  // namespace
}  // namespace lumenquest::adapters
