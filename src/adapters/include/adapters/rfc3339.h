#pragma once

#include <optional>
#include <string>

#include "platform/ns_date.h"

namespace lumenquest::adapters {

/// Timestamps after RFC 3339, such as 2024-08-12T21:30:00Z or 2024-08-12T23:30:00.5+02:00, in the
/// Gregorian calendar extended to all years. Beyond the four digits of the standard a year carries
/// a sign: -0500-03-21T12:00:00Z.

/// Nothing when the text is no such timestamp or names a date or time that does not exist.
std::optional<platform::NSDate> parseRfc3339(const std::string& text);

/// In UTC, with as many decimals of the second as the instant has, down to microseconds. Instants
/// beyond the years of six digits give the first or the last second of these.
std::string formatRfc3339(platform::NSDate date);

/// The year, in the same calendar.
int rfc3339Year(platform::NSDate date);

}  // namespace lumenquest::adapters
