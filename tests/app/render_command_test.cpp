// `lumenquest render` as its users call it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "command_fixture.h"
#include "pictures.h"
#include "widgets/view/environment.h"

namespace lumenquest::app {
namespace {

using ::testing::AllOf;
using testing::Call;
using ::testing::Contains;
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

std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
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
      {{"plans", "--family", "medium", "--scale", "1", "--rendering", "accented"}, 364, 170},
  };
  for (const Case& c : cases) {
    const std::string file = folder.path() + "/widget.png";
    Arguments arguments = c.arguments[0] == "plans" ? c.arguments : Bled(c.arguments);
    const Arguments place = arguments;
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
  EXPECT_LT(middle({"--scheme", "dark"}), 60u);
  EXPECT_GT(middle({"--scheme", "light"}), 200u);
  EXPECT_GT(middle({"--theme", "light"}), 200u);
  // A theme forces what the host would have otherwise.
  EXPECT_LT(middle({"--scheme", "light", "--theme", "dark"}), 60u);
  EXPECT_GT(middle({"--scheme", "light", "--theme", "system"}), 200u);
}

TEST(Render, AHostThatTintsTintsTheMoon) {
  const DataFolder data;
  const auto fullMoon = [](const char* rendering) {
    return Call({"render", "moon", "--latitude", "46.3625", "--longitude", "14.0936", "--at",
                 "2027-02-20T23:20:00Z", "--locale", "en", "--scale", "1", "--rendering", rendering,
                 "-o", "-"})
        .out;
  };
  const Pixels full(fullMoon("full")), tinted(fullMoon("accented"));
  const auto part = [](std::uint32_t pixel, int shift) {
    return static_cast<int>(pixel >> shift & 255u);
  };
  const platform::UIColor accent = widgets::view::Environment().accent;
  int least = 255, most = 0;
  // Across the middle of the disc.
  for (int x = 65; x < 105; ++x) {
    const std::uint32_t seen = tinted.at(x, 75), own = full.at(x, 75);
    const double blue = part(seen, 0);
    EXPECT_GT(blue, 60.0) << x;
    EXPECT_NEAR(part(seen, 16), blue * accent.red / accent.blue, 4.0) << x;
    EXPECT_NEAR(part(seen, 8), blue * accent.green / accent.blue, 4.0) << x;
    EXPECT_GE(part(own, 16), part(own, 0)) << x;  // warm grey
    least = std::min(least, part(seen, 0));
    most = std::max(most, part(seen, 0));
  }
  // Its seas are still there.
  EXPECT_GT(most - least, 30);
}

TEST(Render, SvgKeepsWordsAndLinks) {
  const DataFolder data;
  const ScratchFolder folder;
  const std::string file = folder.path() + "/widget.svg";
  const Result result = Render(Bled({"LumenquestWidget", "-o", file}));
  ASSERT_EQ(result.code, 0) << result.err;
  const std::string svg = Contents(file);
  const XmlContents contents(svg);
  for (const char* words : {"Bled", "Golden hour", "Waxing crescent", "Visible from"}) {
    EXPECT_THAT(contents.texts, Contains(HasSubstr(words))) << svg.substr(0, 2000);
  }
  EXPECT_THAT(svg, HasSubstr(">Lumenquest</title>"));
  std::vector<std::string> links;
  for (auto [at, end] = contents.attributes.equal_range("href"); at != end; ++at) {
    if (at->second.starts_with("lumenquest:")) links.push_back(at->second);
  }
  EXPECT_THAT(links, AllOf(Contains("lumenquest://sun"), Contains("lumenquest://moon")));
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

  // What users name their plans is text, whatever it looks like.
  const std::string hostile = "<script>alert(\"1\")</script> & ]]> \xE2\x80\xAEshort";
  Call({"plans", "add", hostile, "--date", "2027-05-12 23:30", "--place", "Bled"});
  ASSERT_EQ(Render({"plans", "--family", "medium", "--settings", "shared", "-o", file}).code, 0);
  const std::string plans = Contents(file);
  const XmlContents planContents(plans);
  EXPECT_THAT(plans, Not(HasSubstr("<script")));
  EXPECT_THAT(plans, HasSubstr("&lt;script&gt;"));
  EXPECT_THAT(plans, HasSubstr("lumenquest://plan?id="));
}

TEST(Render, OnlyADashIsStandardOutput) {
  const DataFolder data;
  const ScratchFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const std::string png = Render(Bled({"sun", "--output=-"})).out;
  const std::string svg = Render(Bled({"sun", "--output=-.svg"})).out;
  EXPECT_THAT(png, HasSubstr("PNG"));
  EXPECT_THAT(svg, HasSubstr("</svg>"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  for (const auto& [name, contents] : std::map<std::string, std::string>{
           {"-x.png", png}, {"-.png", png}, {"-y.svg", svg}, {"A.PNG", png}, {"a.Svg", svg}}) {
    const Result result = Render(Bled({"sun", "--output=" + name}));
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "") << name;
    EXPECT_TRUE(Contents(folder.path() + "/" + name) == contents) << name;
  }
  std::filesystem::current_path(before);
}

TEST(Render, AllOfThem) {
  const DataFolder data;
  const ScratchFolder folder;
  const std::string target = folder.path() + "/of mine/now";
  const Result result = Render(Bled({"all", "-o", target}));
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 5);
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(target)) {
    names.push_back(file.path().filename());
    EXPECT_THAT(result.out, HasSubstr(file.path().string() + "\n"));
  }
  EXPECT_THAT(names, ::testing::UnorderedElementsAre("SunWidget.png", "MoonWidget.png",
                                                     "GalacticCenterSmallWidget.png",
                                                     "LumenquestWidget.png", "PlansWidget.png"));
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
          {{"sun", "-o", ""}, {".png", ".svg"}},
          {{"sun", "-o", folder.path() + "/a.jpg"}, {"a.jpg", ".png", ".svg"}},
          {{"sun", "-o", folder.path() + "/png"}, {".png", ".svg"}},
          {{"sun", "--scale", "4.01", "-o", png}, {"--scale", "\"4.01\"", "1 to 4"}},
          {{"sun", "--scale", "nan", "-o", png}, {"--scale", "1 to 4"}},
          {{"sun", "--size", "364", "-o", png}, {"--size", "\"364\"", "141x141 to 1000x1000"}},
          {{"sun", "--size", "140x170", "-o", png}, {"--size", "141x141 to 1000x1000"}},
          {{"sun", "--family", "medium", "--size", "291x170", "-o", png}, {"292x141"}},
          {{"lumenquest", "--size", "364x170", "-o", png}, {"292x311"}},
          {{"sun", "--size", "170x1001", "-o", png}, {"--size"}},
          {{"sun", "--size", "170x170x170", "-o", png}, {"--size"}},
          {{"sun", "--scheme", "sepia", "-o", png}, {"--scheme", "light or dark"}},
          {{"sun", "--rendering", "flat", "-o", png}, {"--rendering", "full or accented"}},
          {{"all", "-o", folder.path() + "/all", "--size", "170x170"}, {"--size", "--family"}},
          {{"all"}, {"--output", "folder"}},
          {{"all", "-o", ""}, {"--output", "give a folder"}},
          {{"all", "-o", "-"}, {"\"-\"", "folder"}},
          {{"all", "-o", folder.path() + "/a.PNG"}, {"a.PNG", "folder"}},
          {{"sun", "-o", folder.path() + "/.svg"}, {".png", ".svg"}},
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
  for (const std::string& target : {taken, folder.path() + "/missing/a.png", kept + "/a.svg",
                                    folder.path() + "/" + std::string(300, 'n') + ".png"}) {
    const Result result = Render(Bled({"sun", "-o", target}));
    EXPECT_EQ(result.code, 1) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_THAT(result.err, HasSubstr("cannot be written"));
  }
  for (const Arguments& arguments :
       {Bled({"render", "all", "-o", kept}), Arguments{"gallery", kept + "/pictures"}}) {
    const Result result = Call(arguments);
    EXPECT_EQ(result.code, 1) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
  EXPECT_EQ(Contents(kept), "mine");
  EXPECT_TRUE(std::filesystem::is_empty(taken));
  std::vector<std::string> left;
  for (const auto& file : std::filesystem::directory_iterator(folder.path())) {
    left.push_back(file.path().filename());
  }
  EXPECT_THAT(left, ::testing::UnorderedElementsAre("taken.png", "kept"));
  // A picture that is there already is replaced as a whole.
  const std::string file = folder.path() + "/old.png";
  std::ofstream(file) << "old";
  EXPECT_EQ(Render(Bled({"sun", "-o", file})).code, 0);
  EXPECT_EQ(Contents(file).substr(1, 3), "PNG");
}

TEST(Gallery, WrongUseIsOneLine) {
  const DataFolder data;
  const ScratchFolder folder;
  const std::string target = folder.path() + "/pictures";
  testing::ExpectRefused({"gallery"}, {{{}, {"DIR"}},
                                       {{""}, {"give a folder"}},
                                       {{target, "--scale", "5"}, {"1 to 4"}},
                                       {{target, "--locale", "not a locale"}, {"--locale"}},
                                       {{target, "more"}, {"\"more\""}}});
  EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
}  // namespace lumenquest::app
