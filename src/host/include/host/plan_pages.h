#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/database.h"
#include "platform/planning.h"

namespace lumenquest::host {

struct FoundPlans {
  std::vector<std::shared_ptr<platform::Planning>> plans;
  /// Why there are none, when the store cannot be read.
  std::optional<std::string> error;
};
/// The plans that the predicate takes, or all of them, in order of date.
FoundPlans savedPlans(std::optional<platform::NSPredicate> predicate = std::nullopt);

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
