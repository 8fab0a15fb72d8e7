#pragma once

#include <optional>

#include "platform/ns_user_activity.h"
#include "widgets/intents/enum.h"
#include "widgets/intents/intent.h"
#include "widgets/intents/intent_placemark.h"
#include "widgets/intents/raw_value.h"

namespace lumenquest::widgets {

/// Configures a widget of the sky: a place and a theme.
struct LocationSelectorIntent final : Intent {
  /// Absent where nobody has chosen a place yet.
  std::optional<IntentPlacemark> location;
  Enum theme = Enum::unknown;
};

/// How an intent was taken. fromRawValue<LocationSelectorIntentResponseCode>() reads a stored one.
enum class LocationSelectorIntentResponseCode : int {
  unspecified = 0,
  ready = 1,
  continueInApp = 2,
  inProgress = 3,
  success = 4,
  failure = 5,
  failureRequiringAppLaunch = 6,
};
constexpr LocationSelectorIntentResponseCode lastValue(LocationSelectorIntentResponseCode) {
  return LocationSelectorIntentResponseCode::failureRequiringAppLaunch;
}

struct LocationSelectorIntentResponse {
  LocationSelectorIntentResponseCode code = LocationSelectorIntentResponseCode::unspecified;
  /// For the application to go on from there.
  std::optional<platform::NSUserActivity> userActivity;
};

}  // namespace lumenquest::widgets
