#pragma once

#include "widgets/intents/enum.h"
#include "widgets/intents/intent.h"
#include "widgets/intents/intent_response.h"

namespace lumenquest::widgets {

/// Configures the widget of plans: a theme.
struct ThemeSelectorIntent final : Intent {
  Enum theme = Enum::unknown;
};

using ThemeSelectorIntentResponseCode = IntentResponseCode;
using ThemeSelectorIntentResponse = IntentResponse;

}  // namespace lumenquest::widgets
