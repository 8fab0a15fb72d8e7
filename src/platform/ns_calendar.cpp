#include "platform/ns_calendar.h"

#include "platform/services.h"

namespace lumenquest::platform {

NSCalendar& NSCalendar::cachedCalendar() { return Services::current().cachedCalendar(); }

NSCalendar& NSCalendar::gmtCachedCalendar() { return Services::current().gmtCachedCalendar(); }

}  // namespace lumenquest::platform
