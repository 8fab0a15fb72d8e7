#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace lumenquest::testing {

/// Runs `work` in a process of its own; its answer is the exit code.
inline pid_t Fork(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    // Whatever happens, the tests go on in the parent alone.
    try {
      ::_exit(work());
    } catch (...) {
      ::_exit(99);
    }
  }
  return child;
}

/// Waits for the process; a signal that ended it is negative.
inline int ExitCode(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// From now on no file of this process grows beyond so many bytes, which stands for a full disk.
inline void LimitFiles(rlim_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, bytes};
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

/// How many files lie in the folder of an SQLite file beside it and its companions.
inline std::int64_t FilesBeside(const std::filesystem::path& file) {
  const std::string own = file.filename().string();
  return std::count_if(std::filesystem::directory_iterator(file.parent_path()), {},
                       [&](const auto& entry) {
                         const std::string name = entry.path().filename().string();
                         return name != own && name != own + "-wal" && name != own + "-shm";
                       });
}

/// Lets writers of the SQLite file write until they are killed at some moment, a new file every
/// tenth time, since making it is interrupted as well. `write` does its writes from the given
/// number on and calls `tell` after each; it returns only if one fails. `check` is told whether
/// the file is a new one and what the dead had confirmed, and returns the next number.
/// LUMENQUEST_SOAK sets the number of kills.
inline void KillWriters(
    const std::filesystem::path& file,
    const std::function<int(std::int64_t next, const std::function<void(std::int64_t)>& tell)>&
        write,
    const std::function<std::int64_t(bool isNew, const std::vector<std::int64_t>& told)>& check) {
  const char* const soak = std::getenv("LUMENQUEST_SOAK");
  const int kills = soak != nullptr ? std::atoi(soak) : 50;
  std::mt19937 random(20240812);
  std::size_t toldInAll = 0;
  std::int64_t next = 1;
  for (int kill = 0; kill < kills; ++kill) {
    const bool isNew = kill % 10 == 0;
    if (isNew) {
      for (const char* end : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + end);
      next = 1;
    }
    int channel[2];
    ASSERT_EQ(::pipe(channel), 0);
    const pid_t writer = Fork([&] {
      return write(next, [&](std::int64_t n) {
        if (::write(channel[1], &n, sizeof n) != sizeof n) ::_exit(98);
      });
    });
    ::close(channel[1]);
    // Every other time only when something is written, however slow the disk.
    pollfd written{channel[0], POLLIN, 0};
    if (kill % 2 == 1) ::poll(&written, 1, 10000);
    // Making the file takes a few milliseconds.
    const int longest = isNew ? 5000 : 40000;
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution<int>(0, longest)(random)));
    ::kill(writer, SIGKILL);
    ASSERT_EQ(ExitCode(writer), -SIGKILL);
    std::vector<std::int64_t> told;
    for (std::int64_t n = 0; ::read(channel[0], &n, sizeof n) == sizeof n;) told.push_back(n);
    ::close(channel[0]);
    toldInAll += told.size();
    next = check(isNew, told);
    if (::testing::Test::HasFatalFailure()) return;
  }
  EXPECT_GT(toldInAll, 0U);
}

}  // namespace lumenquest::testing
