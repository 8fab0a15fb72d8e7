#pragma once

#include <optional>

#include "platform/ns_user_activity.h"
#include "widgets/intents/enum.h"
#include "widgets/intents/intent.h"
#include "widgets/intents/raw_value.h"

namespace lumenquest::widgets {

/// Configures the widget of plans: a theme.
struct ThemeSelectorIntent final : Intent {
  Enum theme = Enum::unknown;
};

/// How an intent was taken. fromRawValue<ThemeSelectorIntentResponseCode>() reads a stored one.
enum class ThemeSelectorIntentResponseCode : int {
  unspecified = 0,
  ready = 1,
  continueInApp = 2,
  inProgress = 3,
  success = 4,
  failure = 5,
  failureRequiringAppLaunch = 6,
};
constexpr ThemeSelectorIntentResponseCode lastValue(ThemeSelectorIntentResponseCode) {
  return ThemeSelectorIntentResponseCode::failureRequiringAppLaunch;
}

struct ThemeSelectorIntentResponse {
  ThemeSelectorIntentResponseCode code = ThemeSelectorIntentResponseCode::unspecified;
  /// For the application to go on from there.
  std::optional<platform::NSUserActivity> userActivity;
};

}  // namespace lumenquest::widgets
