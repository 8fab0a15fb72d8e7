// The site's answers, request by request, without a server.

#include "host/home_site.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "fake_views.h"
#include "host/plan_pages.h"
#include "host/web_text.h"
#include "host_fixture.h"
#include "platform/formatters.h"
#include "platform/place_zone.h"

namespace lumenquest::host {
namespace {

using Json = nlohmann::json;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::Instant;
using ::testing::Not;
using testing::TextInMemory;

class NoAlarm final : public platform::Alarm {
 public:
  void onRing(std::function<void(Reason)>) override {}
  void set(platform::NSDate) override {}
};

constexpr const char* kBled = R"({"name":"Bled <script>","latitude":46.36,"longitude":14.09})";

/// A site on a device in Berlin, with towns whose zones are whole hours.
class HomeSiteTest : public ::testing::Test {
 protected:
  HomeSiteTest() {
    // The Moon's picture needs something to shade.
    assets->images["moon"] =
        std::make_shared<const platform::UIImage>(platform::UIImage{{100.0, 100.0}, {}});
    Show(R"({"widgets":[{"kind":"SunWidget","place":)" + std::string(kBled) +
         R"(},{"kind":"LumenquestWidget"},{"kind":"MoonWidget","theme":"light"},)"
         R"({"kind":"PlansWidget","family":"medium"}]})");
  }

  void Show(const std::string& screen) {
    file->text = screen;
    scheduler.show(screenFile.load());
    world.queue->RunAll();
    world.device->Fix({{-33.0, 18.0}, Instant("2024-08-12T20:30:00Z")});
    world.queue->RunAll();
  }
  WebResponse Answer(const std::string& method, const std::string& address,
                     const std::string& body = "") {
    WebRequest request;
    request.method = method;
    const std::size_t mark = address.find('?');
    request.path = address.substr(0, mark);
    if (mark != std::string::npos) request.query = *parseQuery(address.substr(mark + 1));
    request.body = body;
    return site.answer(request);
  }
  std::string Get(const std::string& address, int status = 200) {
    const WebResponse response = Answer("GET", address);
    EXPECT_EQ(response.status, status) << address;
    return response.sharedBody ? *response.sharedBody : response.body;
  }
  Json Post(const std::string& operation, const std::string& body, int status = 200) {
    const WebResponse response = Answer("POST", "/api/home/" + operation, body);
    EXPECT_EQ(response.status, status) << body << " " << response.body;
    return Json::parse(response.body);
  }
  std::vector<std::string> Ids() {
    std::vector<std::string> ids;
    const HomeScreen screen = screenFile.load();
    for (const PlacedWidget& widget : screen.widgets()) ids.push_back(widget.id);
    return ids;
  }
  /// In which the large widget leads to two days, and its background to one of them.
  static std::string Draw(const ShownWidget& shown, platform::ColorScheme scheme,
                          const std::string& prefix) {
    std::string svg = "<svg id=\"" + prefix + "\"><desc>" + shown.widget.kind + " &amp; " +
                      (scheme == platform::ColorScheme::dark ? "dark" : "light") + "</desc>";
    if (shown.widget.family != widgets::WidgetFamily::systemSmall) {
      svg +=
          "<a href=\"lumenquest://sun\"><path/></a><a href=\"lumenquest://sun\"><text>s</text></a>"
          "<a href=\"lumenquest://moon\"><text>m</text></a><a "
          "href=\"lumenquest://plan?id=x-store:%2F%2FA&amp;B\"><text>p</text></a>";
    }
    return svg + "</svg>";
  }

