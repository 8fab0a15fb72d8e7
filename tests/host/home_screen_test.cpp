#include "host/home_screen.h"

#include <gtest/gtest.h>

#include <thread>

#include "adapters/shared_text_file.h"
#include "host/home_screen_file.h"
#include "scratch_folder.h"
#include "test_services.h"

namespace lumenquest::host {
namespace {

using testing::TestServices;

std::string ErrorOf(const std::string& text) {
  try {
    HomeScreen::fromJson(text);
  } catch (const HomeScreenError& error) {
    return error.what();
  }
  return "none";
}

std::string Ids(const HomeScreen& screen) {
  std::string ids;
  for (const PlacedWidget& widget : screen.widgets()) ids += widget.id + " ";
  return ids;
}

TEST(HomeScreen, WhatPeopleWriteIsTakenOrRefusedWithTheReason) {
  const TestServices services("2024-08-12T12:00:00Z");
  const struct {
    const char* widgets;
    const char* error;
  } cases[] = {
      {R"([{"kind": "SunWidget"}, {"kind": "SunWidget", "family": "systemMedium"}])", "none"},
      {R"([{"kind": "MoonWidget", "place": null, "theme": "light", "id": "a-1"}])", "none"},
      {R"([{"kind": "MoonWidget", "place": {"latitude": 46, "longitude": 14.5}}])", "none"},
      {R"([{"kind": "SunWidget",}])", "<home_error_json>"},
      {R"([{"kind": "SunWidget", "place": {"latitude": 1e999}}])", "<home_error_json>"},
      {R"(["SunWidget"])", "<home_error_shape>"},
      {R"([{"kind": "Sun"}])", "<home_error_kind>"},
      {R"([{"kind": 7}])", "<home_error_text>"},
      {R"([{"kind": "SunWidget", "family": "large"}])", "<home_error_family>"},
      {R"([{"kind": "SunWidget", "theme": "blue"}])", "<home_error_theme>"},
      {R"([{"kind": "SunWidget", "them": "dark"}])", "<home_error_member>"},
      {R"([{"kind": "SunWidget", "place": {"latitude": 91, "longitude": 0}}])",
       "<home_error_place>"},
      {R"([{"kind": "SunWidget", "place": {"latitude": 1, "longitude": 0, "zone": "UTC"}}])",
       "<home_error_member>"},
      {R"([{"kind": "PlansWidget", "place": {"latitude": 46, "longitude": 14}}])",
       "<home_error_no_place>"},
      {R"([{"kind": "SunWidget", "id": "../sun"}])", "<home_error_id>"},
      {R"([{"kind": "SunWidget", "id": "a"}, {"kind": "MoonWidget", "id": "a"}])",
       "<home_error_twice>"},
  };
  for (const auto& [widgets, error] : cases) {
    EXPECT_EQ(ErrorOf(std::string(R"({"widgets": )") + widgets + "}"), error) << widgets;
  }
  EXPECT_EQ(ErrorOf("\xff{"), "<home_error_json>");
  std::string many = R"({"widgets": [)";
  for (std::size_t i = 0; i < HomeScreen::kMostWidgets; ++i) many += R"({"kind": "SunWidget"},)";
  EXPECT_EQ(ErrorOf(many + R"({"kind": "SunWidget"}]})"), "<home_error_too_many>");
}

TEST(HomeScreen, IsEditedAndWrittenAsItIsRead) {
  const TestServices services("2024-08-12T12:00:00Z");
  HomeScreen screen = HomeScreen::standard();
  EXPECT_EQ(Ids(screen), "sun moon milky-way lumenquest plans ");
  const PlacedWidget widget{"", "SunWidget", widgets::WidgetFamily::systemMedium,
                            widgets::IntentPlacemark{{{46.1, -0.1}}, "L’Étang \"\x01", {}},
                            widgets::Enum::dark};
  EXPECT_EQ(screen.add(widget, 1), "sun-2");
  screen.move("sun", 2);
  EXPECT_EQ(Ids(screen), "sun-2 moon sun milky-way lumenquest plans ");
  screen.move("plans", 0);
  screen.move("moon", 99);
  screen.remove("sun");
  EXPECT_EQ(Ids(screen), "plans sun-2 milky-way lumenquest moon ");
  EXPECT_THROW(screen.move("sun", 0), HomeScreenError);
  EXPECT_EQ(HomeScreen::fromJson(screen.toJson()), screen);
}

TEST(HomeScreenFile, NoChangeIsLostAmongMany) {
  const TestServices services("2024-08-12T12:00:00Z");
  const testing::ScratchFolder folder;
  const auto path = folder / "home.json";
  std::vector<std::thread> writers;
  for (int i = 0; i < 4; ++i) {
    writers.emplace_back([&] {
      HomeScreenFile file(std::make_shared<adapters::SharedTextFile>(path));
      for (int n = 0; n < 10; ++n) {
        file.update([](HomeScreen& screen) { screen.add({"", "MoonWidget", {}, {}, {}}); });
      }
    });
  }
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(
      HomeScreenFile(std::make_shared<adapters::SharedTextFile>(path)).load().widgets().size(),
      45u);
}

}  // namespace
}  // namespace lumenquest::host
