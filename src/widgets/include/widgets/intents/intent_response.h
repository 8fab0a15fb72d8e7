#pragma once

#include <optional>

#include "platform/ns_user_activity.h"
#include "widgets/intents/raw_value.h"

namespace lumenquest::widgets {

/// How an intent was taken. fromRawValue<IntentResponseCode>() reads a stored one.
enum class IntentResponseCode : int {
  unspecified = 0,
  ready = 1,
  continueInApp = 2,
  inProgress = 3,
  success = 4,
  failure = 5,
  failureRequiringAppLaunch = 6,
};
constexpr IntentResponseCode lastValue(IntentResponseCode) {
  return IntentResponseCode::failureRequiringAppLaunch;
}

struct IntentResponse {
  IntentResponseCode code = IntentResponseCode::unspecified;
  /// For the application to go on from there.
  std::optional<platform::NSUserActivity> userActivity;
};

}  // namespace lumenquest::widgets
