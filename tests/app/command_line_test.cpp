// The command as its users call it.

#include "app/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "command_fixture.h"

namespace lumenquest::app {
namespace {

using Json = nlohmann::json;

using testing::Call;
using testing::Result;
using testing::ScratchFolder;

/// The user's own settings stay out of the tests.
const int kNoSettings = setenv("XDG_DATA_HOME", "/nonexistent", 1);

std::vector<std::string> Today(const std::string& latitude, const std::string& longitude,
                               const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments{"today",   "--latitude", latitude, "--longitude",
                                     longitude, "--locale",   "en"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

TEST(CommandLine, WrongUseIsOneLineThatSaysWhatWouldBeRight) {
  testing::ExpectRefused(
      {},
      {
          {{}, {"today", "--help"}},
          {{"tomorrow"}, {"tomorrow", "today"}},
          {{"today", "--frobnicate"}, {"--frobnicate", "--help"}},
          {{"today", "--latitude"}, {"--latitude", "no value", "-90 to 90"}},
          {{"today", "--latitude", "--longitude", "3"}, {"--latitude", "no value"}},
          {Today("1", "2", {"--at", "--format", "json"}), {"--at", "no value", "RFC 3339"}},
          {Today("1", "2", {"--time-zone="}), {"--time-zone", "no value"}},
          {Today("1\n2", "0"), {"--latitude", "1\uFFFD2"}},
          {Today("0", "0", {"--time-zone", "\x1b[31m" + std::string(5000, 'x')}),
           {"--time-zone", "…"}},
          {Today("+-5", "0"), {"--latitude", "\"+-5\""}},
          {{"today"}, {"--place", "--latitude"}},
          {{"today", "--longitude", "3"}, {"--latitude", "missing", "-90 to 90"}},
          {Today("90.001", "0"), {"--latitude", "\"90.001\"", "-90 to 90"}},
          {Today("nan", "0"), {"--latitude", "\"nan\""}},
          {Today("45,5", "0"), {"--latitude", "\"45,5\""}},
          {Today("", "0"), {"--latitude", "\"\""}},
          {Today("0", "180.5"), {"--longitude", "\"180.5\"", "-180 to 180"}},
          {Today("0", "0", {"--time-zone", "Mars/Olympus"}),
           {"--time-zone", "Mars/Olympus", "Europe/Madrid"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "tonight"}),
           {"--at", "tonight", "RFC 3339"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "2024-02-30T00:00:00Z"}), {"--at"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "-3001-01-01T00:00:00Z"}),
           {"--at", "-3000"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "5001-01-01T00:00:00Z"}),
           {"--at", "5000"}},
          {Today("0", "0", {"--time-zone", "UTC", "--format", "xml"}), {"--format", "xml", "json"}},
          {Today("0", "0", {"--time-zone", "UTC", "--locale", "klingon"}), {"--locale", "klingon"}},
          {Today("0", "0", {"--time-zone", "UTC", "stray"}), {"stray"}},
      });
}