  std::shared_ptr<testing::FewAssets> assets = std::make_shared<testing::FewAssets>();
  testing::WidgetWorld world{"2024-08-12T20:30:00Z", "Europe/Berlin", [this] {
                               platform::Services::Adapters with = testing::WithoutPlans();
                               with.assets = assets;
                               return with;
                             }()};
  std::shared_ptr<TextInMemory> file = std::make_shared<TextInMemory>();
  HomeScreenFile screenFile{file};
  Scheduler scheduler{{std::make_shared<NoAlarm>(), nullptr, "en_US"}};
  std::vector<std::string> published;
  int pngCount = 0;
  std::size_t pngBytes = 0;
  HomeSite site{scheduler,
                screenFile,
                {Draw,
                 [this](const ShownWidget& shown, platform::ColorScheme scheme, double scale) {
                   ++pngCount;
                   return shown.widget.kind +
                          (scheme == platform::ColorScheme::dark ? " dark " : " light ") +
                          std::to_string(scale) + std::string(pngBytes, '.');
                 },
                 [](const ShownWidget& shown) { return "{\"id\":\"" + shown.widget.id + "\"}"; },
                 [](const platform::UIImage& image) {
                   return "<svg>" + std::to_string(image.shapes.size()) + "</svg>";
                 },
                 {{"style.css", "a{}"}},
                 {"de-AT", false},
                 [this](const std::string& event, const std::string& data) {
                   published.push_back(event + " " + data);
                 }}};
};

TEST(WebTexts, AreHarmlessWhateverTheyHold) {
  EXPECT_EQ(htmlEscaped("<a href='x'>\"&\x01\x7F\xC2\x85z\xFF"),
            "&lt;a href=&#39;x&#39;&gt;&quot;&amp;z\xEF\xBF\xBD");
  EXPECT_EQ(htmlUnescaped(htmlEscaped("\"<&lt;>'")), "\"<&lt;>'");
  EXPECT_EQ(percentDecoded("%2Fa%2"), "/a%2");
  EXPECT_EQ(percentDecoded(percentEncoded("100%\xC3\xA4")), "100%\xC3\xA4");
}

TEST_F(HomeSiteTest, TheHomeScreenShowsEachWidgetWithItsLinks) {
  const std::string html = Get("/");
  EXPECT_THAT(html, AllOf(HasSubstr("<html lang=\"de-AT\" dir=\"ltr\">"),
                          HasSubstr("href=\"/sun?widget=sun\""),
                          HasSubstr("alt=\"SunWidget &amp; dark\"")));
  // A theme of its own is one picture in both schemes.
  EXPECT_THAT(html, AllOf(HasSubstr("/widget/moon.svg?scheme=light&amp;v="),
                          Not(HasSubstr("/widget/moon.svg?scheme=dark"))));
  // Several links stand in the page, once a scheme, with ids that do not collide; what says nothing
  // is no stop of the keyboard.
  EXPECT_THAT(html, AllOf(HasSubstr("id=\"w-lumenquest-d\""), HasSubstr("id=\"w-lumenquest-l\""),
                          HasSubstr("href=\"/moon?widget=lumenquest\""),
                          HasSubstr("href=\"/plan?id=x-store%3A%2F%2FA%26B\""),
                          HasSubstr("<a href=\"/sun?widget=lumenquest\" tabindex=\"-1\" "
                                    "aria-hidden=\"true\"><path/>"),
                          Not(HasSubstr("lumenquest://")), Not(HasSubstr("style=\""))));
  EXPECT_THAT(Get("/widget/sun"),
              HasSubstr("data-version=\"" + std::to_string(scheduler.find("sun")->version)));
}

TEST_F(HomeSiteTest, NoGapIsLeftUnderAnEarlierColumn) {
  // s, m, l: a widget of that size.
  const std::pair<std::string, const char*> cases[] = {
      {"ssssl", "grid fills-2\""},
      {"sssslm", "grid\""},
      {"lssss", "grid fills-2\""},
      {"mmm", "grid fills-2\""},
      {"m", "grid\""},
      {"mlllll", "grid is-full\""},
      {"llllll", "grid is-full fills-2 fills-3\""},
      // Column after column the third would be two thirds empty.
      {"mmmmmmm", "grid is-full fills-2\""},
  };
  for (const auto& [sizes, expected] : cases) {
    Json list = Json::array();
    for (const char size : sizes) {
      const char* const family = size == 's' ? "small" : "medium";
      list.push_back(size == 'l' ? Json{{"kind", "LumenquestWidget"}}
                                 : Json{{"kind", "SunWidget"}, {"family", family}});
    }
    Show(Json{{"widgets", list}}.dump());
    EXPECT_THAT(Get("/"), HasSubstr(std::string("<div class=\"") + expected)) << sizes;
  }
}

TEST_F(HomeSiteTest, APictureIsDrawnAnewForANewEntryOnly) {
  const auto askAnew = [this] {
    world.clock->Advance(60.0);
    scheduler.reloadAll();
    world.queue->RunAll();
  };
  const WebResponse first = Answer("GET", "/widget/sun.svg");
  EXPECT_EQ(Answer("GET", "/widget/sun.svg").sharedBody, first.sharedBody);
  askAnew();
  EXPECT_NE(Answer("GET", "/widget/sun.svg").sharedBody, first.sharedBody);
  EXPECT_EQ(Answer("GET", "/widget/sun.svg").etag, first.etag);
  site.entryIsNew(*scheduler.find("sun"));
  EXPECT_THAT(published, ElementsAre("entry {\"id\":\"sun\",\"version\":" +
                                     std::to_string(scheduler.find("sun")->version) + "}"));
  // The same for frames, for each of which a PNG is drawn, and programs, which get the record.
  const WebResponse png = Answer("GET", "/widget/sun.png?scheme=light&scale=1.5");
  EXPECT_EQ(png.contentType, "image/png");
  EXPECT_EQ(*png.sharedBody, "SunWidget light 1.500000");
  EXPECT_EQ(Get("/widget/sun.png"), "SunWidget dark 2.000000");
  EXPECT_EQ(Answer("GET", "/widget/sun.png?scheme=light&scale=1.50").sharedBody, png.sharedBody);
  EXPECT_EQ(pngCount, 2);
  askAnew();
  EXPECT_NE(Answer("GET", "/widget/sun.png?scheme=light&scale=1.5").sharedBody, png.sharedBody);
  EXPECT_NE(Answer("GET", "/widget/sun.png?scale=1.5").etag, png.etag);
  EXPECT_EQ(*Answer("GET", "/widget/moon.json").sharedBody, "{\"id\":\"moon\"}");
  // They take no more memory than they may: what nobody asked for longest is drawn again.
  pngBytes = 5u << 20;
  askAnew();
  pngCount = 0;
  for (const char* const scale : {"1", "2", "3", "1", "4", "1"}) {
    Get(std::string("/widget/sun.png?scale=") + scale);
  }
  EXPECT_EQ(pngCount, 4);
  Get("/widget/sun.png?scale=2");
  EXPECT_EQ(pngCount, 5);
}

TEST_F(HomeSiteTest, WhatIsAskedForWronglyIsSaid) {
  const std::tuple<const char*, int, const char*> cases[] = {
      {"/nothing", 404, "web_page_missing"},
      {"/widget/none.svg", 404, "web_page_missing"},
      {"/sample/SunWidget-large.svg", 404, "web_page_missing"},
      {"/sun?widget=none", 404, "web_page_missing"},
      {"/plan?id=none", 404, "web_page_missing"},
      {"/open", 404, "web_page_missing"},
      {"/open?url=https://example.org", 404, "web_page_missing"},
      {"/open?url=lumenquest://sunny", 404, "web_page_missing"},
      {"/api/home/none", 404, "web_page_missing"},
      {"/../style.css", 404, "web_page_missing"},
      {"/widget/none.png", 404, "home_error_unknown"},
      {"/widget/none.json", 404, "home_error_unknown"},
      {"/widget/sun.png?scale=0.9", 400, "error_bad_option"},
      {"/widget/sun.png?scale=4.1", 400, "error_bad_option"},
      {"/widget/sun.png?scale=nan", 400, "error_bad_option"},
      {"/widget/sun.png?scheme=Dark", 400, "error_bad_option"},
  };
  for (const auto& [address, status, key] : cases) {
    EXPECT_THAT(Get(address, status), HasSubstr(key)) << address;
  }
  EXPECT_EQ(pngCount, 0);
  const WebResponse posted = Answer("POST", "/sun");
  EXPECT_EQ(posted.status, 405);
  EXPECT_EQ(posted.allow, "GET, HEAD");
  EXPECT_EQ(Answer("GET", "/api/home/add").allow, "POST");
  EXPECT_EQ(Answer("GET", "/open?url=lumenquest://moon").location, "/moon");
  EXPECT_EQ(Get("/style.css"), "a{}");
}

TEST_F(HomeSiteTest, ADayIsToldInItsPlacesZoneAndLeavesTheDevicesBehind) {
  platform::Formatters::sharedInstance().setTimeZone({"Europe/Berlin"});
  // 20:30 UTC in a town of UTC+1, where the Sun rose at 4:59.
  EXPECT_THAT(Get("/sun?widget=sun"),
              AllOf(HasSubstr("Etc/GMT-1"), HasSubstr("9:30\u202FPM"), HasSubstr("\u21914:59"),
                    HasSubstr("<bdi>Bled &lt;script&gt;</bdi>"), HasSubstr("light_nighttime"),
                    Not(HasSubstr("<script>"))));
  const auto zones = [] {
    return platform::Formatters::sharedInstance().timeZone().name + " " +
           platform::NSCalendar::cachedCalendar().timeZone().name + " " +
           platform::Formatters::sharedInstance().shortTimeFormatter().stringFromDate(
               Instant("2024-08-12T20:30:00Z"));
  };
  const char* const unchanged = "Europe/Berlin Europe/Berlin 10:30\u202FPM";
  EXPECT_EQ(zones(), unchanged);
  try {
    const platform::PlaceZone zone({"Asia/Tokyo"});
    EXPECT_NE(zones(), unchanged);
    throw std::runtime_error("in the middle of a page");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(zones(), unchanged);
  }
}

TEST_F(HomeSiteTest, AWidgetThatFollowsTheDeviceIsWhereTheDeviceIs) {
  // The saved place is the Sun widget's, which asked later.
  scheduler.reload([](const PlacedWidget& widget) { return widget.id == "sun"; });
  world.queue->RunAll();
  EXPECT_THAT(Get("/moon?widget=lumenquest"),
              AllOf(HasSubstr("<bdi>-33,18</bdi>"), HasSubstr("Etc/GMT-1"),
                    HasSubstr("src=\"/moon.svg?widget=lumenquest&amp;v=")));
  EXPECT_THAT(Get("/moon.svg"), HasSubstr("<svg>"));
  world.device->last.reset();
  world.services.settings->setObject(std::nullopt,
                                     platform::kUserDefaultsTodayExtensionLastLatitude);
  EXPECT_THAT(Get("/sun"), HasSubstr("web_no_location"));
  Get("/moon.svg", 404);
}

TEST_F(HomeSiteTest, ADayWithoutAWidgetIsThatOfTheWidgetThatKnowsThePlace) {
  const auto expect = [this](const char* page, const char* name, const char* zone) {
    EXPECT_THAT(Get(page), AllOf(HasSubstr("<bdi>" + std::string(name)), HasSubstr(zone))) << page;
  };
  // The widgets there follow the device; its zone is not the one of the computer's clock.
  expect("/sun", "-33,18</bdi>", "Etc/GMT-1");
  // Where none follows the device, the first of the kind.
  Show(R"({"widgets":[{"kind":"PlansWidget"},{"kind":"MoonWidget","place":)"
       R"({"name":"Far","latitude":1,"longitude":90}},{"kind":"SunWidget","place":)" +
       std::string(kBled) + "}]}");
  expect("/sun", "Bled &lt;script&gt;</bdi>", "Etc/GMT-1");
  expect("/moon", "Far</bdi>", "Etc/GMT-6");
  // Where there is none of the kind, any that follows the device.
  Show(R"({"widgets":[{"kind":"PlansWidget"},{"kind":"GalacticCenterSmallWidget"}]})");
  platform::SavedLocation::save({10.0, 20.0});
  expect("/moon", "-33,18</bdi>", "Etc/GMT-1");
  // Where there is none at all, the saved place, unless the device has left it.
  Show(R"({"widgets":[{"kind":"PlansWidget"}]})");
  platform::SavedLocation::save({33.0, 18.0});
  platform::SavedLocation::savePlace({"Cape", "Africa/Johannesburg"});
  world.device->Fix({{33.008, 18.0}, Instant("2024-08-12T20:30:00Z")}, true);
  expect("/moon", "Cape</bdi>", "Johannesburg");
  world.device->Fix({{33.01, 18.0}, Instant("2024-08-12T20:30:00Z")}, true);
  // Where nobody knows a name, the coordinate stands for it, and stands once.
  expect("/sun", "33.010000°", "Europe/Berlin");
  const std::string html = Get("/sun");
  EXPECT_EQ(html.find("<bdi>33."), html.rfind("<bdi>33."));
}

TEST_F(HomeSiteTest, AWidgetThatHasNoAnswerYetHasNoDayYet) {
  world.geocoder->answersAtOnce = false;
  Show(R"({"widgets":[{"kind":"SunWidget","place":{"name":"Far","latitude":1,"longitude":90}}]})");
  EXPECT_THAT(Get("/sun?widget=sun"), HasSubstr("web_loading"));
  for (const char* const address : {"/widget/sun.png", "/widget/sun.json"}) {
    EXPECT_THAT(Get(address, 503), HasSubstr("web_loading"));
  }
  EXPECT_EQ(pngCount, 0) << "a frame must not show sample data";
  world.geocoder->Answer();
  world.queue->RunAll();
  EXPECT_THAT(Get("/sun?widget=sun"), HasSubstr("Etc/GMT-6"));
}

TEST_F(HomeSiteTest, ChangesGoIntoTheFileAndAreShown) {
  EXPECT_EQ(Post("add", R"({"kind":"SunWidget","theme":"dark","position":0})")["id"], "sun-2");
  EXPECT_THAT(Ids(), ElementsAre("sun-2", "sun", "lumenquest", "moon", "plans"));
  Post("move", R"({"id":"sun-2","position":99})");
  Post("remove", R"({"id":"moon"})");
  EXPECT_THAT(Ids(), ElementsAre("sun", "lumenquest", "plans", "sun-2"));
  EXPECT_THAT(published, ElementsAre("home {}", "home {}", "home {}"));

  Post("set", R"({"id":"sun","family":"medium"})");
  Post("set", R"({"id":"sun-2","place":)" + std::string(kBled) + "}");
  const Json home = Json::parse(Get("/api/home"))["widgets"];
  ASSERT_EQ(home.size(), 4u);
  EXPECT_EQ(home[0]["family"], "medium");
  EXPECT_EQ(home[0]["place"]["name"], "Bled <script>") << "what is not named stays";
  EXPECT_EQ(home[3]["theme"], "dark");
  EXPECT_EQ(home[3]["place"]["latitude"], 46.36);
}

TEST_F(HomeSiteTest, WhatIsWrongIsSaidAndChangesNothing) {
  const std::string before = *file->text;
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"add", "", "web_error_json"},
      {"add", R"({"kind":"Clock"})", "home_error_kind"},
      {"remove", "{}", "web_error_id"},
      {"remove", R"({"id":"none"})", "home_error_unknown"},
      {"move", R"({"id":"sun","position":1.5})", "web_error_position"},
      {"set", R"({"id":"sun","kind":"MoonWidget"})", "web_error_member"},
  };
  for (const auto& [operation, body, key] : cases) {
    EXPECT_THAT(Post(operation, body, 400)["error"].get<std::string>(), HasSubstr(key)) << body;
  }
  file->isFull = true;
  EXPECT_THAT(Post("remove", R"({"id":"sun"})", 400)["error"].get<std::string>(),
              HasSubstr("file_error_full"));
  EXPECT_EQ(*file->text, before);
  EXPECT_TRUE(published.empty());
  EXPECT_NE(scheduler.find("sun"), nullptr);
}

