#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace lumenquest::app {

class CommandSet;

/// Exit codes of the command.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

/// Adds all commands to the set, whose texts are those of the strings service at this moment. Those
/// that go on for long write to `out` as they go.
void addCommands(CommandSet& commands, std::ostream& out);

/// Runs the command with these arguments (without the program's name): results to `out`, one-line
/// errors to `err`. Returns the exit code.
int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace lumenquest::app