TEST(Settings, ListGetAndSet) {
  const ScratchFolder data;
  setenv("XDG_DATA_HOME", data.path().c_str(), 1);
  const auto call = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "settings");
    return Call(arguments);
  };
  const std::string file = data.path() + "/lumenquest/group.lumenquest.lumenquest/settings.sqlite";
  EXPECT_EQ(call({"get", "global_coordinate_system"}).out, "--\n");
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_EQ(call({"set", "global_coordinate_system", "2"}).code, kExitSuccess);
  EXPECT_EQ(call({"get", "global_coordinate_system"}).out, "2\n");
  EXPECT_EQ(call({"set", "today_extension_longitude", "-112.5"}).code, kExitSuccess);
  EXPECT_EQ(call({"set", "today_extension_address", "Grand Canyon\nSüd"}).code, kExitSuccess);
  const Json json = Json::parse(call({"list", "--format", "json"}).out);
  EXPECT_EQ(json.at("today_extension_longitude"), -112.5);
  EXPECT_EQ(json.at("today_extension_address"), "Grand Canyon\nSüd");
  EXPECT_TRUE(json.at("today_extension_latitude").is_null());
  const std::string list = call({"list"}).out;
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 6);
  // The day's table follows the notation.
  EXPECT_TRUE(
      Call(Today("-33.5", "151.25", {"--time-zone", "UTC"})).out.starts_with("33°30'0\"S "));

  testing::ExpectRefused({"settings"}, {{{}, {"list"}},
                                        {{"get"}, {"KEY"}},
                                        {{"get", "no_such"}, {"no_such"}},
                                        {{"set", "global_use_geodesics"}, {"VALUE"}},
                                        {{"set", "global_use_geodesics", "maybe"}, {"maybe"}},
                                        {{"set", "global_coordinate_system", "3"}, {"\"3\""}},
                                        {{"set", "today_extension_latitude", "91"}, {"91"}},
                                        {{"set", "today_extension_timezone", "Mars"}, {"Mars"}}});

  // A file that is something else is named, left alone, and does not keep the day from being shown.
  const ScratchFolder other;
  setenv("XDG_DATA_HOME", other.path().c_str(), 1);
  const std::filesystem::path foreign =
      other.path() + "/lumenquest/group.lumenquest.lumenquest/settings.sqlite";
  std::filesystem::create_directories(foreign.parent_path());
  std::ofstream(foreign) << "not a database, but somebody's only copy of something";
  for (const auto& arguments :
       {std::vector<std::string>{"list"}, {"set", "global_coordinate_system", "1"}}) {
    const Result result = call(arguments);
    EXPECT_EQ(result.code, kExitFailure);
    EXPECT_NE(result.err.find(foreign.string()), std::string::npos);
  }
  EXPECT_EQ(std::filesystem::file_size(foreign), 53u);
  EXPECT_EQ(Call(Today("0", "0", {"--time-zone", "UTC"})).code, kExitSuccess);

  // A user without folders has no settings; none are made in the folder that he happens to be in.
  const char* const home = std::getenv("HOME");
  const std::string homeBefore = home != nullptr ? home : "";
  unsetenv("HOME");
  setenv("XDG_DATA_HOME", "relative", 1);
  for (const auto& arguments :
       {std::vector<std::string>{"list"}, {"set", "global_coordinate_system", "1"}}) {
    const Result result = call(arguments);
    EXPECT_EQ(result.code, kExitFailure);
    EXPECT_NE(result.err.find("XDG_DATA_HOME"), std::string::npos) << result.err;
  }
  EXPECT_EQ(Call(Today("0", "0", {"--time-zone", "UTC"})).code, kExitSuccess);
  EXPECT_FALSE(std::filesystem::exists(".local") || std::filesystem::exists("relative"));
  if (home != nullptr) setenv("HOME", homeBefore.c_str(), 1);
  setenv("XDG_DATA_HOME", "/nonexistent", 1);
}

TEST(Places, SearchAtAndPlace) {
  const Json found = Json::parse(Call({"places", "search", "moab ut", "--format", "json"}).out);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].at("name"), "Moab");
  EXPECT_EQ(found[0].at("timeZone"), "America/Denver");
  const std::string list = Call({"places", "search", "sao paulo", "--locale", "de"}).out;
  EXPECT_TRUE(list.starts_with("São Paulo, Brasilien")) << list;

  const Json bled = Json::parse(
      Call({"places", "at", "46.3625, 14.0936", "--locale", "en", "--format", "json"}).out);
  EXPECT_EQ(bled.at("title"), "Bled");
  EXPECT_EQ(bled.at("timeZone"), "Europe/Ljubljana");
  EXPECT_EQ(bled.at("decimalMinutes"), "46°21.75'N 14°5.62'E");
  // On the high sea the coordinate is the title.
  const Json sea =
      Json::parse(Call({"places", "at", "-45,-130", "--locale", "en", "--format", "json"}).out);
  EXPECT_EQ(sea.at("title"), "45.000000°S 130.000000°W");
  EXPECT_TRUE(sea.at("subtitle").is_null());

  const auto today = [](const std::string& place, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments{"today",   "--locale", "en", "--at", "2026-06-20T20:00:00Z",
                                       "--place", place};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Call(arguments);
  };
  EXPECT_TRUE(today("chamonix, france")
                  .out.starts_with(
                      "Chamonix-Mont-Blanc, France   45.923750°N 6.869330°E   Europe/Paris\n"));
  EXPECT_NE(today("Moab, Utah", {"--time-zone", "UTC"}).out.find("   UTC\n"), std::string::npos);

  testing::ExpectRefused(
      {}, {{{"today", "--place", "paris"},
            {"Paris, Île-de-France, France; Paris, Texas, United States"}},
           {{"today", "--place", "San José, Catamarca, Argentina"}, {"Argentina (-2"}},
           {{"today", "--place", "xyzzyq"}, {"xyzzyq"}},
           {{"today", "--place", std::string(10000, 'q')}, {"…"}},
           {{"today", "--place", "moab", "--latitude", "3"}, {"one of them"}},
           {{"places"}, {"search, at"}},
           {{"places", "search"}, {"TEXT"}},
           {{"places", "search", "xyzzyq\n"}, {"xyzzyq\uFFFD"}},
           {{"places", "at", "46.3625"}, {"46.3625,14.0936"}},
           {{"places", "at", "91,0"}, {"91,0"}}});
}

