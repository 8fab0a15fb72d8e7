#pragma once

#include "widgets/galactic_center/galactic_center_provider.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets {

view::Element GalacticCenterWidgetEntryView(const GalacticCenterTimelineEntry& entry,
                                            const view::Environment& environment);

/// Tonight's window, or that there is none, with the date of the next; in the large family
/// the moonless hours under it.
view::Element GCVisibilityView(const GCVisibilityContent& content, WidgetFamily family);
/// One end of the window, where there is room with a hint of how the galactic band leans then.
view::Element GCRiseSetTimeView(const GCRiseSetTime& end, WidgetFamily family, bool hasBand,
                                double captionSize);
/// That there is no window, and the date of the next one.
view::Element GalacticCenterNotVisibleUntilView(const GCVisibilityContent& content);
view::Element MoonlessHoursView(const std::string& title, const std::string& hours);

}  // namespace lumenquest::widgets
