#pragma once

#include <optional>
#include <string>

#include "host/widget_entry.h"

namespace lumenquest::host {

// Entries as text that keeps every bit of their numbers, for a host that starts again.

std::string entryToJson(const AnyEntry& entry);
/// Absent when the text is no such entry.
std::optional<AnyEntry> entryFromJson(const std::string& text);

}  // namespace lumenquest::host
