#pragma once

#include <map>
#include <string>

namespace lumenquest::platform {

/// What a person was doing, for the application to continue.
struct NSUserActivity {
  /// In reverse-domain form.
  std::string activityType;
  std::map<std::string, std::string> userInfo;

  bool operator==(const NSUserActivity&) const = default;
};

}  // namespace lumenquest::platform
