// The command as its users call it.

#include "app/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
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
          {Today("1", "2", {"--at", "--format", "json"}), {"--at", "no value", "RFC 3339"}},
          {Today("1\n2", "0"), {"--latitude", "1\uFFFD2"}},
          {Today("0", "0", {"--time-zone", "\x1b[31m" + std::string(5000, 'x')}),
           {"--time-zone", "…"}},
          {Today("+-5", "0"), {"--latitude", "\"+-5\""}},
          {{"today"}, {"--place", "--latitude"}},
          {{"today", "--longitude", "3"}, {"--latitude", "missing", "-90 to 90"}},
          {Today("90.001", "0"), {"--latitude", "\"90.001\"", "-90 to 90"}},
          {Today("nan", "0"), {"--latitude", "\"nan\""}},
          {Today("0", "180.5"), {"--longitude", "\"180.5\"", "-180 to 180"}},
          {Today("0", "0", {"--time-zone", "Mars/Olympus"}),
           {"--time-zone", "Mars/Olympus", "Europe/Madrid"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "tonight"}),
           {"--at", "tonight", "RFC 3339"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "-3001-01-01T00:00:00Z"}),
           {"--at", "-3000"}},
          {Today("0", "0", {"--time-zone", "UTC", "--at", "5001-01-01T00:00:00Z"}),
           {"--at", "5000"}},
          {Today("0", "0", {"--time-zone", "UTC", "--format", "xml"}), {"--format", "xml", "json"}},
          {Today("0", "0", {"--time-zone", "UTC", "--locale", "klingon"}), {"--locale", "klingon"}},
      });
}

TEST(Settings, ListGetAndSet) {
  const testing::DataFolder data;
  const auto call = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "settings");
    return Call(arguments);
  };
  EXPECT_EQ(call({"get", "global_coordinate_system"}).out, "--\n");
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
  EXPECT_EQ(call({"set", "global_coordinate_system", "2"}).code, kExitSuccess);
  EXPECT_EQ(call({"get", "global_coordinate_system"}).out, "2\n");
  EXPECT_EQ(call({"set", "today_extension_address", "Grand Canyon\nSüd"}).code, kExitSuccess);
  const Json json = Json::parse(call({"list", "--format", "json"}).out);
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
}

TEST(Settings, ThatCannotBeHadAreNamedAndDoNotKeepTheDayFromBeingShown) {
  const auto expectRefused = [](const std::string& says) {
    testing::ExpectRefused({"settings"},
                           {{{"list"}, {says}, kExitFailure},
                            {{"set", "global_coordinate_system", "1"}, {says}, kExitFailure}});
    EXPECT_EQ(Call(Today("0", "0", {"--time-zone", "UTC"})).code, kExitSuccess);
  };
  {
    const testing::DataFolder data;
    const std::filesystem::path foreign =
        data.path() + "/lumenquest/group.lumenquest.lumenquest/settings.sqlite";
    std::filesystem::create_directories(foreign.parent_path());
    std::ofstream(foreign) << "not a database, but somebody's only copy of something";
    expectRefused(foreign.string());
    EXPECT_EQ(std::filesystem::file_size(foreign), 53u);
  }
  // A user without folders has no settings; none are made in the folder that he happens to be in.
  const char* const home = std::getenv("HOME");
  const std::string homeBefore = home != nullptr ? home : "";
  unsetenv("HOME");
  setenv("XDG_DATA_HOME", "relative", 1);
  expectRefused("XDG_DATA_HOME");
  EXPECT_FALSE(std::filesystem::exists(".local") || std::filesystem::exists("relative"));
  if (home != nullptr) setenv("HOME", homeBefore.c_str(), 1);
  setenv("XDG_DATA_HOME", "/nonexistent", 1);
}

TEST(Places, SearchAtAndPlace) {
  const auto json = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "places");
    arguments.insert(arguments.end(), {"--locale", "en", "--format", "json"});
    return Json::parse(Call(arguments).out);
  };
  const Json found = json({"search", "moab ut"});
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].at("timeZone"), "America/Denver");
  const std::string list = Call({"places", "search", "sao paulo", "--locale", "de"}).out;
  EXPECT_TRUE(list.starts_with("São Paulo, Brasilien")) << list;
  const Json bled = json({"at", "46.3625, 14.0936"});
  EXPECT_EQ(bled.at("title"), "Bled");
  EXPECT_EQ(bled.at("timeZone"), "Europe/Ljubljana");
  EXPECT_EQ(bled.at("decimalMinutes"), "46°21.75'N 14°5.62'E");
  // On the high sea the coordinate is the title.
  const Json sea = json({"at", "-45,-130"});
  EXPECT_EQ(sea.at("title"), "45.000000°S 130.000000°W");
  EXPECT_TRUE(sea.at("subtitle").is_null());

  EXPECT_TRUE(Call({"today", "--place", "chamonix, france", "--locale", "en"})
                  .out.starts_with(
                      "Chamonix-Mont-Blanc, France   45.923750°N 6.869330°E   Europe/Paris\n"));
  const auto elsewhere = Call({"today", "--place", "Moab, Utah", "--time-zone", "UTC"});
  EXPECT_NE(elsewhere.out.find("   UTC\n"), std::string::npos);

  testing::ExpectRefused({}, {{{"today", "--place", "paris"},
                               {"Paris, Île-de-France, France; Paris, Texas, United States"}},
                              {{"today", "--place", "xyzzyq"}, {"xyzzyq"}},
                              {{"today", "--place", std::string(10000, 'q')}, {"…"}},
                              {{"today", "--place", "moab", "--latitude", "3"}, {"one of them"}},
                              {{"places"}, {"search, at"}},
                              {{"places", "search"}, {"TEXT"}},
                              {{"places", "at", "46.3625"}, {"46.3625,14.0936"}},
                              {{"places", "at", "91,0"}, {"91,0"}}});
}

