// `lumenquest plans` as its users call it.

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "adapters/rfc3339.h"
#include "command_fixture.h"
#include "platform/database.h"
#include "platform/planning.h"

namespace lumenquest::app {
namespace {

using Json = nlohmann::json;
using testing::Call;
using testing::DataFolder;
using testing::Result;
using testing::ScratchFolder;

platform::NSDate Instant(const std::string& text) { return adapters::parseRfc3339(text).value(); }

Json List(const std::vector<std::string>& more = {"--all"}) {
  std::vector<std::string> arguments{"plans", "list", "--format", "json"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const Result listed = Call(arguments);
  EXPECT_EQ(listed.code, 0) << listed.err;
  return Json::parse(listed.out);
}

Result Add(const std::string& name, const std::string& date, const std::string& place = "Bled") {
  return Call({"plans", "add", name, "--date", date, "--place", place, "--locale", "en"});
}

TEST(Plans, AddListRemove) {
  const DataFolder data;
  // Looking makes no store.
  EXPECT_EQ(Call({"plans", "list", "--locale", "en"}).out, "Nothing scheduled\n");
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));

  const std::string name = "ליל 🌌 e\u0301\n" + std::string(10000, 'x');
  EXPECT_EQ(Add(name, "2027-05-08 23:30").code, 0);
  EXPECT_EQ(Add("Tokyo", "2027-05-08T23:30:00+09:00", "Tokyo").code, 0);
  const Json plans = List();
  ASSERT_EQ(plans.size(), 2u);
  EXPECT_EQ(plans[0].at("date"), "2027-05-08T14:30:00Z");
  EXPECT_EQ(plans[0].at("timezone"), "Asia/Tokyo");
  EXPECT_EQ(plans[1].at("name"), name);
  EXPECT_EQ(plans[1].at("date"), "2027-05-08T21:30:00Z");
  // One line a plan, whatever its name.
  const std::string text = Call({"plans", "list", "--all", "--locale", "de"}).out;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
  EXPECT_NE(text.find("08.05.27, 23:30   Asia/Tokyo"), std::string::npos) << text;

  // From the start of the local day on.
  setenv("TZ", "Europe/Ljubljana", 1);
  EXPECT_EQ(List({"--at", "2027-05-08T21:59:59Z"}).size(), 2u);
  EXPECT_EQ(List({"--at", "2027-05-08T22:00:00Z"}).size(), 0u);
  unsetenv("TZ");

