#pragma once

// The one assertion of the system, LUMENQUEST_ASSERT, for everything above the engine.
#include "ephemeris/assertion.h"