TEST(CommandLine, HelpAndVersion) {
  EXPECT_EQ(Call({"--version"}).code, kExitSuccess);
  EXPECT_TRUE(Call({"--version"}).out.starts_with("lumenquest "));
  for (const auto& arguments : {std::vector<std::string>{"--help"}, {"today", "--help"}}) {
    const Result help = Call(arguments);
    EXPECT_EQ(help.code, kExitSuccess);
    EXPECT_NE(help.out.find("lumenquest today --latitude"), std::string::npos);
  }
  EXPECT_NE(Call({"settings", "set", "--help"}).out.find("lumenquest settings set KEY VALUE"),
            std::string::npos);
  const Result german = Call({"today", "--help", "--locale", "de"});
  EXPECT_NE(german.out.find("Aufruf: lumenquest today --latitude DEG"), std::string::npos);
  EXPECT_NE(german.out.find("Zeitzone"), std::string::npos);
  EXPECT_EQ(german.out.find("Options"), std::string::npos) << german.out;
}

TEST(Today, TextReadsAtAGlance) {
  const Result english = Call(Today(
      "36.1", "-112.1", {"--time-zone", "America/Phoenix", "--at", "2026-06-20T22:00:00-07:00"}));
  EXPECT_EQ(english.code, kExitSuccess);
  for (const char* row :
       {"36.100000°N 112.100000°W   America/Phoenix", "Saturday, June 20, 2026", "10:00\u202FPM",
        "Light now               Night\n", "Next light              Astronomical twilight, 3:22",
        "Sunrise                 5:12\u202FAM (+1)\n", "Golden hour             4:53 - 5:50",
        "Moon                    Waxing crescent (42.8%)\n",
        "Galactic centre         From 9:39\u202FPM, azimuth 145° SE, band tilt -60°\n",
        "                        To 3:22\u202FAM (+1), azimuth 220° SW, band tilt 5°\n",
        "Moonless hours          3h 19min\n"}) {
    EXPECT_NE(english.out.find(row), std::string::npos) << row << "\nin\n" << english.out;
  }

  const Result german = Call({"today", "--latitude", "45.92", "--longitude", "6.87", "--time-zone",
                              "Europe/Paris", "--at", "2026-11-22T20:30:00Z", "--locale", "de"});
  for (const char* row :
       {"45,920000°N 6,870000°O", "Sonntag, 22. November 2026, 21:30",
        "Mond                      Zunehmender Mond (95", "Erst sichtbar am Sonntag, 24.01.27"}) {
    EXPECT_NE(german.out.find(row), std::string::npos) << row << "\nin\n" << german.out;
  }
  // Wide characters, and arguments in another order.
  const Result japanese =
      Call({"today", "--latitude", "45.92", "--longitude", "6.87", "--time-zone", "Europe/Paris",
            "--at", "2026-11-22T20:30:00Z", "--locale", "ja"});
  for (const char* row : {"月                 満月前の月 (95", "次に見える日 2027/01/24(日曜日)"}) {
    EXPECT_NE(japanese.out.find(row), std::string::npos) << row << "\nin\n" << japanese.out;
  }
}

