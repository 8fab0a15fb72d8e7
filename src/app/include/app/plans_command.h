#pragma once

#include "app/command_set.h"

namespace lumenquest::app {

/// `lumenquest plans`: the saved plans, which the widgets show and never change.
void addPlansCommands(CommandSet& commands);

}  // namespace lumenquest::app
