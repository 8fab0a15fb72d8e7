#include "adapters/icalendar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "test_services.h"

namespace lumenquest::adapters {
namespace {

using platform::CLLocationCoordinate2D;
using platform::NSDate;
using platform::NSTimeZone;
using testing::Instant;

/// Stands for the look-up of a place's zone.
NSTimeZone FloatingZone(const CalendarEvent& event) {
  return {event.coordinate ? "Australia/Sydney" : "Europe/Madrid"};
}

Calendar Parse(const std::string& events, const std::string& head = "") {
  auto parsed = parseICalendar("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//t//t//EN\r\n" + head +
                                   events + "END:VCALENDAR\r\n",
                               FloatingZone);
  EXPECT_FALSE(parsed.error);
  return parsed.value;
}

TEST(ICalendar, TheStartIsUnderstoodHoweverItIsWritten) {
  const testing::TestServices services("2027-01-01T00:00:00Z");
  // A program of offices writes its own zone names and gives the rules along; "Ours" is known from
  // its rules alone.
  const std::string rules =
      "BEGIN:VTIMEZONE\r\nTZID:Ours\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
      "TZOFFSETFROM:+0330\r\nTZOFFSETTO:+0330\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
  const struct {
    const char* line;
    const char* start;
    const char* zone = "";
  } cases[] = {
      {"DTSTART:20270701T213000Z", "2027-07-01T21:30:00Z"},
      {"DTSTART:20270701T213000", "2027-07-01T19:30:00Z"},
      {"DTSTART;VALUE=DATE:20270701", "2027-06-30T22:00:00Z"},
      {"GEO:-33.86;151.21\r\nDTSTART:20270701T213000", "2027-07-01T11:30:00Z"},
      {"DTSTART;TZID=America/Denver:20270701T213000", "2027-07-02T03:30:00Z", "America/Denver"},
      {"DTSTART;TZID=/example.org/2007/Europe/Berlin:20270101T213000", "2027-01-01T20:30:00Z",
       "Europe/Berlin"},
      {"DTSTART;TZID=W. Europe Standard Time:20500701T213000", "2050-07-01T19:30:00Z",
       "Europe/Berlin"},
      {"DTSTART;TZID=Ours:20270701T213000", "2027-07-01T18:00:00Z"},
      {"X-LUMENQUEST-TIMEZONE:Asia/Tokyo\r\nDTSTART:20270701T213000Z", "2027-07-01T21:30:00Z",
       "Asia/Tokyo"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    const Calendar calendar =
        Parse("BEGIN:VEVENT\r\nUID:1\r\n" + std::string(c.line) + "\r\nEND:VEVENT\r\n", rules);
    ASSERT_EQ(calendar.events.size(), 1u);
    EXPECT_EQ(calendar.events[0].start, Instant(c.start));
    EXPECT_EQ(calendar.events[0].timeZone.value_or(NSTimeZone{}).name, c.zone);
  }
  // The calendar's own zone is where its floating times belong.
  EXPECT_EQ(Parse("BEGIN:VEVENT\r\nDTSTART:20270701T213000\r\nEND:VEVENT\r\n",
                  "X-WR-TIMEZONE:America/Denver\r\n")
                .events.at(0)
                .timeZone,
            NSTimeZone{"America/Denver"});
}

std::string Event(const std::string& name, const std::string& properties) {
  return "BEGIN:VEVENT\r\nSUMMARY:" + name + properties + "\r\nEND:VEVENT\r\n";
}

TEST(ICalendar, WhatIsNoPlanIsNamed) {
  const testing::TestServices services("2027-01-01T00:00:00Z");
  const Calendar calendar = Parse(
      Event("off", "\r\nSTATUS:CANCELLED\r\nDTSTART:20270701T213000Z") + Event("when", "") +
      Event("where", "\r\nDTSTART;TZID=Nowhere:20270701T213000") +
      Event("day", "\r\nDTSTART:20270229T100000Z") + Event("year", "\r\nDTSTART:30000101T100000Z") +
      Event("hour", "\r\nDTSTART:20270228T250000Z") +
      "BEGIN:VTODO\r\nSUMMARY:to do\r\nEND:VTODO\r\n");
  EXPECT_TRUE(calendar.events.empty());
  EXPECT_EQ(calendar.cancelled, std::vector<std::string>{"off"});
  EXPECT_EQ(calendar.withoutStart,
            (std::vector<std::string>{"when", "where", "day", "year", "hour"}));

  for (const char* text : {"", "garbage", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n",
                           "BEGIN:VCARD\r\nFN:x\r\nEND:VCARD\r\n", "END:VCALENDAR"}) {
    EXPECT_TRUE(parseICalendar(text, FloatingZone).error) << text;
  }
  const auto saying = [](const std::string& name) {
    return "BEGIN:VCALENDAR\r\n" + Event(name, "\r\nDTSTART:20270701T213000Z") +
           "END:VCALENDAR\r\n";
  };
  EXPECT_FALSE(parseICalendar(saying("\xC3\xBC"), FloatingZone).error);
  for (const std::string& name : {std::string("\xFC"), std::string("a\0b", 3)}) {
    const auto parsed = parseICalendar(saying(name), FloatingZone);
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->key, "error_icalendar_text");
  }
}

TEST(ICalendar, WhatGoesOutComesInTheSame) {
  const testing::TestServices services("2027-01-01T00:00:00Z");
  std::mt19937_64 random(20270508);
  const auto uniform = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  const std::string pieces[] = {"a",       ",",   ";", "\\",           "\n", "\"",
                                "e\u0301", "ליל", "🌌", "BEGIN:VEVENT", "^n"};
  const char* zones[] = {"Europe/Ljubljana", "Africa/Cairo", "America/Nuuk", "Etc/GMT+9", "UTC"};
  std::vector<CalendarEvent> events;
  for (int i = 0; i < 200; ++i) {
    CalendarEvent event;
    event.identifier = "id-" + std::to_string(i);
    event.name.emplace();
    // Longer ones among them than any line or buffer.
    const std::size_t length = i % 50 == 0 ? 10000 : 30;
    while (event.name->size() < length) *event.name += pieces[random() % std::size(pieces)];
    // Blanks around a text do not survive the format.
    *event.name = "(" + *event.name + ")";
    // Once an hour of the autumn's double one.
    const double second = std::floor(uniform(-3e9, i % 5 == 0 ? 3.2e10 : 6e9));
    event.start =
        i == 7 ? Instant("2027-10-31T01:30:00Z") : NSDate::dateWithTimeIntervalSince1970(second);
    event.timeZone = NSTimeZone{i == 7 ? "Europe/Ljubljana" : zones[random() % std::size(zones)]};
    if (i % 3 != 0) event.coordinate = {uniform(-90, 90), uniform(-180, 180)};
    if (i % 2 != 0) event.placeName = "Chamonix, \"France\"";
    events.push_back(event);
  }
  const std::string text = formatICalendar(events, Instant("2027-01-01T00:00:00Z"));
  const auto parsed = parseICalendar(text, FloatingZone);
  ASSERT_FALSE(parsed.error);
  ASSERT_EQ(parsed.value.events.size(), events.size());
  for (std::size_t i = 0; i < events.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_TRUE(parsed.value.events[i] == events[i]);
  }
}

}  // namespace
}  // namespace lumenquest::adapters
