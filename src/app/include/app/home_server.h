#pragma once

#include <iosfwd>
#include <string>

#include "app/home_host.h"

namespace lumenquest::app {

/// Runs a host with its web page until the process is told to end; says on `out` where the page is.
/// `listen`: "127.0.0.1:8437", which is where it listens when nothing is given. Throws UsageError,
/// HomeScreenError, std::runtime_error.
void serveHome(const HomeOptions& options, const OptionText& listen, std::ostream& out);

}  // namespace lumenquest::app
