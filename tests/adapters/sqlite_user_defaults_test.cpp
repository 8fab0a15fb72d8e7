// Settings that processes share: what they hold, and what survives.

#include "adapters/sqlite_user_defaults.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <thread>

#include "scratch_folder.h"

namespace lumenquest::adapters {
namespace {

using platform::NSUserDefaults;
using testing::ScratchFolder;
namespace fs = std::filesystem;

std::string Bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

/// Runs work in a process of its own, which never returns from it.
pid_t Fork(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  return child;
}

int Wait(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

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
  EXPECT_EQ(again.integerForKey("text"), 0);

  // Another process's write is seen by an object that is open already.
  Wait(Fork([&] { SqliteUserDefaults(path).setInteger(7, "integer"); }));
  EXPECT_EQ(again.integerForKey("integer"), 7);
}

TEST(SqliteUserDefaults, KeepsTogetherWhatIsDoneAtomically) {
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";
  SqliteUserDefaults(path).setInteger(0, "first");
  constexpr int kRounds = 200;
  const auto count = [&] {
    SqliteUserDefaults settings(path);
    for (int i = 0; i < kRounds; ++i) {
      settings.atomically([&] {
        const std::int64_t value = settings.integerForKey("first") + 1;
        settings.setInteger(value, "first");
        settings.atomically([&] { settings.setInteger(value, "second"); });
      });
    }
  };
  const pid_t children[] = {Fork(count), Fork(count)};
  const SqliteUserDefaults watcher(path);
  for (int i = 0; i < kRounds; ++i) {
    auto values = watcher.dictionaryRepresentation();
    if (values.contains("second")) {
      EXPECT_EQ(values["first"], values["second"]);
    }
  }
  for (const pid_t child : children) EXPECT_EQ(Wait(child), 0);
  EXPECT_EQ(watcher.integerForKey("first"), 2 * kRounds);
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

  for (const std::string& path : {foreign, text, cut}) {
    SCOPED_TRACE(path);
    const std::string before = Bytes(path);
    SqliteUserDefaults settings(path);
    settings.objectForKey("key");
    EXPECT_TRUE(settings.error());
    settings.setBool(true, "key");
    EXPECT_FALSE(settings.synchronize());
    EXPECT_EQ(Bytes(path), before);
  }

  // An empty file is one that was just made; a folder that cannot be is an error.
  std::ofstream(folder / "empty.sqlite").flush();
  SqliteUserDefaults empty(folder / "empty.sqlite");
  empty.setBool(true, "key");
  EXPECT_TRUE(empty.boolForKey("key"));
  SqliteUserDefaults impossible(text + "/settings.sqlite");
  EXPECT_FALSE(impossible.objectForKey("key"));
  EXPECT_FALSE(impossible.error());  // there is no such file, and that is all
  fs::create_symlink("loop", folder / "loop");
  SqliteUserDefaults unreachable(folder / "loop/settings.sqlite");
  EXPECT_FALSE(unreachable.objectForKey("key"));
  EXPECT_TRUE(unreachable.error());
  impossible.setBool(true, "key");
  EXPECT_FALSE(impossible.synchronize());
  EXPECT_FALSE(impossible.boolForKey("key"));
}

TEST(SqliteUserDefaults, KeepsTheOldValueWhenTheDiskIsFull) {
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";
  SqliteUserDefaults(path).setObject(std::string("old"), "key");
  const int status = Wait(Fork([&] {
    // Files of this process cannot grow beyond this.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{200000, 200000};
    setrlimit(RLIMIT_FSIZE, &limit);
    SqliteUserDefaults settings(path);
    settings.setObject(std::string(5000000, 'x'), "key");
    _exit(settings.synchronize() || !settings.error() ? 1 : 0);
  }));
  EXPECT_EQ(status, 0);
  EXPECT_EQ(SqliteUserDefaults(path).stringForKey("key"), "old");
}

TEST(SqliteUserDefaults, TwoWritersLoseNoKey) {
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";  // made by whoever comes first
  constexpr int kKeys = 60;
  std::vector<pid_t> children;
  for (int writer = 0; writer < 3; ++writer) {
    children.push_back(Fork([&, writer] {
      SqliteUserDefaults settings(path);
      for (int i = 0; i < kKeys; ++i) {
        settings.setInteger(i, std::to_string(writer) + "/" + std::to_string(i));
        settings.setInteger(i, "shared");
      }
      _exit(settings.synchronize() ? 0 : 1);
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(Wait(child), 0);
  SqliteUserDefaults settings(path);
  EXPECT_EQ(settings.dictionaryRepresentation().size(), 3u * kKeys + 1u);
  EXPECT_EQ(settings.integerForKey("shared"), kKeys - 1);
}

TEST(SqliteUserDefaults, SurvivesAKillAtAnyMoment) {
  // Two keys are written in turn with the same number; what was acknowledged is there afterwards,
  // and nothing is torn. LUMENQUEST_SOAK sets the number of kills.
  const char* soak = std::getenv("LUMENQUEST_SOAK");
  const int kills = soak != nullptr ? std::atoi(soak) : 40;
  const ScratchFolder folder;
  const std::string path = folder / "settings.sqlite";
  std::mt19937 random(4);
  std::int64_t acknowledged = 0;
  std::int64_t most = 0;
  for (int i = 0; i < kills; ++i) {
    // A new file now and then: making it is interrupted as well.
    if (i % 10 == 0) {
      for (const char* companion : {"", "-wal", "-shm"}) fs::remove(path + companion);
      acknowledged = 0;
    }
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = Fork([&] {
      SqliteUserDefaults settings(path);
      // From the last number again, whose second half may be missing.
      for (std::int64_t n = std::max<std::int64_t>(acknowledged, 1);; ++n) {
        settings.setInteger(n, "first");
        settings.setObject(std::string(static_cast<std::size_t>(n % 9000), 'x'), "second");
        if (write(channel[1], &n, sizeof n) != sizeof n) _exit(1);
      }
    });
    close(channel[1]);
    // Every other time only when something is written, however slow the disk.
    pollfd written{channel[0], POLLIN, 0};
    if (i % 2 == 1) poll(&written, 1, 10000);
    // Making the file takes a millisecond or two.
    const auto delay = i % 10 == 0 ? random() % 3000 : 500 + random() % 20000;
    std::this_thread::sleep_for(std::chrono::microseconds(delay));
    kill(child, SIGKILL);
    Wait(child);
    for (std::int64_t n = 0; read(channel[0], &n, sizeof n) == sizeof n;) acknowledged = n;
    close(channel[0]);

    SqliteUserDefaults settings(path);
    const std::int64_t first = settings.integerForKey("first");
    ASSERT_GE(first, acknowledged);
    ASSERT_LE(first, acknowledged + 1);
    const auto second = settings.stringForKey("second").value_or("");
    ASSERT_TRUE(second.size() == static_cast<std::size_t>(first % 9000) ||
                second.size() == static_cast<std::size_t>((first - 1) % 9000) || first == 0);
    ASSERT_FALSE(settings.error());
    acknowledged = first;
    most = std::max(most, first);
  }
  EXPECT_GT(most, 0);
  SqliteUserDefaults(path).setBool(true, "last");
  const auto strays = std::count_if(fs::directory_iterator(folder / ""), {}, [](const auto& entry) {
    return entry.path().string().find(".new") != std::string::npos;
  });
  EXPECT_EQ(strays, 0);
}

}  // namespace
}  // namespace lumenquest::adapters
