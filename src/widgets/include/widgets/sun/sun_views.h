#pragma once

#include "widgets/sun/sun_content.h"
#include "widgets/sun/sun_provider.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets {

// The views of the Sun widgets, from the outside in.

view::Element SunLightWidgetEntryView(const SunTimelineEntry& entry,
                                      const view::Environment& environment);
/// `moonData` and `gcData` may be null but in the large family.
view::Element SunLightWidgetView(const SunLightWidgetData& data, const MoonWidgetData* moonData,
                                 const GalacticCenterWidgetData* gcData,
                                 const view::Environment& environment);
/// Reads the host's rendering mode, which older systems do not have.
view::Element SunWidgetViewForiOS18AndAbove(const SunLightWidgetData& data,
                                            const MoonWidgetData* moonData,
                                            const GalacticCenterWidgetData* gcData,
                                            const view::Environment& environment);
view::Element SunInternalWidgetView(const SunLightWidgetData& data, const MoonWidgetData* moonData,
                                    const GalacticCenterWidgetData* gcData,
                                    const view::Environment& environment);
/// In the large family both records are needed; without them this is a programming error.
view::Element SunInfoView(const SunLightWidgetData& sunData, const MoonWidgetData* moonData,
                          const GalacticCenterWidgetData* gcData,
                          const view::Environment& environment);
view::Element SunInfoViewSmall(const SunLightWidgetData& sunData);
view::Element SunInfoViewMedium(const SunLightWidgetData& sunData, WidgetFamily family);
view::Element SunInfoViewLarge(const SunLightWidgetData& sunData, const MoonWidgetData& moonData,
                               const GalacticCenterWidgetData& gcData,
                               const view::Environment& environment);

/// A row of an interval: its mark, title and times, beside each other or one below the other;
/// `size` is that of its letters.
view::Element LightTypeView(const LightTypeRow& row, double size, bool isOnTwoLines);
/// The Sun in the colour of its elevation.
view::Element SunIconView(const platform::UIColor& sunColor, double size);
view::Element LightTypeIconView(const platform::UIColor& sunColor, double size);

}  // namespace lumenquest::widgets
