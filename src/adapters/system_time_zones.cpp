#include "adapters/system_time_zones.h"

#include <absl/time/time.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <cctype>
#include <memory>

#include "icu_strings.h"

namespace lumenquest::adapters {

platform::NSTimeZone SystemTimeZones::localTimeZone() {
  std::call_once(localTimeZoneOnce_, [this] {
    const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString name;
    host->getID(name);
    localTimeZone_.name = ToUtf8(name);
  });
  return localTimeZone_;
}

bool SystemTimeZones::isKnown(const std::string& name) {
  // The library also opens files by path and reads names of its own making; identifiers of the
  // database are neither. "right/..." counts leap seconds, which civil time does not.
  const bool identifier =
      !name.empty() && std::isalpha(static_cast<unsigned char>(name.front())) != 0 &&
      std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '/' || c == '_' || c == '-' || c == '+';
      });
  if (!identifier || name.starts_with("Fixed/") || name.starts_with("right/") ||
      name.starts_with("posix/") || name == "localtime" || name == "Factory") {
    return false;
  }
  absl::TimeZone zone;
  return absl::LoadTimeZone(name, &zone);
}

}  // namespace lumenquest::adapters
