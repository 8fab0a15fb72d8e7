#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/core_location.h"
#include "platform/ns_date.h"
#include "platform/ns_error.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::adapters {

/// An event of a calendar (RFC 5545), as far as a plan needs it.
struct CalendarEvent {
  /// UID
  std::optional<std::string> identifier;
  /// SUMMARY
  std::optional<std::string> name;
  /// DTSTART, whole seconds; of a repeating event the first one. A day without a time starts at
  /// midnight.
  std::optional<platform::NSDate> start;
  /// The zone in which the start was written; absent with UTC and floating times.
  std::optional<platform::NSTimeZone> timeZone;
  /// GEO
  std::optional<platform::CLLocationCoordinate2D> coordinate;
  /// LOCATION
  std::optional<std::string> placeName;

  bool operator==(const CalendarEvent&) const = default;
};

struct Calendar {
  std::vector<CalendarEvent> events;
  /// Names of events that were called off, and of those whose start is missing, no date, or in a
  /// time zone that neither the machine nor the file knows.
  std::vector<std::string> cancelled;
  std::vector<std::string> withoutStart;
};

/// Which zone the time of an event is meant in that names none; the event's place is known already.
using ZoneOfFloatingTimes = std::function<platform::NSTimeZone(const CalendarEvent& event)>;

/// Reads a calendar. A text that is none, is not in UTF-8, or ends before its end, is an error.
platform::Outcome<Calendar> parseICalendar(const std::string& text,
                                           const ZoneOfFloatingTimes& zoneOfFloatingTimes);

/// Whether a calendar can hold an instant: those that are in the years 1583 to 2999 everywhere on
/// Earth, so that they can be written in local time. The format's calendar is not the one of
/// our instants before, which is Julian until 1582, and its library has nothing after.
bool isCalendarDate(platform::NSDate date);

/// Writes a calendar with the time zones that it uses; events without a start, or with one that
/// a calendar cannot hold, are left out, as the format demands one. What goes through here and back
/// is the same, to the second and but for blanks around texts.
std::string formatICalendar(const std::vector<CalendarEvent>& events, platform::NSDate writtenAt);

}  // namespace lumenquest::adapters
