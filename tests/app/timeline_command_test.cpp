// `lumenquest timeline` and `lumenquest widgets` as their users call them.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "command_fixture.h"

namespace lumenquest::app {
namespace {

using Json = nlohmann::ordered_json;
using testing::Call;
using testing::DataFolder;
using testing::Result;
using testing::ScratchFolder;

Result CallTimeline(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "timeline");
  arguments.insert(arguments.end(), {"--at", "2024-08-12T12:00:00Z", "--locale", "en"});
  return Call(arguments);
}

Json Timeline(std::vector<std::string> arguments) {
  arguments.insert(arguments.end(), {"--format", "json"});
  const Result result = CallTimeline(arguments);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(CallTimeline(arguments).out, result.out) << "not the same again";
  return Json::parse(result.out);
}

TEST(Timeline, HasTheRecordsThatItsFamilyShows) {
  const DataFolder data;
  const struct {
    const char* kind;
    const char* family;
    /// The first name of what is an object or null in the entry, the nulls in brackets.
    const char* records;
  } cases[] = {
      {"SunWidget", "systemSmall", "data (moonData) (gcData)"},
      {"SunWidget", "systemMedium", "data (moonData) (gcData)"},
      {"LumenquestWidget", "systemLarge", "data moonData gcData"},
      {"MoonWidget", "systemSmall", "data (gcData)"},
      {"MoonWidget", "systemMedium", "data gcData"},
      {"GalacticCenterSmallWidget", "systemSmall", "data"},
  };
  for (const auto& c : cases) {
    for (const std::string request : {"timeline", "snapshot", "placeholder"}) {
      SCOPED_TRACE(std::string(c.kind) + " " + c.family + " " + request);
      const Json json =
          Timeline({c.kind, "--family", c.family, "--here", "46.3625,14.0936", "--settings",
                    "memory", "--theme", "light", "--request", request});
      const Json& entry = json.at("entry");
      std::string records;
      for (const auto& [name, value] : entry.items()) {
        if (!value.is_object() && !value.is_null()) continue;
        records += (records.empty() ? "" : " ") + (value.is_null() ? "(" + name + ")" : name);
      }
      EXPECT_EQ(records, c.records);
      EXPECT_EQ(entry.at("date"), "2024-08-12T12:00:00Z");
      EXPECT_EQ(entry.at("theme"), request == "placeholder" ? "themeSystem" : "themeLight");
      if (request != "timeline") continue;
      EXPECT_EQ(json.at("reloadPolicy").at("after"), "2024-08-12T12:30:00Z");
      EXPECT_EQ(entry.at("data").at("locationData"), Json({{"address", "Bled"},
                                                           {"authorizationStatus", 4},
                                                           {"isCurrentLocation", true},
                                                           {"withError", false},
                                                           {"timeZone", "Europe/Ljubljana"}}));
    }
  }
  // Nothing of the user's was read, written or made.
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

TEST(Timeline, TheSharedSettingsKeepTheLastPlace) {
  const DataFolder data;
  const auto sun = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "sun");
    return Timeline(arguments).at("entry").at("data").at("locationData");
  };
  const auto saved = [] { return Call({"settings", "get", "today_extension_address"}).out; };
  EXPECT_EQ(sun({"--place", "Chamonix, France"}).at("isCurrentLocation"), false);
  sun({"--here", "38.57,-109.55", "--settings", "memory"});
  EXPECT_EQ(saved(), "Chamonix-Mont-Blanc\n");
  EXPECT_EQ(sun({"--here", "38.57,-109.55", "--my-location"}).at("isCurrentLocation"), true);
  EXPECT_EQ(saved(), "Moab\n");

  // A device that never moves says where it is in its configuration.
  const ScratchFolder configuration;
  setenv("XDG_CONFIG_HOME", configuration.path().c_str(), 1);
  const std::string folder = configuration.path() + "/lumenquest";
  std::filesystem::create_directory(folder);
  std::ofstream(folder + "/position.json") << R"({"latitude": 46.3625, "longitude": 14.0936})";
  EXPECT_EQ(sun({"--settings", "memory"}).at("address"), "Bled");
  std::ofstream(folder + "/position.json") << R"({"latitude": 96, "longitude": 14})";
  testing::ExpectRefused({"timeline", "sun"}, {{{"--settings", "memory"}, {folder}, 1}});
  setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
  // Where there is no location service the last place serves, and without one the entry says so.
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  EXPECT_EQ(sun({}).at("address"), "Moab");
  const Json nowhere = sun({"--settings", "memory"});
  EXPECT_EQ(nowhere.at("address"), nullptr);
  EXPECT_EQ(nowhere.at("withError"), true);
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

TEST(Timeline, Plans) {
  const DataFolder data;
  EXPECT_EQ(Timeline({"plans"}).at("entry").at("plans"), Json::array());
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
  Call({"plans", "add", "Perseids", "--date", "2024-08-12 23:30", "--place", "Bled"});
  const Json json = Timeline({"PlansWidget", "--theme", "system"});
  EXPECT_EQ(json.at("reloadPolicy"), "atEnd");
  const Json& plans = json.at("entry").at("plans");
  ASSERT_EQ(plans.size(), 1u);
  EXPECT_EQ(plans[0].at("name"), "Perseids");
  EXPECT_EQ(plans[0].at("date"), "2024-08-12T21:30:00Z");
  EXPECT_EQ(plans[0].at("timeZone"), "Europe/Ljubljana");
  EXPECT_EQ(plans[0].at("objectId").get<std::string>().find("x-store:%2F%2F"), 0u);
}

TEST(Timeline, TextReadsAtAGlance) {
  const DataFolder data;
  const std::string text =
      CallTimeline({"lumenquest", "--place", "Chamonix, France", "--settings", "memory"}).out;
  for (const char* line :
       {"kind                             LumenquestWidget\n",
        "reloadPolicy                     after 2024-08-12T12:30:00Z\n",
        "  address                        Chamonix-Mont-Blanc\n", "\nmoonData\n", "\ngcData\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
  }
  EXPECT_NE(text.find(" 6:30\u202FAM (+1)\n"), std::string::npos) << text;  // sunrise, there
}

TEST(Timeline, WrongUseIsOneLineThatSaysWhatWouldBeRight) {
  const DataFolder data;
  testing::ExpectRefused(
      {"timeline"},
      {
          {{}, {"KIND", "missing", "SunWidget", "PlansWidget"}},
          {{"moo"}, {"KIND", "\"moo\"", "MoonWidget"}},
          {{"sun", "--family", "large"}, {"--family", "\"large\"", "small, medium"}},
          {{"sun", "--here", "1"}, {"--here", "\"1\"", "46.3625,14.0936"}},
          {{"sun", "--here", "1,2", "--place", "Bled"}, {"place", "position"}},
          {{"sun", "--settings", "mine"}, {"--settings", "shared, memory"}},
          {{"sun", "--request", "picture"}, {"--request", "timeline, snapshot, placeholder"}},
      });
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

TEST(Widgets, ListsThemAll) {
  const std::string text = Call({"widgets", "--locale", "de"}).out;
  const Json all = Json::parse(Call({"widgets", "--format", "json", "--locale", "de"}).out);
  ASSERT_EQ(all.size(), 5u);
  for (const Json& one : all) {
    EXPECT_NE(text.find(one.at("description").get<std::string>()), std::string::npos);
  }
  EXPECT_EQ(all[0].at("families"), Json({"systemSmall", "systemMedium"}));
}

}  // namespace
}  // namespace lumenquest::app