TEST(Today, JsonIsOfThePlaceAndComesOutTheSameAgain) {
  const auto arguments =
      Today("40.0", "3.836187",
            {"--time-zone", "Europe/Madrid", "--at", "2026-06-21T00:00:00+02:00", "--format=json"});
  const Result result = Call(arguments);
  EXPECT_EQ(result.out, Call(arguments).out);
  const Json json = Json::parse(result.out);
  EXPECT_EQ(json.at("location"),
            (Json{{"latitude", 40.0}, {"longitude", 3.836187}, {"timeZone", "Europe/Madrid"}}));
  EXPECT_EQ(json.at("instant"), "2026-06-20T22:00:00Z");
  EXPECT_TRUE(json.at("dateNextVisiblity").is_null());
  EXPECT_EQ(json.at("values").at("currentLightType"), "Night");

  // No visibility tonight: the view model's date, at the same time of day.
  const Result winter = Call(
      Today("45.92", "6.87",
            {"--time-zone", "Europe/Paris", "--at", "2026-11-22T20:30:00Z", "--format", "json"}));
  EXPECT_EQ(Json::parse(winter.out).at("dateNextVisiblity"), "2027-01-24T20:30:00Z");
}

TEST(Today, NoPlaceOrAgeMakesItFail) {
  // Poles, the equator, both sides of the date line, grazing latitudes, and years from −3000 to
  // 5000: an answer, and no number that is none.
  std::mt19937 random(7);
  const std::vector<std::string> latitudes{"90",     "-90",  "0",    "66.56",
                                           "-66.56", "67.4", "48.6", "84.5"};
  const std::vector<std::string> longitudes{"180", "-180", "0", "123.4"};
  const std::vector<std::string> zones{"UTC", "Pacific/Kiritimati", "America/Adak", "Africa/Cairo"};
  const std::vector<std::string> years{"-3000", "-0044", "0000", "1582",
                                       "1899",  "2026",  "2050", "4999"};
  const auto any = [&](const auto& list) { return list[random() % list.size()]; };
  for (int i = 0; i < 120; ++i) {
    const std::string month = any(std::vector<std::string>{"01", "03", "04", "06", "10", "12"});
    const auto arguments = Today(any(latitudes), any(longitudes),
                                 {"--time-zone", any(zones), "--at",
                                  any(years) + "-" + month + "-" + std::to_string(10 + i % 18) +
                                      "T" + std::to_string(10 + i % 14) + ":47:00Z",
                                  "--format", i % 2 ? "json" : "text"});
    const Result result = Call(arguments);
    SCOPED_TRACE(arguments[2] + " " + arguments[4] + " " + arguments[8] + " " + arguments[10]);
    EXPECT_EQ(result.code, kExitSuccess);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.find("nan"), std::string::npos);
    EXPECT_EQ(result.out.find("inf"), std::string::npos);
    if (i % 2 == 0) continue;
    const Json values = Json::parse(result.out).at("values");
    for (const auto& [name, value] : values.items()) {
      const bool mayBeNull =
          name == "nextEventName" || name.ends_with("Interval") || name == "dateNextVisiblity";
      EXPECT_TRUE(mayBeNull || !value.is_null()) << name;
    }
  }
}

TEST(Today, SpeaksEveryLocale) {
  // Words of a language that has no tables fall back to English, times and digits do not; years
  // stay the engine's.
  struct Case {
    const char* locale;
    const char* contains;
    const char* night = "Night";
  };
  const Case cases[] = {{"fi", "22.00", "Yö"}, {"ja", "22:00", "夜"}, {"he-IL", "22:00", "לילה"},
                        {"ar-EG", "١٠:٠٠"},    {"th", "22:00"},       {"fa", "۲۲:۰۰"},
                        {"en-GB", "22:00"},    {"hi", "10:00"},       {"sr-RS", "22:00"}};
  for (const Case& c : cases) {
    const Result result =
        Call({"today", "--latitude", "36.1", "--longitude", "-112.1", "--time-zone",
              "America/Phoenix", "--at", "2026-06-20T22:00:00-07:00", "--locale", c.locale});
    EXPECT_EQ(result.code, kExitSuccess) << c.locale;
    EXPECT_NE(result.out.find(c.contains), std::string::npos) << c.locale << '\n' << result.out;
    EXPECT_NE(result.out.find(c.night), std::string::npos) << c.locale;
  }
}

TEST(Today, AFullDiskIsAnError) {
  std::ostringstream err;
  std::ostringstream full;
  full.setstate(std::ios::badbit);
  EXPECT_EQ(run(Today("0", "0", {"--time-zone", "UTC"}), full, err), kExitFailure);
  EXPECT_NE(err.str().find("cannot be written"), std::string::npos);
}

}  // namespace
}  // namespace lumenquest::app
