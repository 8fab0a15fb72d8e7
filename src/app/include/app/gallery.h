#pragma once

#include <string>
#include <vector>

#include "app/command_set.h"
#include "host/widget_entry.h"
#include "widgets/view/environment.h"

namespace lumenquest::app {

/// A widget in one of its states.
struct Exhibit {
  std::string fileName;
  host::AnyEntry entry;
  widgets::WidgetFamily family = widgets::WidgetFamily::systemSmall;
};

/// Exhibits under a heading.
struct Section {
  std::string title;
  std::vector<Exhibit> exhibits;
  widgets::view::WidgetRenderingMode renderingMode = widgets::view::WidgetRenderingMode::fullColor;
  widgets::SystemVersion system{};
};

/// Every widget in every family and state, for fixed places and instants. Installs the services of
/// a locale, with settings of their own.
std::vector<Section> exhibition(const std::string& locale);

/// `lumenquest gallery`
void addGalleryCommand(CommandSet& commands);

}  // namespace lumenquest::app
