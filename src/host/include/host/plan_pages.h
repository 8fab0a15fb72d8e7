#pragma once

#include <optional>
#include <string>

namespace lumenquest::host {

// The pages of the saved plans. HTML.

/// All plans from today's local midnight on, in order of date.
std::string plansPageContent();
/// The plan of an object's identifier, as links carry it; nothing when there is none.
std::optional<std::string> planPageContent(const std::string& objectId);

}  // namespace lumenquest::host
