#include "widgets/galactic_center/galactic_center_provider.h"

namespace lumenquest::widgets {

unsigned GalacticCenterProvider::maskFor(WidgetFamily) { return events::WidgetDataGalacticCenter; }

GalacticCenterTimelineEntry GalacticCenterProvider::entryOf(const AstronomyEntry& made,
                                                            WidgetFamily) {
  return {made.date, GalacticCenterWidgetData(made.sources), made.theme};
}

}  // namespace lumenquest::widgets