  // One unknown identifier, or one that is too short, and none is removed.
  const std::string identifier = plans[0].at("uniqueIdentifier");
  const std::string tooShort = identifier.substr(0, 3);
  testing::ExpectRefused({"plans", "remove"},
                         {{{identifier, "zzzz"}, {"zzzz"}}, {{tooShort}, {tooShort}}});
  EXPECT_EQ(List().size(), 2u);
  std::string prefix = identifier.substr(0, 8);
  for (char& c : prefix) c = static_cast<char>(std::tolower(c));
  EXPECT_EQ(Call({"plans", "remove", prefix}).code, 0);
  ASSERT_EQ(List().size(), 1u);
  EXPECT_EQ(List()[0].at("name"), name);
}

TEST(Plans, WhatNoCalendarHoldsIsNotLeftOutOfOneInSilence) {
  const DataFolder data;
  ASSERT_EQ(Add("far", "2027-05-08 23:30").code, 0);
  const auto context = platform::Database::sharedInstance().managedObjectContext();
  const auto found = context->executeFetchRequest({platform::kEntityPlanning});
  ASSERT_EQ(found.value.size(), 1u);
  found.value[0]->setValue(platform::AttributeValue(Instant("3001-01-01T00:00:00Z")),
                           platform::kAttributeDate);
  ASSERT_FALSE(context->save());
  testing::ExpectRefused({"plans", "export"}, {{{}, {"\"far\""}, 1}});
}

TEST(Plans, WrongUseSaysWhatWouldBeRightAndMakesNoStore) {
  const DataFolder data;
  testing::ExpectRefused(
      {"plans"},
      {
          {{}, {"add, list, remove, import, export"}},
          {{"add", " \t", "--date", "2027-05-08 23:30", "--place", "Bled"}, {"NAME is missing"}},
          {{"add", "\xFC", "--date", "2027-05-08 23:30", "--place", "Bled"}, {"UTF-8"}},
          {{"add", "A", "--date", "tomorrow", "--place", "Bled"}, {"\"tomorrow\""}},
          {{"add", "A", "--date", "2027-02-29 12:00", "--place", "Bled"}, {"2027-02-29"}},
          {{"add", "A", "--date", "1200-01-01 12:00", "--place", "Bled"}, {"1583"}},
          {{"add", "A", "--date", "3000-06-01 12:00", "--place", "Bled"}, {"2999"}},
          {{"add", "A", "--date", "2027-03-28 02:30", "--place", "Bled"}, {"Europe/Ljubljana"}},
          {{"add", "A", "--date", "2027-05-08 23:30"}, {"no place: give --place"}},
          {{"import"}, {"FILE is missing"}},
      });
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

TEST(Plans, ImportExport) {
  const ScratchFolder files;
  const std::string calendar = files.path() + "/plans.ics";
  Json before;
  {
    const DataFolder data;
    ASSERT_EQ(Add("Milky Way, over; the lake", "2027-05-08 23:30").code, 0);
    ASSERT_EQ(
        Call({"plans", "add", "Bay", "--date", "2060-07-01 21:00", "--latitude", "-33.123456789",
              "--longitude", "151.98765432", "--time-zone", "Australia/Sydney"})
            .code,
        0);
    before = List();
    ASSERT_EQ(Call({"plans", "export", calendar}).code, 0);
    const Json again = Json::parse(Call({"plans", "import", calendar, "--format", "json"}).out);
    EXPECT_EQ(again.at("unchanged"), 2);
    EXPECT_EQ(List(), before);
  }
  const DataFolder data;
  EXPECT_EQ(Json::parse(Call({"plans", "import", calendar, "--format", "json"}).out).at("added"),
            2);
  EXPECT_EQ(List(), before);

  // A calendar that was changed elsewhere: one plan moved, one new by a place's name, one that is
  // there already under another identifier.
  std::string text = testing::Contents(calendar);
  const auto replace = [&](const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
  };
  replace("20600701T210000", "20600702T213000");
  replace("END:VCALENDAR",
          "BEGIN:VEVENT\r\nUID:other@example\r\nSUMMARY:Bay\r\nGEO:-33.123456789;151.98765432\r\n"
          "X-LUMENQUEST-POSITION:-33.123456789 151.98765432\r\n"
          "DTSTART;TZID=Australia/Sydney:20600702T213000\r\nEND:VEVENT\r\n"
          "BEGIN:VEVENT\r\nUID:new@example\r\nSUMMARY:New\r\nLOCATION:Chamonix\\, France\r\n"
          "DTSTART:20270801T040000\r\nEND:VEVENT\r\nEND:VCALENDAR");
  std::ofstream(calendar) << text;
  const Json report = Json::parse(Call({"plans", "import", calendar, "--format", "json"}).out);
  for (const auto& [name, count] :
       {std::pair("added", 2), {"updated", 1}, {"unchanged", 1}, {"duplicatesRemoved", 1}}) {
    EXPECT_EQ(report.at(name), count) << name;
  }
  const Json after = List();
  ASSERT_EQ(after.size(), 3u);
  EXPECT_EQ(after[1].at("name"), "New");
  EXPECT_EQ(after[1].at("timezone"), "Europe/Paris");
  EXPECT_EQ(after[1].at("date"), "2027-08-01T02:00:00Z");
  EXPECT_EQ(after[2].at("date"), "2060-07-02T11:30:00Z");

  // What is no calendar changes nothing.
  std::ofstream(calendar) << text.substr(0, text.size() / 2);
  testing::ExpectRefused({"plans"}, {{{"import", calendar}, {calendar}, 2},
                                     {{"import", files.path()}, {files.path()}, 1},
                                     {{"import", files.path() + "/none.ics"}, {"none.ics"}, 1},
                                     {{"export", files.path() + "/none/a.ics"}, {"a.ics"}, 1}});
  EXPECT_EQ(List(), after);
}

}  // namespace
}  // namespace lumenquest::app