TEST_F(HomeSiteTest, AFileThatIsDamagedMeanwhileIsSpokenOf) {
  EXPECT_FALSE(Json::parse(Get("/api/home")).contains("error"));
  file->text = "{\"widgets\": <";
  const Json home = Json::parse(Get("/api/home"));
  EXPECT_THAT(home["error"].get<std::string>(), HasSubstr("home_error"));
  EXPECT_EQ(home["widgets"].size(), 4u) << "what is shown stays";
  EXPECT_THAT(Get("/edit"),
              AllOf(HasSubstr("role=\"alert\">home.json: &lt;home_error"), HasSubstr("\"sun\"")));
  Post("remove", R"({"id":"sun"})", 400);
  EXPECT_EQ(file->text, "{\"widgets\": <");
}

TEST_F(HomeSiteTest, PlacesAreSearchedForAndThoseOfOneNameToldApart) {
  for (const char* const area : {"Ohio", "Oregon", "Oregon", "Springfield"}) {
    auto& placemark = world.geocoder->placesToFind.emplace_back();
    placemark.location = platform::CLLocation{{46.36, 14.09}};
    placemark.locality = "Springfield";
    placemark.country = "United States";
    placemark.postalAddress = platform::PostalAddress{"Springfield", area, "United States"};
  }
  Get("/api/places?q=%20spring", 202);
  Get("/api/places?q=spring", 202);
  EXPECT_EQ(world.geocoder->searches, 1) << "one search, however often it is asked for";
  world.queue->RunAll();
  const Json sections = Json::parse(Get("/api/places?q=spring"))["sections"];
  EXPECT_EQ(sections[0]["items"][0]["isMyLocation"], true);
  const Json& found = sections[1]["items"];
  ASSERT_EQ(found.size(), 4u);
  EXPECT_EQ(found[0]["longitude"], 14.09);
  EXPECT_EQ(found[0]["detail"], "Ohio");
  EXPECT_THAT(found[1]["detail"].get<std::string>(), HasSubstr("Oregon, 46.36"));
  EXPECT_FALSE(found[3].contains("detail")) << "the name says it";
}

