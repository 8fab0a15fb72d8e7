#include "adapters/system_time_zones.h"

#include <absl/time/time.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "icu_strings.h"

namespace lumenquest::adapters {

namespace {

/// The zone that TZ names: an identifier, with or without the database's folder before it. Its
/// other forms, rules spelled out, name no zone, and stay as they are for the caller to refuse.
std::string ZoneOfEnvironment(std::string_view value) {
  constexpr std::string_view kFolder = "/usr/share/zoneinfo/";
  if (value.starts_with(':')) value.remove_prefix(1);
  if (value.starts_with(kFolder)) value.remove_prefix(kFolder.size());
  return value.empty() ? "UTC" : std::string(value);
}

std::string ZoneOfHost() {
  const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
  icu::UnicodeString name;
  host->getID(name);
  return ToUtf8(name);
}

}  // namespace

platform::NSTimeZone SystemTimeZones::localTimeZone() {
  std::call_once(localTimeZoneOnce_, [this] {
    const char* value = std::getenv("TZ");
    localTimeZone_.name = value != nullptr ? ZoneOfEnvironment(value) : ZoneOfHost();
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
      name.starts_with("posix/") || name == "localtime" || name == "posixrules" ||
      name == "Factory" || name.find("//") != std::string::npos) {
    return false;
  }
  absl::TimeZone zone;
  return absl::LoadTimeZone(name, &zone);
}

}  // namespace lumenquest::adapters
