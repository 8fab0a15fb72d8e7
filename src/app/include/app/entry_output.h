#pragma once

#include <nlohmann/json.hpp>

#include "app/table.h"
#include "host/scheduler.h"

namespace lumenquest::app {

// Entries as commands put them out: every field under its own name.

/// Dates as timestamps, instants as the MJD (UT) that they are.
nlohmann::ordered_json entryJson(const host::AnyEntry& entry);

/// What a shown widget says, for programs: "id", "kind", "family", "state", the line "text", the
/// lines "details", from when on it holds ("date") and when the widget is asked again ("reload").
nlohmann::ordered_json widgetJson(const host::ShownWidget& shown);

/// "atEnd", or {"after": "2027-05-12T18:15:00Z"}
nlohmann::ordered_json reloadJson(const widgets::TimelineReloadPolicy& policy);

/// Rows for people: instants with their local times.
void addEntry(Table& table, const host::AnyEntry& entry);

}  // namespace lumenquest::app