TEST(PlanPages, ShowWhatIsAhead) {
  const testing::ScratchFolder folder;
  const testing::PlansServices services(folder / "", testing::Role::owner, "Europe/Berlin");
  const auto context = platform::Database::sharedInstance().managedObjectContext();
  const auto save = [&](const char* name, const char* date) {
    const auto plan = context->insertNewObjectForEntityForName(platform::kEntityPlanning);
    plan->setValue(std::string(name), platform::kAttributeName);
    plan->setValue(Instant(date), platform::kAttributeDate);
    plan->setValue(std::string("Asia/Tokyo"), platform::kAttributeTimezone);
    EXPECT_FALSE(context->save());
    return plan->objectID().URIRepresentation();
  };
  EXPECT_THAT(plansPageContent(), HasSubstr("plan_no_scheduled"));
  save("past", "2024-08-11T21:00:00Z");
  const std::string id = save("</a><b>\u202E", "2024-08-12T22:15:00Z");
  EXPECT_THAT(plansPageContent(),
              AllOf(HasSubstr("<bdi>&lt;/a&gt;&lt;b&gt;\u202E</bdi>"), HasSubstr("August 13, 2024"),
                    HasSubstr("7:15\u202FAM"), HasSubstr("/plan?id=" + percentEncoded(id)),
                    Not(HasSubstr("past"))));
  EXPECT_THAT(planPage(id).value().content, HasSubstr("Asia/Tokyo"));
  EXPECT_FALSE(planPage(id + "0"));
}

}  // namespace
}  // namespace lumenquest::host
