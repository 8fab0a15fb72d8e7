#pragma once

#include <string>
#include <string_view>

namespace lumenquest::widgets {

// Where a tap on a widget leads in the application.

inline constexpr const char* kLinkScheme = "lumenquest://";
inline constexpr const char* kSunLink = "lumenquest://sun";
inline constexpr const char* kMoonLink = "lumenquest://moon";
inline constexpr const char* kPlansLink = "lumenquest://plans";
/// Goes on with a plan's percent-encoded identifier.
inline constexpr std::string_view kPlanLinkStart = "lumenquest://plan?id=";

/// To one plan, by its percent-encoded identifier; to all of them when it is empty.
std::string planLink(const std::string& objectId);

}  // namespace lumenquest::widgets
