// `lumenquest render` as its users call it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "command_fixture.h"
#include "pictures.h"
#include "widgets/view/environment.h"

namespace lumenquest::app {
namespace {

using ::testing::AllOf;
using testing::Call;
using ::testing::Contains;
using testing::Contents;
using testing::DataFolder;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::Pixels;
using testing::Result;
using testing::ScratchFolder;
using testing::XmlContents;

using Arguments = std::vector<std::string>;

Result Render(Arguments arguments) {
  arguments.insert(arguments.begin(), "render");
  arguments.insert(arguments.end(), {"--at", "2027-05-12T17:45:00Z", "--locale", "en"});
  return Call(arguments);
}

Arguments Bled(Arguments arguments) {
  arguments.insert(arguments.end(), {"--latitude", "46.3625", "--longitude", "14.0936"});
  return arguments;
}

TEST(Render, WritesPicturesInEverySize) {
  const DataFolder data;
  const ScratchFolder folder;
  struct Case {
    Arguments arguments;
    int width;
    int height;
  };
  const Case cases[] = {
      {{"sun"}, 340, 340},  // small, at 2 pixels a point
      {{"SunWidget", "--family", "medium", "--scale", "1"}, 364, 170},
      {{"moon", "--family", "systemSmall", "--scale", "3"}, 510, 510},
      {{"LumenquestWidget", "--scale", "1.5"}, 546, 573},
      {{"GalacticCenterSmallWidget", "--size", "141x141", "--scale", "4"}, 564, 564},
      {{"moon", "--family", "medium", "--size", "292.5x141", "--scale", "2"}, 585, 282},
      {{"plans", "--family", "medium", "--rendering", "accented"}, 728, 340},
  };
  for (const Case& c : cases) {
    const std::string file = folder.path() + "/widget.png";
    Arguments arguments = c.arguments[0] == "plans" ? c.arguments : Bled(c.arguments);
    arguments.insert(arguments.end(), {"-o", file});
    const Result result = Render(arguments);
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out + result.err, "");
    const Pixels pixels(Contents(file));
    EXPECT_EQ(pixels.width, c.width) << c.arguments[0];
    EXPECT_EQ(pixels.height, c.height) << c.arguments[0];
    EXPECT_EQ(pixels.at(0, 0) >> 24, 0u);  // round corners
    EXPECT_EQ(pixels.at(c.width / 2, 2) >> 24, 255u);
    // The same to standard output.
    arguments.back() = "-";
    EXPECT_EQ(Render(arguments).out, Contents(file));
  }
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

TEST(Render, SchemesAreSeen) {
  const DataFolder data;
  const auto middle = [](Arguments more) {
    more.insert(more.begin(), {"sun", "-o", "-"});
    const Result result = Render(Bled(more));
    const Pixels pixels(result.out);
    return pixels.at(20, pixels.height / 2) & 255u;
  };
  EXPECT_LT(middle({}), 60u);
  EXPECT_GT(middle({"--scheme", "light"}), 200u);
  EXPECT_GT(middle({"--theme", "light"}), 200u);
  // A theme forces what the host would have otherwise.
  EXPECT_LT(middle({"--scheme", "light", "--theme", "dark"}), 60u);
}

TEST(Render, SvgKeepsWordsAndLinks) {
  const DataFolder data;
  const std::string svg = Render(Bled({"LumenquestWidget", "--output=-.svg"})).out;
  const XmlContents contents(svg);
  for (const char* words : {"Bled", "Golden hour", "Waxing crescent", "Visible from"}) {
    EXPECT_THAT(contents.texts, Contains(HasSubstr(words))) << svg.substr(0, 2000);
  }
  EXPECT_THAT(svg, AllOf(HasSubstr(">Lumenquest</title>"), HasSubstr("=\"lumenquest://sun\""),
                         HasSubstr("=\"lumenquest://moon\"")));
  EXPECT_EQ(contents.attribute("viewBox"), "0 0 364 382");
  // The description says all that is to be read, in words that need no picture.
  const std::size_t start = svg.find("<desc");
  const std::string description = svg.substr(start, svg.find("</desc>") - start);
  for (const char* words :
       {"\u2068Bled\u2069. ", "Golden hour: ", "Next: ", "Sunrise: ", "Sunset: ", "Moonrise: ",
        "Moonset: ", "Visible from: ", ", azimuth "}) {
    EXPECT_THAT(description, HasSubstr(words));
  }
  EXPECT_THAT(description, Not(HasSubstr("(+1)")));
}

TEST(Render, AllOfThem) {
  const DataFolder data;
  const ScratchFolder folder;
  const Result result = Render(Bled({"all", "-o", folder.path() + "/of mine/now"}));
  EXPECT_EQ(result.code, 0) << result.err;
  for (const char* name : {"SunWidget", "MoonWidget", "GalacticCenterSmallWidget",
                           "LumenquestWidget", "PlansWidget"}) {
    const std::string file = folder.path() + "/of mine/now/" + name + ".png";
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_THAT(result.out, HasSubstr(file + "\n"));
  }
  EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

TEST(Render, WrongUseIsOneLineAndNoFile) {
  const DataFolder data;
  const ScratchFolder folder;
  const std::string png = folder.path() + "/a.png";
  testing::ExpectRefused(
      {"render"},
      {
          {{"moo", "-o", png},
           {"KIND", "\"moo\"", "SunWidget (sun)", "(milky-way)", "(plans), all"}},
          {{"sun"}, {"--output", "missing", ".png", ".svg"}},
          {{"sun", "-o", folder.path() + "/a.jpg"}, {"a.jpg", ".png", ".svg"}},
          {{"sun", "--scale", "4.01", "-o", png}, {"--scale", "\"4.01\"", "1 to 4"}},
          {{"sun", "--scale", "nan", "-o", png}, {"--scale", "1 to 4"}},
          {{"sun", "--size", "364", "-o", png}, {"--size", "\"364\"", "141x141 to 1000x1000"}},
          {{"sun", "--family", "medium", "--size", "291x170", "-o", png}, {"292x141"}},
          {{"lumenquest", "--size", "364x170", "-o", png}, {"292x311"}},
          {{"sun", "--scheme", "sepia", "-o", png}, {"--scheme", "light or dark"}},
          {{"sun", "--rendering", "flat", "-o", png}, {"--rendering", "full or accented"}},
          {{"all", "-o", folder.path() + "/all", "--size", "170x170"}, {"--size", "--family"}},
          {{"all", "-o", "-"}, {"\"-\"", "folder"}},
          {{"all", "-o", folder.path() + "/a.PNG"}, {"a.PNG", "folder"}},
      });
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(Render, WhatCannotBeWrittenLeavesNothingBehind) {
  const DataFolder data;
  const ScratchFolder folder;
  const std::string taken = folder.path() + "/taken.png";
  std::filesystem::create_directory(taken);
  const std::string kept = folder.path() + "/kept";
  std::ofstream(kept) << "mine";
  std::vector<testing::Refusal> refusals{{Bled({"render", "all", "-o", kept}), {kept}, 1},
                                         {{"gallery", kept + "/pictures"}, {kept}, 1}};
  for (const std::string& target : {taken, folder.path() + "/missing/a.png", kept + "/a.svg",
                                    folder.path() + "/" + std::string(300, 'n') + ".png"}) {
    refusals.push_back({Bled({"render", "sun", "-o", target}), {"cannot be written"}, 1});
  }
  testing::ExpectRefused({}, refusals);
  EXPECT_EQ(Contents(kept), "mine");
  EXPECT_TRUE(std::filesystem::is_empty(taken));
  // A picture that is there already is replaced as a whole.
  const std::string file = folder.path() + "/old.png";
  std::ofstream(file) << "old";
  EXPECT_EQ(Render(Bled({"sun", "-o", file})).code, 0);
  EXPECT_EQ(Contents(file).substr(1, 3), "PNG");
  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    left.push_back(entry.path().filename());
  }
  EXPECT_THAT(left, ::testing::UnorderedElementsAre("taken.png", "kept", "old.png"));
}

TEST(Gallery, WrongUseIsOneLine) {
  const ScratchFolder folder;
  const std::string target = folder.path() + "/pictures";
  testing::ExpectRefused(
      {"gallery"},
      {{{}, {"DIR"}}, {{""}, {"give a folder"}}, {{target, "--scale", "5"}, {"1 to 4"}}});
  EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
}  // namespace lumenquest::app
