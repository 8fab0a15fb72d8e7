#pragma once

#include <optional>

#include "widgets/intents/enum.h"
#include "widgets/intents/intent.h"
#include "widgets/intents/intent_placemark.h"
#include "widgets/intents/intent_response.h"

namespace lumenquest::widgets {

/// Configures a widget of the sky: a place and a theme.
struct LocationSelectorIntent final : Intent {
  /// Absent where nobody has chosen a place yet.
  std::optional<IntentPlacemark> location;
  Enum theme = Enum::unknown;
};

using LocationSelectorIntentResponseCode = IntentResponseCode;
using LocationSelectorIntentResponse = IntentResponse;

}  // namespace lumenquest::widgets
