#pragma once

#include <nlohmann/json.hpp>

#include "app/table.h"
#include "host/widget_entry.h"

namespace lumenquest::app {

// Entries as commands put them out: every field under its own name.

/// Dates as timestamps, instants as the MJD (UT) that they are.
nlohmann::ordered_json entryJson(const host::AnyEntry& entry);

/// "atEnd", or {"after": "2027-05-12T18:15:00Z"}
nlohmann::ordered_json reloadJson(const widgets::TimelineReloadPolicy& policy);

/// Rows for people: instants with their local times.
void addEntry(Table& table, const host::AnyEntry& entry);

}  // namespace lumenquest::app