TEST(CommandLine, HelpAndVersion) {
  const struct {
    std::vector<std::string> arguments;
    const char* says;
  } cases[] = {
      {{"--version"}, "lumenquest "},
      {{"--help"}, "lumenquest today --latitude"},
      {{"settings", "set", "--help"}, "lumenquest settings set KEY VALUE"},
      {{"today", "--help", "--locale", "de"}, "Aufruf: lumenquest today --latitude DEG"},
  };
  for (const auto& [arguments, says] : cases) {
    const Result help = Call(arguments);
    EXPECT_EQ(help.code, kExitSuccess);
    EXPECT_NE(help.out.find(says), std::string::npos) << help.out;
  }
}

TEST(Today, TextReadsAtAGlance) {
  const auto expectRows = [](const std::vector<std::string>& arguments,
                             const std::vector<const char*>& rows) {
    const Result result = Call(arguments);
    EXPECT_EQ(result.code, kExitSuccess);
    for (const char* row : rows) {
      EXPECT_NE(result.out.find(row), std::string::npos) << row << "\nin\n" << result.out;
    }
  };
  expectRows(
      Today("36.1", "-112.1",
            {"--time-zone", "America/Phoenix", "--at", "2026-06-20T22:00:00-07:00"}),
      {"36.100000°N 112.100000°W   America/Phoenix", "Saturday, June 20, 2026", "10:00\u202FPM",
       "Light now               Night\n", "Next light              Astronomical twilight, 3:22",
       "Sunrise                 5:12\u202FAM (+1)\n", "Golden hour             4:53 - 5:50",
       "Moon                    Waxing crescent (42.8%)\n",
       "Galactic centre         From 9:39\u202FPM, azimuth 145° SE, band tilt -60°\n",
       "                        To 3:22\u202FAM (+1), azimuth 220° SW, band tilt 5°\n",
       "Moonless hours          3h 19min\n"});
  // Wide characters, and arguments in another order.
  expectRows({"today", "--longitude", "6.87", "--latitude", "45.92", "--time-zone", "Europe/Paris",
              "--at", "2026-11-22T20:30:00Z", "--locale", "ja"},
             {"月                 満月前の月 (95", "次に見える日 2027/01/24(日曜日)"});
}

TEST(Today, JsonIsOfThePlaceAndComesOutTheSameAgain) {
  const auto arguments =
      Today("45.92", "6.87",
            {"--time-zone", "Europe/Paris", "--at", "2026-11-22T20:30:00Z", "--format", "json"});
  const Result result = Call(arguments);
  EXPECT_EQ(result.out, Call(arguments).out);
  const Json json = Json::parse(result.out);
  EXPECT_EQ(json.at("location"),
            (Json{{"latitude", 45.92}, {"longitude", 6.87}, {"timeZone", "Europe/Paris"}}));
  EXPECT_EQ(json.at("instant"), "2026-11-22T20:30:00Z");
  EXPECT_EQ(json.at("values").at("currentLightType"), "Night");
  // No visibility tonight: the view model's date, at the same time of day.
  EXPECT_EQ(json.at("dateNextVisiblity"), "2027-01-24T20:30:00Z");
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
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"fi", "22.00", "Yö"},       {"ja", "22:00", "夜"},    {"he-IL", "22:00", "לילה"},
      {"ar-EG", "١٠:٠٠", "Night"}, {"th", "22:00", "Night"}, {"fa", "۲۲:۰۰", "Night"}};
  for (const auto& [locale, time, night] : cases) {
    const Result result =
        Call({"today", "--latitude", "36.1", "--longitude", "-112.1", "--time-zone",
              "America/Phoenix", "--at", "2026-06-20T22:00:00-07:00", "--locale", locale});
    EXPECT_EQ(result.code, kExitSuccess) << locale;
    EXPECT_NE(result.out.find(time), std::string::npos) << locale << '\n' << result.out;
    EXPECT_NE(result.out.find(night), std::string::npos) << locale;
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
