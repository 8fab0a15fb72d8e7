#pragma once

#include "app/command_set.h"

namespace lumenquest::app {

/// `lumenquest settings`: the settings that the widgets share with the main application.
void addSettingsCommands(CommandSet& commands);

}  // namespace lumenquest::app
