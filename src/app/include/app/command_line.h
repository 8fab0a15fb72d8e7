#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "app/home_command.h"

namespace lumenquest::app {

class CommandSet;

/// Exit codes of the command.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

/// Adds all commands to the set, whose texts are those of the strings service at this moment. Those
/// that go on for long write to `out` as they go. Without `serveHome` there is nothing that serves.
void addCommands(CommandSet& commands, std::ostream& out, const ServeHome& serveHome = {});

/// Runs the command with these arguments (without the program's name): results to `out`, one-line
/// errors to `err`. Returns the exit code.
int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
        const ServeHome& serveHome = {});

}  // namespace lumenquest::app
