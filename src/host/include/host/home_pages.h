#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/scheduler.h"
#include "host/web_page.h"
#include "host/widget_pictures.h"

namespace lumenquest::host {

// The home screen and the page that arranges it. HTML.

/// One widget of the grid, which is also what replaces it when its next entry is there.
std::string widgetItem(const ShownWidget& shown, WidgetPictures& pictures);
WebPage homePage(const std::vector<ShownWidget>& shown, WidgetPictures& pictures);

/// The placed widgets with what can be done to each, and the widgets that can be added.
WebPage editPage(const std::vector<ShownWidget>& shown, const std::optional<std::string>& problem);

}  // namespace lumenquest::host
