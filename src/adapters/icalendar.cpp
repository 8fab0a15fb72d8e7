#include "adapters/icalendar.h"

#include <libical/ical.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <string_view>

#include "adapters/printable_text.h"
#include "icu_strings.h"
#include "platform/services.h"

namespace lumenquest::adapters {

namespace {

using platform::CLLocationCoordinate2D;
using platform::NSDate;
using platform::NSTimeZone;

// The format has no place for a zone beside a time in UTC, and six decimals only for a coordinate;
// readers other than ours pass these by.
constexpr const char* kZoneProperty = "X-LUMENQUEST-TIMEZONE";
constexpr const char* kPositionProperty = "X-LUMENQUEST-POSITION";
constexpr const char* kCalendarZoneProperty = "X-WR-TIMEZONE";
/// Degrees by which GEO may differ from the exact position: its last decimal.
constexpr double kGeoPrecision = 1e-6;

constexpr int kFirstYear = 1583;
constexpr int kLastYear = 2999;
constexpr double kDay = 86400.0;
/// 1583-01-01 and 3000-01-01, less a day for those who are ahead or behind.
constexpr NSDate kFirstDate = NSDate::dateWithTimeIntervalSince1970(-12212553600.0 + kDay);
constexpr NSDate kEndDate = NSDate::dateWithTimeIntervalSince1970(32503680000.0 - kDay);

struct FreeComponent {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, FreeComponent>;

struct FreeText {
  void operator()(char* text) const { std::free(text); }
};

std::string Taken(char* text) {
  const std::unique_ptr<char, FreeText> owner(text);
  return owner ? std::string(owner.get()) : std::string();
}

std::optional<std::string> TextOf(const char* text) {
  return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

std::optional<std::string> ExtensionOf(icalcomponent* component, std::string_view name) {
  for (icalproperty* property = icalcomponent_get_first_property(component, ICAL_X_PROPERTY);
       property != nullptr;
       property = icalcomponent_get_next_property(component, ICAL_X_PROPERTY)) {
    const char* const found = icalproperty_get_x_name(property);
    if (found != nullptr && name == found) return TextOf(icalproperty_get_x(property));
  }
  return std::nullopt;
}

/// A zone by the names under which calendars know it: its own, one with a prefix before it
/// ("/example.org/Europe/Berlin"), or that of another operating system ("W. Europe Standard Time").
std::optional<NSTimeZone> ZoneCalled(const std::string& name) {
  std::string_view rest = name;
  while (!rest.empty()) {
    if (const auto zone = NSTimeZone::timeZoneWithName(std::string(rest))) return zone;
    const std::size_t slash = rest.find('/');
    if (slash == std::string_view::npos) break;
    rest.remove_prefix(slash + 1);
  }
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString identifier;
  icu::TimeZone::getIDForWindowsID(FromUtf8(name), nullptr, identifier, status);
  if (U_FAILURE(status) || identifier.isEmpty()) return std::nullopt;
  return NSTimeZone::timeZoneWithName(ToUtf8(identifier));
}

NSDate LocalTime(const icaltimetype& time, const NSTimeZone& zone) {
  const auto calendar = platform::Services::current().calendars().gregorianCalendar(zone);
  return calendar->dateFromComponents(
      {time.year, time.month, time.day, time.hour, time.minute, time.second});
}

/// Whether the fields are those of a day and a time, which the library does not ask.
bool IsDate(const icaltimetype& time) {
  return time.year >= kFirstYear && time.year <= kLastYear && time.month >= 1 && time.month <= 12 &&
         time.day >= 1 && time.day <= icaltime_days_in_month(time.month, time.year) &&
         time.hour >= 0 && time.hour <= 23 && time.minute >= 0 && time.minute <= 59 &&
         time.second >= 0 && time.second <= 60;
}

std::optional<CLLocationCoordinate2D> CoordinateOf(icalcomponent* event) {
  icalproperty* const property = icalcomponent_get_first_property(event, ICAL_GEO_PROPERTY);
  if (property == nullptr) return std::nullopt;
  const icalgeotype geo = icalproperty_get_geo(property);
  const CLLocationCoordinate2D coordinate{geo.lat, geo.lon};
  if (!coordinate.isValid()) return std::nullopt;
  if (const auto exact = ExtensionOf(event, kPositionProperty)) {
    CLLocationCoordinate2D position;
    const char* const end = exact->data() + exact->size();
    const auto first = std::from_chars(exact->data(), end, position.latitude);
    if (first.ptr != end) std::from_chars(first.ptr + 1, end, position.longitude);
    // Somebody who moved the event will have changed the one and not the other.
    if (std::fabs(position.latitude - coordinate.latitude) <= kGeoPrecision &&
        std::fabs(position.longitude - coordinate.longitude) <= kGeoPrecision) {
      return position;
    }
  }
  return coordinate;
}

/// Fills the start and its zone; false when there is none that can be understood.
bool ReadStart(icalcomponent* calendar, icalcomponent* source,
               const ZoneOfFloatingTimes& zoneOfFloatingTimes, CalendarEvent& event) {
  icalproperty* const property = icalcomponent_get_first_property(source, ICAL_DTSTART_PROPERTY);
  if (property == nullptr) return false;
  const icaltimetype time = icalproperty_get_dtstart(property);
  if (!IsDate(time)) return false;

  if (const auto own = ExtensionOf(source, kZoneProperty)) event.timeZone = ZoneCalled(*own);
  if (icaltime_is_utc(time)) {
    event.start = LocalTime(time, NSTimeZone::gmt());
    return true;
  }
  icalparameter* const parameter = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
  if (parameter == nullptr) {
    if (!event.timeZone) {
      if (const auto name = ExtensionOf(calendar, kCalendarZoneProperty)) {
        event.timeZone = ZoneCalled(*name);
      }
    }
    event.start = LocalTime(time, event.timeZone ? *event.timeZone : zoneOfFloatingTimes(event));
    return true;
  }

  const std::string identifier = icalparameter_get_tzid(parameter);
  icaltimezone* const described = icalcomponent_get_timezone(calendar, identifier.c_str());
  std::optional<NSTimeZone> zone = ZoneCalled(identifier);
  if (!zone && described != nullptr) {
    if (const char* location = icaltimezone_get_location(described)) zone = ZoneCalled(location);
  }
  if (zone) {
    // The machine's rules are newer, and reach further, than those that a file brings along.
    event.timeZone = zone;
    event.start = LocalTime(time, *zone);
    return true;
  }
  if (described == nullptr) return false;
  event.start = NSDate::dateWithTimeIntervalSince1970(
      static_cast<double>(icaltime_as_timet_with_zone(time, described)));
  return true;
}

void ReadCalendar(icalcomponent* calendar, const ZoneOfFloatingTimes& zoneOfFloatingTimes,
                  Calendar& result) {
  for (icalcomponent* source = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
       source != nullptr;
       source = icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT)) {
    CalendarEvent event;
    event.name = TextOf(icalcomponent_get_summary(source));
    if (icalcomponent_get_status(source) == ICAL_STATUS_CANCELLED) {
      result.cancelled.push_back(event.name.value_or(""));
      continue;
    }
    // One day of a series that was moved is a plan of its own, and shares the series' identifier.
    if (icalcomponent_get_first_property(source, ICAL_RECURRENCEID_PROPERTY) == nullptr) {
      event.identifier = TextOf(icalcomponent_get_uid(source));
    }
    event.coordinate = CoordinateOf(source);
    event.placeName = TextOf(icalcomponent_get_location(source));
    if (!ReadStart(calendar, source, zoneOfFloatingTimes, event) || !isCalendarDate(*event.start)) {
      result.withoutStart.push_back(event.name.value_or(""));
      continue;
    }
    result.events.push_back(std::move(event));
  }
}

/// Whether the text's last line closes a calendar; a file that was cut off has none.
bool IsWhole(std::string_view text) {
  static constexpr std::string_view kEnd = "END:VCALENDAR";
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  if (last == std::string_view::npos || last + 1 < kEnd.size()) return false;
  const std::string_view tail = text.substr(last + 1 - kEnd.size(), kEnd.size());
  return std::equal(tail.begin(), tail.end(), kEnd.begin(),
                    [](char a, char b) { return (a >= 'a' && a <= 'z' ? a - 'a' + 'A' : a) == b; });
}

platform::NSError BadFile(const char* key) { return {"iCalendar", 1, key}; }

/// The rules of a zone as the format writes them, under the zone's own name; null for zones that
/// the library does not know.
Component ZoneRules(const std::string& name) {
  icaltimezone* const zone = icaltimezone_get_builtin_timezone(name.c_str());
  icalcomponent* const rules = zone != nullptr ? icaltimezone_get_component(zone) : nullptr;
  if (rules == nullptr) return nullptr;
  Component copy(icalcomponent_new_clone(rules));
  if (icalproperty* id = icalcomponent_get_first_property(copy.get(), ICAL_TZID_PROPERTY)) {
    icalproperty_set_tzid(id, name.c_str());
  }
  return copy;
}

void AddExtension(icalcomponent* component, const char* name, const std::string& value) {
  icalproperty* const property = icalproperty_new_x(value.c_str());
  icalproperty_set_x_name(property, name);
  icalcomponent_add_property(component, property);
}

icaltimetype UtcTime(NSDate date) {
  return icaltime_from_timet_with_zone(
      static_cast<time_t>(std::floor(date.timeIntervalSince1970())), 0,
      icaltimezone_get_utc_timezone());
}

bool CanBeWritten(const CalendarEvent& event) {
  return event.start && isCalendarDate(*event.start);
}

icalproperty* StartProperty(NSDate start, const std::optional<NSTimeZone>& zone, bool hasRules) {
  if (!zone || !hasRules) return icalproperty_new_dtstart(UtcTime(start));
  const auto calendar = platform::Services::current().calendars().gregorianCalendar(*zone);
  const NSDate whole =
      NSDate::dateWithTimeIntervalSince1970(std::floor(start.timeIntervalSince1970()));
  const platform::NSDateComponents local = calendar->componentsFromDate(whole);
  // The second run through an hour that the clock goes back over has no name in local time.
  if (calendar->dateFromComponents(local) != whole) {
    return icalproperty_new_dtstart(UtcTime(start));
  }
  icaltimetype time = icaltime_null_time();
  time.year = local.year;
  time.month = local.month;
  time.day = local.day;
  time.hour = local.hour;
  time.minute = local.minute;
  time.second = local.second;
  icalproperty* const property = icalproperty_new_dtstart(time);
  icalproperty_add_parameter(property, icalparameter_new_tzid(zone->name.c_str()));
  return property;
}

}  // namespace

platform::Outcome<Calendar> parseICalendar(const std::string& text,
                                           const ZoneOfFloatingTimes& zoneOfFloatingTimes) {
  icalerror_set_errors_are_fatal(0);
  if (!isText(text)) return BadFile("error_icalendar_text");
  if (!IsWhole(text)) return BadFile("error_icalendar_end");
  const Component root(icalparser_parse_string(text.c_str()));
  if (!root) return BadFile("error_icalendar");
  Calendar result;
  bool isCalendar = false;
  if (icalcomponent_isa(root.get()) == ICAL_VCALENDAR_COMPONENT) {
    isCalendar = true;
    ReadCalendar(root.get(), zoneOfFloatingTimes, result);
  } else {
    // Several calendars in one file.
    for (icalcomponent* calendar =
             icalcomponent_get_first_component(root.get(), ICAL_VCALENDAR_COMPONENT);
         calendar != nullptr;
         calendar = icalcomponent_get_next_component(root.get(), ICAL_VCALENDAR_COMPONENT)) {
      isCalendar = true;
      ReadCalendar(calendar, zoneOfFloatingTimes, result);
    }
  }
  if (!isCalendar) return BadFile("error_icalendar");
  return result;
}

bool isCalendarDate(NSDate date) { return date >= kFirstDate && date < kEndDate; }

std::string formatICalendar(const std::vector<CalendarEvent>& events, NSDate writtenAt) {
  icalerror_set_errors_are_fatal(0);
  const Component calendar(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
  icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
  icalcomponent_add_property(calendar.get(), icalproperty_new_prodid("-//Lumenquest//Plans//EN"));

  std::map<std::string, bool> hasRules;
  for (const CalendarEvent& event : events) {
    if (!CanBeWritten(event) || !event.timeZone || hasRules.contains(event.timeZone->name))
      continue;
    Component rules = ZoneRules(event.timeZone->name);
    hasRules[event.timeZone->name] = rules != nullptr;
    if (rules) icalcomponent_add_component(calendar.get(), rules.release());
  }
  for (const CalendarEvent& event : events) {
    if (!CanBeWritten(event)) continue;
    Component made(icalcomponent_new(ICAL_VEVENT_COMPONENT));
    icalcomponent* const target = made.get();
    if (event.identifier) icalcomponent_set_uid(target, event.identifier->c_str());
    icalcomponent_add_property(target, icalproperty_new_dtstamp(UtcTime(writtenAt)));
    icalcomponent_add_property(target,
                               StartProperty(*event.start, event.timeZone,
                                             event.timeZone && hasRules[event.timeZone->name]));
    if (event.timeZone) AddExtension(target, kZoneProperty, event.timeZone->name);
    if (event.name) icalcomponent_set_summary(target, event.name->c_str());
    if (event.placeName) icalcomponent_set_location(target, event.placeName->c_str());
    if (event.coordinate) {
      const auto [latitude, longitude] = *event.coordinate;
      icalcomponent_add_property(target, icalproperty_new_geo({latitude, longitude}));
      const auto formatter = platform::Formatters::enUSPosixNumberFormatter();
      AddExtension(
          target, kPositionProperty,
          formatter->stringFromNumber(latitude) + " " + formatter->stringFromNumber(longitude));
    }
    icalcomponent_add_component(calendar.get(), made.release());
  }
  return Taken(icalcomponent_as_ical_string_r(calendar.get()));
}

}  // namespace lumenquest::adapters
