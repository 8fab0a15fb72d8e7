#pragma once

#include <optional>
#include <string>

namespace lumenquest::host {

// The pages of the saved plans. HTML.

/// All plans from today's local midnight on, in order of date.
std::string plansPageContent();
struct PlanPage {
  /// Text: the plan's name.
  std::string title;
  std::string content;
};
/// The plan of an object's identifier, as links carry it; nothing when there is none.
std::optional<PlanPage> planPage(const std::string& objectId);

}  // namespace lumenquest::host
