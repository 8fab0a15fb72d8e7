#pragma once

#include <unicode/timezone.h>

#include <memory>

#include "platform/ns_time_zone.h"

namespace lumenquest::adapters {

/// A zone for ICU's calendars and formatters whose rules are the machine's, not those of ICU's own,
/// older copy. An unknown name gives UTC; names are checked where they come in.
std::unique_ptr<icu::TimeZone> makeIcuTimeZone(const platform::NSTimeZone& zone);

}  // namespace lumenquest::adapters
