#pragma once

#include <functional>
#include <iosfwd>

#include "app/command_set.h"
#include "app/home_host.h"

namespace lumenquest::app {

/// Runs a host with its web page at `listen` until the process is told to end, and says on `out`
/// where the page is.
using ServeHome =
    std::function<void(const HomeOptions& options, const OptionText& listen, std::ostream& out)>;

/// `lumenquest home`: the home screen and what shows it. What runs on writes to `out` as it goes.
void addHomeCommands(CommandSet& commands, std::ostream& out, const ServeHome& serveHome);

}  // namespace lumenquest::app
