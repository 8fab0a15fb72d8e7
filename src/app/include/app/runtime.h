#pragma once

#include <memory>
#include <string>

#include "platform/services.h"

namespace lumenquest::app {

/// Folder of the string tables and the other resources: beside the program's folder in the build
/// and in an installed tree that was moved, else where the installation put it.
std::string resourceFolder();

/// Installs the adapters for a locale (an ICU identifier) and a clock.
void installServices(const std::string& locale, std::shared_ptr<platform::Clock> clock);

}  // namespace lumenquest::app
