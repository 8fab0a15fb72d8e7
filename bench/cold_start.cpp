// Runs whole processes in turn and reports each one's median wall time and peak memory:
//   cold_start LIMIT_MIB EMPTY_PROGRAM PROGRAM ARGUMENT...
// Fails when the program's peak is at or above the limit.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kRuns = 21;

struct Run {
  double milliseconds;
  double peakMib;
};

Run RunOnce(char** command) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  if (posix_spawn(&child, command[0], &actions, nullptr, command, environ) != 0) {
    std::perror(command[0]);
    std::exit(2);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) {
    std::fprintf(stderr, "%s failed\n", command[0]);
    std::exit(2);
  }
  return {elapsed.count(), static_cast<double>(usage.ru_maxrss) / 1024.0};
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + kRuns / 2, values.end());
  return values[kRuns / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: cold_start LIMIT_MIB EMPTY_PROGRAM PROGRAM ARGUMENT...\n");
    return 2;
  }
  const double limit = std::atof(argv[1]);
  char* empty[] = {argv[2], nullptr};
  std::vector<double> emptyWall, wall, peak;
  for (int i = -1; i < kRuns; ++i) {
    const Run emptyRun = RunOnce(empty);
    const Run run = RunOnce(argv + 3);
    if (i < 0) continue;  // warm-up
    emptyWall.push_back(emptyRun.milliseconds);
    wall.push_back(run.milliseconds);
    peak.push_back(run.peakMib);
  }
  const double worstPeak = *std::max_element(peak.begin(), peak.end());
  for (char** word = argv + 4; *word != nullptr; ++word) std::printf("%s ", *word);
  std::printf("\ncold start, median of %d: %.1f ms (an empty program: %.1f ms)\n", kRuns,
              Median(wall), Median(emptyWall));
  std::printf("peak memory: %.1f MiB, at most %.0f: %s\n", worstPeak, limit,
              worstPeak < limit ? "ok" : "OVER");
  return worstPeak < limit ? 0 : 1;
}
