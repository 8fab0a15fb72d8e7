#pragma once

#include <string>
#include <vector>

#include "app/command_set.h"

namespace lumenquest::app {

/// The first argument by which a shell asks what can stand in the place of the word that the user
/// is typing: `lumenquest complete WORD...`, the unfinished word last, perhaps empty. It is in no
/// help: the scripts in packaging/completions use it.
inline constexpr const char* kCompleteCommand = "complete";

/// The answer, a line each: a word, and after a tab what it means, if anything is to be said of it.
/// A last line ":files" or ":folders" asks the shell for paths of its own.
std::string completionLines(const CommandOutline& program, const std::vector<std::string>& words);

}  // namespace lumenquest::app
