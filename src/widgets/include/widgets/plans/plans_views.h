#pragma once

#include "widgets/plans/plan_item.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets {

view::Element PlansWidgetEntryView(const PlansTimelineEntry& entry,
                                   const view::Environment& environment);

}  // namespace lumenquest::widgets
