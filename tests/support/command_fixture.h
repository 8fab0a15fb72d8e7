#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/home_server.h"
#include "scratch_folder.h"

namespace lumenquest::testing {

/// The user's own configuration stays out of the tests.
inline const int kNoConfiguration = setenv("XDG_CONFIG_HOME", "/nonexistent", 1);

/// And a service of the user's is not started by them.
inline const int kNoSessionBus = setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);

/// What is said is compared in English, whatever the developer speaks.
inline const int kEnglish = setenv("LC_ALL", "en_US.UTF-8", 1);

/// A data folder of the test's own, for settings and plans; the user's stay out of the tests.
class DataFolder : public ScratchFolder {
 public:
  DataFolder() { setenv("XDG_DATA_HOME", path().c_str(), 1); }
  ~DataFolder() { setenv("XDG_DATA_HOME", "/nonexistent", 1); }
};

struct Result {
  int code;
  std::string out;
  std::string err;
};

/// Calls the command as its users do.
inline Result Call(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  const int code = app::run(arguments, out, err, app::serveHome);
  return {code, out.str(), err.str()};
}

struct Refusal {
  std::vector<std::string> arguments;
  /// Each somewhere in the error.
  std::vector<std::string> says;
  int code = app::kExitUsage;
};

/// Each is refused in one line, whatever stands in the arguments; they follow those of `command`.
inline void ExpectRefused(const std::vector<std::string>& command,
                          const std::vector<Refusal>& refusals) {
  for (const Refusal& one : refusals) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
    const Result result = Call(arguments);
    SCOPED_TRACE(::testing::PrintToString(one.arguments) + ": " + result.err);
    EXPECT_EQ(result.code, one.code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    EXPECT_EQ(result.err.find('\x1b'), std::string::npos);
    for (const std::string& words : one.says) {
      EXPECT_NE(result.err.find(words), std::string::npos) << words;
    }
  }
}

}  // namespace lumenquest::testing
