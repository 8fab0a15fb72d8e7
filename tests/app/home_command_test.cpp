// `lumenquest home` as its users call it.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "app/running_home.h"
#include "app/runtime.h"
#include "command_fixture.h"

namespace lumenquest::app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::Call;
using testing::Result;

/// A user's folders, with nothing in them.
class Home : public testing::DataFolder {
 public:
  Home() {
    setenv("XDG_CONFIG_HOME", (path() + "/config").c_str(), 1);
    setenv("XDG_CACHE_HOME", (path() + "/cache").c_str(), 1);
  }
  ~Home() {
    setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
    unsetenv("XDG_CACHE_HOME");
  }
  fs::path file() const { return *this / "config/lumenquest/home.json"; }
};

Result HomeCall(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "home");
  return Call(arguments);
}

Json Widgets() {
  const Result listed = HomeCall({"list", "--format", "json"});
  EXPECT_EQ(listed.code, 0) << listed.err;
  return Json::parse(listed.out).at("widgets");
}

std::string Ids() {
  std::string ids;
  for (const Json& widget : Widgets()) ids += widget.at("id").get<std::string>() + " ";
  return ids;
}

TEST(HomeCommand, ARunningHostIsFoundAndADeadOneForgotten) {
  const Home home;
  installServices({"en"});
  const fs::path dead = home / "cache/lumenquest/hosts/9999";
  {
    const HomeAnnouncement running(8437, "http://127.0.0.1:8437/");
    // Where somebody will be, which the folder tells, is nobody else's business.
    EXPECT_EQ(fs::status(home / "cache/lumenquest").permissions(), fs::perms::owner_all);
    std::ofstream(dead) << "http://127.0.0.1:9999/";
    EXPECT_EQ(runningPage(std::nullopt), "http://127.0.0.1:8437/");
    EXPECT_EQ(runningPage("lumenquest://plan?id=1"),
              "http://127.0.0.1:8437/open?url=lumenquest%3A%2F%2Fplan%3Fid%3D1");
  }
  EXPECT_THROW(runningPage(std::nullopt), std::runtime_error);
  EXPECT_FALSE(fs::exists(dead));
  EXPECT_TRUE(fs::is_empty(dead.parent_path()));
}

TEST(HomeCommand, TheHomeScreenIsEdited) {
  const Home home;
  EXPECT_EQ(Ids(), "sun moon milky-way lumenquest plans ");
  EXPECT_FALSE(fs::exists(home.file()));
  EXPECT_EQ(
      HomeCall({"add", "sun", "--family", "medium", "--place", "Bled", "--position", "1"}).out,
      "sun-2\n");
  EXPECT_EQ(
      HomeCall({"set", "moon", "--latitude", "60", "--longitude", "25", "--theme", "light"}).code,
      0);
  EXPECT_EQ(HomeCall({"move", "plans", "2"}).code, 0);
  EXPECT_EQ(HomeCall({"remove", "milky-way"}).code, 0);
  const Json widgets = Widgets();
  EXPECT_EQ(Ids(), "sun-2 plans sun moon lumenquest ");
  EXPECT_EQ(widgets[0].at("family"), "medium");
  EXPECT_EQ(widgets[0].at("place").at("name"), "Bled, Slovenia");
  EXPECT_EQ(widgets[3].at("theme"), "light");
  EXPECT_EQ(widgets[3].at("place").at("latitude"), 60.0);
  EXPECT_EQ(HomeCall({"set", "moon", "--my-location"}).code, 0);
  EXPECT_FALSE(Widgets()[3].contains("place"));
}

TEST(HomeCommand, WhatIsWrongIsSaidAndNothingIsLost) {
  const Home home;
  HomeCall({"add", "sun", "--locale", "en"});
  const std::string before = testing::Contents(home.file());
  testing::ExpectRefused({"home"},
                         {
                             {{"remove", "nix"}, {"give one of sun, moon"}, 1},
                             {{"move", "sun", "0"}, {"POSITION", "a whole number from 1"}},
                             {{"add", "sun", "--position", "99"}, {"--position"}},
                             {{"add", "sun", "--id", "moon"}, {"two widgets"}, 1},
                             {{"add", "plans", "--place", "Bled"}, {"no place"}},
                             {{"set", "sun"}, {"nothing to change"}},
                             {{"set", "milky-way", "--family", "large"}, {"small"}},
                             {{"serve", "--listen", "nowhere"}, {"127.0.0.1:"}},
                             {{"watch", "--format", "xml"}, {"waybar or jsonl"}},
                             {{"export", "/dev/null/x"}, {"/dev/null/x"}, 1},
                             {{"open", "https://example.org"}, {"lumenquest://sun"}},
                             {{"open", "lumenquest://sun"}, {"lumenquest home serve"}, 1},
                         });
  EXPECT_EQ(testing::Contents(home.file()), before);

  std::ofstream(home.file()) << "{";
  testing::ExpectRefused(
      {"home"}, {{{"list"}, {"JSON"}, 1}, {{"serve"}, {"JSON"}, 1}, {{"watch"}, {"JSON"}, 1}});
}

TEST(HomeCommand, PicturesAreExportedAndThoseOfRemovedWidgetsGo) {
  const Home home;
  const fs::path folder = home / "frames";
  const std::vector<std::string> call{"export",      folder.string(), "--once", "--here",
                                      "46.36,14.09", "--scale",       "1"};
  EXPECT_EQ(HomeCall(call).code, 0);
  std::ofstream(folder / "mine.png") << "a picture of somebody else";
  Json list = Json::parse(std::ifstream(folder / "index.json"));
  ASSERT_EQ(list.at("widgets").size(), 5u);
  for (const Json& widget : list.at("widgets")) {
    EXPECT_GT(fs::file_size(folder / widget.at("file").get<std::string>()), 500u);
    EXPECT_FALSE(widget.at("text").get<std::string>().empty());
  }
  EXPECT_EQ(HomeCall({"remove", "sun"}).code, 0);
  EXPECT_EQ(HomeCall(call).code, 0);
  EXPECT_FALSE(fs::exists(folder / "sun.png"));
  EXPECT_TRUE(fs::exists(folder / "moon.png"));
  EXPECT_TRUE(fs::exists(folder / "mine.png"));
}

TEST(HomeCommand, WatchPrintsALineAWidget) {
  const Home home;
  const auto watch = [](const char* format) {
    return HomeCall({"watch", "--once", "--format", format, "--here", "46.36,14.09"}).out;
  };
  const std::string lines = watch("jsonl");
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 5) << lines;
  const Json first = Json::parse(lines.substr(0, lines.find('\n')));
  for (const char* const member : {"entry", "text", "state", "reload"}) {
    EXPECT_TRUE(first.contains(member)) << member;
  }
  EXPECT_EQ(Json::parse(watch("waybar")).at("class"), Json({"sun", "information"}));

  // Bars read markup and show nothing at all of what is none.
  Call({"plans", "add", "Sun & <Moon>", "--date", "2999-05-08 23:30", "--place", "Bled"});
  const Result plans = HomeCall({"watch", "--once", "--format", "waybar", "--widget", "plans"});
  for (const char* const member : {"text", "tooltip"}) {
    EXPECT_NE(Json::parse(plans.out).at(member).get<std::string>().find("Sun &amp; &lt;Moon&gt;"),
              std::string::npos)
        << plans.out;
  }
}

}  // namespace
}  // namespace lumenquest::app
