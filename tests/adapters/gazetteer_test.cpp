// Places by name and by coordinate, with the file that the build made.

#include "adapters/gazetteer.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "adapters/system_time_zones.h"
#include "scratch_folder.h"

namespace lumenquest::adapters {
namespace {

using platform::CLLocation;
using platform::CLLocationCoordinate2D;
using platform::CLPlacemark;
using testing::ScratchFolder;

const std::string kFile = LUMENQUEST_TEST_RESOURCES "/gazetteer.sqlite";

Gazetteer& English() {
  static Gazetteer gazetteer(kFile, "en_US");
  return gazetteer;
}

std::string Described(const CLPlacemark& placemark) {
  return placemark.locality.value_or("-") + " | " + placemark.administrativeArea.value_or("-") +
         " | " + placemark.country.value_or("-") + " | " +
         (placemark.timeZone ? placemark.timeZone->name : "-");
}

std::string First(Gazetteer& gazetteer, const std::string& text) {
  const auto found = gazetteer.geocodeAddressString(text);
  return found.empty() ? "none" : Described(found.front());
}

TEST(GazetteerSearch, FindsWhatPeopleType) {
  const std::string munich = "Munich | Bavaria | Germany | Europe/Berlin";
  const std::string saoPaulo = "São Paulo | São Paulo | Brazil | America/Sao_Paulo";
  const std::string moab = "Moab | Utah | United States | America/Denver";
  const std::string chamonix = "Chamonix-Mont-Blanc | Auvergne-Rhône-Alpes | France | Europe/Paris";
  const std::pair<const char*, std::string> cases[] = {
      {"san jose", "San Jose | California | United States | America/Los_Angeles"},
      {"são paulo", saoPaulo},
      {"SA\u0303O PAU", saoPaulo},
      {"chamonix fr", chamonix},
      {"chamonix auvergne rhone alpes fran", chamonix},
      {"moab ut", moab},
      {"  moab ,, (utah) United States", moab},
      {"Munich", munich},
      {"Muenchen", munich},
      {"MU\u0308NCHEN deutschland", munich},
      {"munch", munich},
      {"Москва", "Moscow | Moscow | Russia | Europe/Moscow"},
      {"ｔｏｋｙｏ", "Tokyo | Tokyo | Japan | Asia/Tokyo"},
      {"القاهرة", "Cairo | Cairo | Egypt | Africa/Cairo"},
      {"xi an", "Xi’an | Shaanxi | China | Asia/Shanghai"},
      {"tromso", "Tromsø | Troms | Norway | Europe/Oslo"},
      {"paris texas", "Paris | Texas | United States | America/Chicago"},
      {"perth wa", "Perth | Western Australia | Australia | Australia/Perth"},
      {"birmingham uk", "Birmingham | England | United Kingdom | Europe/London"},
      {"new york", "New York City | New York | United States | America/New_York"},
      {"dnipro", "Dnipro | Dnipropetrovsk | Ukraine | Europe/Kyiv"},
      {"tabatinga amazonas", "Tabatinga | Amazonas | Brazil | America/Eirunepe"},
      {"moab france", "none"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(First(English(), text), expected) << text;
}

TEST(GazetteerSearch, CountriesAreInTheUsersLanguage) {
  Gazetteer german(kFile, "de_AT");
  EXPECT_EQ(First(german, "innsbruck österreich"),
            "Innsbruck | Tyrol | Österreich | Europe/Vienna");
  EXPECT_EQ(First(german, "moab vereinigte staaten"),
            "Moab | Utah | Vereinigte Staaten | America/Denver");
}

TEST(GazetteerSearch, ExactNamesComeFirstThenTheBestKnown) {
  const auto found = English().geocodeAddressString("york");
  ASSERT_EQ(found.size(), 10u);
  EXPECT_EQ(Described(found[0]), "York | England | United Kingdom | Europe/London");
  const auto notExact = std::find_if(found.begin(), found.end(),
                                     [](const CLPlacemark& p) { return p.name != "York"; });
  EXPECT_TRUE(
      std::none_of(notExact, found.end(), [](const CLPlacemark& p) { return p.name == "York"; }));

  const auto springfields = English().geocodeAddressString("springfield");
  EXPECT_EQ(springfields[0].administrativeArea, "Missouri");
  EXPECT_EQ(springfields[2].administrativeArea, "Illinois");
}

TEST(GazetteerSearch, APlacemarkSaysWhatIsKnown) {
  const auto found = English().geocodeAddressString("moab utah");
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].name, "Moab");
  EXPECT_EQ(found[0].subAdministrativeArea, "Grand County");
  ASSERT_TRUE(found[0].location);
  EXPECT_NEAR(found[0].location->coordinate.latitude, 38.573, 0.01);
  EXPECT_NEAR(found[0].location->coordinate.longitude, -109.550, 0.01);
}

TEST(GazetteerSearch, AnyTextIsOnlyText) {
  std::string emoji;
  for (int i = 0; i < 2500; ++i) emoji += "🌙";
  for (const std::string& text :
       {std::string(), std::string(" \t\n"), std::string("\"\"\""), std::string("*"),
        std::string("^"), std::string("-:()"), std::string("\u0301\u0302"),
        std::string("\u202E\uE000"), std::string("\xFF\xFE\xC3"), std::string(1, '\0'), emoji,
        std::string(10240, '"')}) {
    EXPECT_EQ(First(English(), text), "none") << text.substr(0, 20);
  }
  // Operators and column names of the search's language, and letters that people's keyboards add.
  const std::string moab = "Moab | Utah | United States | America/Denver";
  for (const std::string& text :
       {std::string("\"moab\" ut"), std::string("moab* + ut"), std::string("^moab ut"),
        std::string("(moab) ut;--"), std::string("moab 🌙 ut"), std::string("\u202Bmoab\u202C ut"),
        std::string("moab\u00A0ut"), std::string("mo\u00ADab ut"), std::string("moab ut\xFF"),
        std::string("moab\0ut", 7)}) {
    EXPECT_EQ(First(English(), text), moab) << text.substr(0, 20);
  }
}

struct At {
  const char* what;
  CLLocationCoordinate2D coordinate;
  const char* expected;
};

TEST(GazetteerReverse, TheNearestPlaceWithin30Kilometres) {
  const std::vector<At> cases{
      {"Dead Horse Point", {38.4703, -109.7405}, "Moab | Utah | United States | America/Denver"},
      {"Lake Bled",
       {46.3625, 14.0936},
       "Bled | Municipality of Bled | Slovenia | Europe/Ljubljana"},
      {"South Pole", {-90.0, 0.0}, "none"},
      {"North Pole", {90.0, 45.0}, "none"},
      {"middle of the Pacific", {-48.88, -123.39}, "none"},
      {"no number", {std::numeric_limits<double>::quiet_NaN(), 0.0}, "none"},
      {"no latitude", {90.5, 0.0}, "none"},
  };
  for (const auto& [what, coordinate, expected] : cases) {
    const auto found = English().reverseGeocodeLocation({coordinate});
    EXPECT_EQ(found.empty() ? "none" : Described(found[0]), expected) << what;
    if (!found.empty()) {
      EXPECT_EQ(found[0].location, CLLocation{coordinate});
      EXPECT_FALSE(found[0].name);
    }
  }
}

TEST(GazetteerZone, OfTheNearestPlace) {
  const std::vector<At> cases{
      {"Punta Arenas, apart since 2016", {-53.163, -70.917}, "America/Punta_Arenas"},
      {"Barnaul, apart since 2016", {53.36, 83.76}, "Asia/Barnaul"},
      {"Saratov, apart since 2016", {51.54, 46.01}, "Europe/Saratov"},
      {"Ciudad Juárez, apart since 2022", {31.720, -106.461}, "America/Ciudad_Juarez"},
      {"Yuma, by the border of its state", {32.725, -114.624}, "America/Phoenix"},
      {"Coyhaique, apart since 2025", {-45.575, -72.066}, "America/Coyhaique"},
      {"Hanoi, by its own country's zone", {21.0245, 105.841}, "Asia/Ho_Chi_Minh"},
      {"Uluru, far from everything", {-25.345, 131.036}, "Australia/Darwin"},
      {"east of the 180th meridian, nearest west of it", {-16.8, -179.9}, "Pacific/Fiji"},
      {"west of the 180th meridian, nearest east of it", {66.3, 179.9}, "Asia/Anadyr"},
      {"open ocean, west", {-48.88, -123.39}, "Etc/GMT+8"},
      {"North Pole", {90.0, 180.0}, "Etc/GMT-12"},
  };
  SystemTimeZones zones;
  for (const auto& [what, coordinate, expected] : cases) {
    const auto zone = English().timeZoneAt(coordinate);
    ASSERT_TRUE(zone) << what;
    EXPECT_EQ(zone->name, expected) << what;
    EXPECT_TRUE(zones.isKnown(zone->name)) << what;
  }
  EXPECT_FALSE(English().timeZoneAt({91.0, 0.0}));
  EXPECT_FALSE(English().timeZoneAt({0.0, std::numeric_limits<double>::infinity()}));
}

class SmallGazetteer : public ::testing::Test {
 protected:
  /// The exit code of the tool that makes a file from this table.
  int Build(const std::string& table) const {
    std::ofstream(folder_ / "places.tsv", std::ios::binary) << table;
    const std::string command = "'" LUMENQUEST_BUILD_GAZETTEER "' '" +
                                (folder_ / "places.tsv").string() + "' '" + File() + "' 2>'" +
                                (folder_ / "errors").string() + "'";
    return WEXITSTATUS(std::system(command.c_str()));
  }
  std::string File() const { return folder_ / "small.sqlite"; }

