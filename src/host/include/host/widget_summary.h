#pragma once

#include <string>

#include "host/widget_entry.h"

namespace lumenquest::host {

/// An entry in one short line for a status bar: the light and the next change, the phase, the
/// galactic centre's window, the next plan; or why there is nothing to show.
std::string summaryOf(const AnyEntry& entry);

/// The whole of it for a tooltip, a line a text.
std::string detailsOf(const AnyEntry& entry, widgets::WidgetFamily family);

/// What a style sheet may tell apart: "information", "denied", "no-location", "empty".
std::string stateOf(const AnyEntry& entry);

}  // namespace lumenquest::host
