#pragma once

#include <iosfwd>

#include "app/command_set.h"

namespace lumenquest::app {

/// `lumenquest home`: the home screen and what shows it. What runs on writes to `out` as it goes.
void addHomeCommands(CommandSet& commands, std::ostream& out);

}  // namespace lumenquest::app
