#pragma once

#include <concepts>
#include <type_traits>

#include "host/widget_entry.h"

namespace lumenquest::host {

/// What a field's number means.
enum class FieldMeaning {
  plain,
  /// An MJD (UT), or one of the special values.
  instant
};

/// A record of this type, to be read or to be filled.
template <typename Given, typename Record>
concept Like = std::same_as<std::remove_const_t<Given>, Record>;

// visitFields(record, visit) calls visit(name, field) or visit(name, field, meaning) for each field
// of a record, in its order and under its own name; the location part of a record of the sky is a
// record of its own. What writes entries and what reads them share the names through these.

template <Like<widgets::LocationWidgetData> Record, typename Visit>
void visitFields(Record& record, Visit&& visit) {
  visit("address", record.address);
  visit("authorizationStatus", record.authorizationStatus);
  visit("isCurrentLocation", record.isCurrentLocation);
  visit("withError", record.withError);
  visit("timeZone", record.timeZone);
}

template <Like<widgets::SunLightWidgetData> Record, typename Visit>
void visitFields(Record& record, Visit&& visit) {
  visit("mjdTomorrowAt0", record.mjdTomorrowAt0, FieldMeaning::instant);
  visit("mjdRise", record.mjdRise, FieldMeaning::instant);
  visit("mjdSet", record.mjdSet, FieldMeaning::instant);
  visit("sunElevation", record.sunElevation);
  visit("lightType", record.lightType);
  visit("nextEventMjd", record.nextEventMjd, FieldMeaning::instant);
  visit("goldenHourInterval", record.goldenHourInterval);
  visit("blueHourInterval", record.blueHourInterval);
  visit("astronomicalTwilightInterval", record.astronomicalTwilightInterval);
  visit("nextEventName", record.nextEventName);
}

template <Like<widgets::MoonWidgetData> Record, typename Visit>
void visitFields(Record& record, Visit&& visit) {
  visit("mjdTomorrowAt0", record.mjdTomorrowAt0, FieldMeaning::instant);
  visit("mjdRise", record.mjdRise, FieldMeaning::instant);
  visit("mjdSet", record.mjdSet, FieldMeaning::instant);
  visit("moonPhaseString", record.moonPhaseString);
  visit("moonPhase", record.moonPhase);
  visit("zenithAngle", record.zenithAngle);
  visit("isMoonWaning", record.isMoonWaning);
  visit("isSupermoon", record.isSupermoon);
  visit("moonElevation", record.moonElevation);
  visit("sunElevation", record.sunElevation);
  visit("isLimbWaning", record.isLimbWaning);
}

template <Like<widgets::GalacticCenterWidgetData> Record, typename Visit>
void visitFields(Record& record, Visit&& visit) {
  visit("mjdTomorrowAt0", record.mjdTomorrowAt0, FieldMeaning::instant);
  visit("mjdVisibilityFrom", record.mjdVisibilityFrom, FieldMeaning::instant);
  visit("visibilityFromAngle", record.visibilityFromAngle);
  visit("mjdVisibilityTo", record.mjdVisibilityTo, FieldMeaning::instant);
  visit("visibilityToAngle", record.visibilityToAngle);
  visit("moonlessHours", record.moonlessHours);
  visit("dateNextVisibility", record.dateNextVisibility);
  visit("visibilityFromAzimuth", record.visibilityFromAzimuth);
  visit("visibilityToAzimuth", record.visibilityToAzimuth);
}

template <Like<widgets::PlanItem> Record, typename Visit>
void visitFields(Record& record, Visit&& visit) {
  visit("name", record.name);
  visit("date", record.date);
  visit("timeZone", record.timeZone);
  visit("objectId", record.objectId);
}

// visitRecords(entry, visit) calls visit(name, record) for each record of an entry of the sky; one
// that may be absent is an optional.

template <Like<widgets::SunTimelineEntry> Entry, typename Visit>
void visitRecords(Entry& entry, Visit&& visit) {
  visit("data", entry.data);
  visit("moonData", entry.moonData);
  visit("gcData", entry.gcData);
}

template <Like<widgets::MoonTimelineEntry> Entry, typename Visit>
void visitRecords(Entry& entry, Visit&& visit) {
  visit("data", entry.data);
  visit("gcData", entry.gcData);
}

template <Like<widgets::GalacticCenterTimelineEntry> Entry, typename Visit>
void visitRecords(Entry& entry, Visit&& visit) {
  visit("data", entry.data);
}

}  // namespace lumenquest::host
