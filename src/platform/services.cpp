#include "platform/services.h"

#include <utility>

#include "locked_calendar.h"
#include "platform/assertion.h"
#include "platform/database.h"

namespace lumenquest::platform {

namespace {

std::unique_ptr<Services>& Installed() {
  static std::unique_ptr<Services> services;
  return services;
}

}  // namespace

Services::Services(Adapters adapters) : adapters_(std::move(adapters)) {}
Services::~Services() = default;

void Services::install(Adapters adapters) { Installed().reset(new Services(std::move(adapters))); }

Services& Services::current() {
  Services* installed = Installed().get();
  LUMENQUEST_ASSERT(installed != nullptr);
  return *installed;
}

NSCalendar& Services::cachedCalendar() {
  std::call_once(cachedCalendarOnce_, [this] {
    cachedCalendar_ = std::make_unique<LockedCalendar>(calendars().currentCalendar());
  });
  return *cachedCalendar_;
}

NSCalendar& Services::gmtCachedCalendar() {
  std::call_once(gmtCachedCalendarOnce_, [this] {
    gmtCachedCalendar_ =
        std::make_unique<LockedCalendar>(calendars().gregorianCalendar(NSTimeZone::gmt()));
  });
  return *gmtCachedCalendar_;
}

Formatters& Services::sharedFormatters() {
  std::call_once(formattersOnce_, [this] { formatters_ = std::make_unique<Formatters>(); });
  return *formatters_;
}

Database& Services::sharedDatabase() {
  std::call_once(databaseOnce_, [this] { database_ = std::make_unique<Database>(); });
  return *database_;
}

NSTimeZone NSTimeZone::gmt() { return NSTimeZone{"GMT"}; }

NSTimeZone NSTimeZone::localTimeZone() { return Services::current().timeZones().localTimeZone(); }

std::optional<NSTimeZone> NSTimeZone::timeZoneWithName(const std::string& name) {
  if (!Services::current().timeZones().isKnown(name)) return std::nullopt;
  return NSTimeZone{name};
}

}  // namespace lumenquest::platform