  const ScratchFolder folder_;
};

TEST_F(SmallGazetteer, MeridiansAndPolesAreNoEdges) {
  ASSERT_EQ(Build("West\t\t-16.8\t179.95\tFJ\t01\tNorthern\t\t0\tPacific/Fiji\n"
                  "East\t\t-16.8\t-179.95\tFJ\t01\tNorthern\t\t0\tPacific/Fiji\n"
                  "Ice\t\t89.9\t10\tNO\t\t\t\t0\tArctic/Longyearbyen\n"
                  "Line\t\t10\t180\tNZ\t\t\t\t0\tPacific/Auckland\n"
                  "Lone\t\t20\t-179.95\tUM\t\t\t\t0\tPacific/Wake\n"
                  "Station\t\t-90\t0\tAQ\t\t\t\t0\tAntarctica/McMurdo\n"),
            0);
  Gazetteer gazetteer(File(), "en_US");
  const std::vector<At> cases{
      {"both sides, nearer west", {-16.8, 179.999}, "West"},
      {"east only, from the west", {20.0, 179.95}, "Lone"},
      {"both sides, nearer east", {-16.8, -179.999}, "East"},
      {"beyond the line from the east", {-16.8, -179.80}, "East"},
      {"on the line, named from the other side", {10.0, -180.0}, "Line"},
      {"west of the line", {10.0, 179.9}, "Line"},
      {"over the North Pole", {89.9, -170.0}, "Ice"},
      {"South Pole by another meridian", {-90.0, 77.0}, "Station"},
      {"29 km from the South Pole", {-89.74, -120.0}, "Station"},
      {"31 km from the South Pole", {-89.72, -120.0}, "none"},
  };
  for (const auto& [what, coordinate, expected] : cases) {
    const auto found = gazetteer.reverseGeocodeLocation({coordinate});
    EXPECT_EQ(found.empty() ? "none" : found[0].locality.value(), expected) << what;
  }
}

TEST_F(SmallGazetteer, NamesAreFoundAsTheyMayBeSpelt) {
  ASSERT_EQ(Build("Plön\t\t54\t10\tDE\t\t\t\t0\tEurope/Berlin\n"
                  "Ha’apai\t\t-20\t-174\tTO\t\t\t\t0\tPacific/Tongatapu\n"),
            0);
  Gazetteer gazetteer(File(), "en_US");
  for (const char* text : {"plön", "plon", "ploen", "ha'apai", "ha apai", "haapai"}) {
    EXPECT_EQ(gazetteer.geocodeAddressString(text).size(), 1u) << text;
  }
}

TEST_F(SmallGazetteer, ATableWithFaultsMakesNoFile) {
  for (const char* table : {"Moab\n", "Moab\t\tnorth\t0\tUS\tUT\tUtah\t\t0\tAmerica/Denver\n",
                            "\t\t38\t-109\tUS\tUT\tUtah\t\t0\tAmerica/Denver\n",
                            "Moab\t\t38\t-109\tUS\tUT\tUtah\t\tmany\tAmerica/Denver\n"}) {
    EXPECT_EQ(Build(table), 1) << table;
    EXPECT_FALSE(std::filesystem::exists(File()));
  }
}

TEST(GazetteerFile, MissingOrDamagedIsSaidInOneLine) {
  const ScratchFolder scratch;
  const auto folder = scratch / "gazetteer ?#%41 ü";
  std::filesystem::create_directories(folder);
  const auto write = [&folder](const std::string& name, const std::string& bytes) {
    std::ofstream(folder / name, std::ios::binary) << bytes;
    return (folder / name).string();
  };
  std::ifstream whole(kFile, std::ios::binary);
  std::string head(1 << 20, '\0');
  whole.read(head.data(), static_cast<std::streamsize>(head.size()));

  // Its head is in order; what the indexes lead to is not.
  const std::string inside = write("inside.sqlite", head);
  std::filesystem::resize_file(inside, std::filesystem::file_size(kFile));

  for (const std::string& path :
       {inside, (folder / "missing.sqlite").string(), folder.string(), write("empty.sqlite", ""),
        write("text.sqlite", std::string(8192, 'x')), write("cut.sqlite", head.substr(0, 50)),
        write("head.sqlite", head.substr(0, 4096))}) {
    try {
      Gazetteer gazetteer(path, "en_US");
      gazetteer.geocodeAddressString("moab");
      ADD_FAILURE() << path;
    } catch (const std::runtime_error& error) {
      const std::string message = error.what();
      EXPECT_NE(message.find(path), std::string::npos) << message;
      EXPECT_EQ(message.find('\n'), std::string::npos) << message;
    }
  }
  // A path is a path, whatever a URI makes of its signs.
  std::filesystem::copy_file(kFile, folder / "whole.sqlite");
  Gazetteer gazetteer((folder / "whole.sqlite").string(), "en_US");
  EXPECT_EQ(First(gazetteer, "moab ut"), "Moab | Utah | United States | America/Denver");
}

}  // namespace
}  // namespace lumenquest::adapters
