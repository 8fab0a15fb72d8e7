#pragma once

#include <string>

namespace lumenquest::adapters {

/// Asks the user's service manager to start a unit, by org.freedesktop.systemd1.Manager of
/// systemd's D-Bus interface. False where there is no such manager or unit.
bool startUserService(const std::string& unit);

}  // namespace lumenquest::adapters
