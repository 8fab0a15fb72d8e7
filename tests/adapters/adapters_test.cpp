// Timestamps, zones, locales and string tables.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "adapters/files.h"
#include "adapters/icu_string_tables.h"
#include "plans_fixture.h"
#include "platform/localized_strings.h"

namespace lumenquest::adapters {
namespace {

TEST(Rfc3339, RoundTripsAndRefuses) {
  const std::map<std::string, std::string> accepted{
      {"2024-08-12T21:30:00Z", "2024-08-12T21:30:00Z"},
      {"2024-08-12t23:30:00.25+02:00", "2024-08-12T21:30:00.25Z"},
      {"0000-02-29T00:00:00Z", "0000-02-29T00:00:00Z"},
      {"-3000-01-01T00:00:00Z", "-3000-01-01T00:00:00Z"},
      {"+12345-06-07T08:09:10Z", "+12345-06-07T08:09:10Z"},
      {"1582-10-10T00:00:00Z", "1582-10-10T00:00:00Z"},
      {"2016-12-31T23:59:60Z", "2017-01-01T00:00:00Z"},
  };
  for (const auto& [text, expected] : accepted) {
    const auto date = parseRfc3339(text);
    ASSERT_TRUE(date) << text;
    EXPECT_EQ(formatRfc3339(*date), expected);
  }
  // What a damaged file may hold; its text can be read again.
  for (const auto& [seconds, text] : std::map<double, std::string>{
           {1e300, "+999999-12-31T23:59:59Z"}, {-1e15, "-999999-01-01T00:00:00Z"}}) {
    EXPECT_EQ(formatRfc3339(platform::NSDate(seconds)), text);
    EXPECT_EQ(formatRfc3339(parseRfc3339(text).value()), text);
  }
  for (const char* text :
       {"", "2024-08-12", "2024-08-12 21:30:00Z", "2024-08-12T21:30:00", "2024-8-12T21:30:00Z",
        "2023-02-29T00:00:00Z", "2024-08-12T25:00:00Z", "2024-08-12T21:30:00+25:00",
        "2024-08-12T21:30:00.Z", " 2024-08-12T21:30:00Z", "2024-08-12T21:30:00Z ",
        "-12345678-01-01T00:00:00Z", "12024-08-12T21:30:00Z", "infinite-future"}) {
    EXPECT_FALSE(parseRfc3339(text)) << text;
  }
}

TEST(TimeZones, OnlyIdentifiersOfTheDatabase) {
  SystemTimeZones zones;
  for (const char* name : {"Europe/Madrid", "UTC", "Etc/GMT+12", "America/Port-au-Prince"}) {
    EXPECT_TRUE(zones.isKnown(name)) << name;
  }
  for (const char* name :
       {"", "Europe/Nowhere", "/etc/localtime", "../etc/passwd", "Europe/../UTC", "right/UTC",
        "Fixed/UTC+05:00:00", "localtime", "Europe", "Europe/Madrid\n", "tzdata.zi", "posix/UTC",
        "Factory", "Europe//Berlin"}) {
    EXPECT_FALSE(zones.isKnown(name)) << name;
  }
}

TEST(TimeZones, OfTheEnvironment) {
  const std::map<std::string, std::string> zones{
      {"Asia/Tokyo", "Asia/Tokyo"},
      {":Asia/Tokyo", "Asia/Tokyo"},
      {"/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
      {"", "UTC"},
      // Rules that no zone of the database has are not taken for UTC; the command refuses them.
      {"CET-1CEST,M3.5.0,M10.5.0/3", "CET-1CEST,M3.5.0,M10.5.0/3"},
      {"<-03>3", "<-03>3"}};
  for (const auto& [value, zone] : zones) {
    setenv("TZ", value.c_str(), 1);
    EXPECT_EQ(SystemTimeZones().localTimeZone().name, zone);
  }
  unsetenv("TZ");
}

TEST(Locales, OfTheEnvironment) {
  const auto locale = [](const char* all, const char* messages, const char* lang) {
    setenv("LC_ALL", all, 1);
    setenv("LC_MESSAGES", messages, 1);
    setenv("LANG", lang, 1);
    return environmentLocale();
  };
  EXPECT_EQ(locale("", "", "de_DE.UTF-8"), "de_DE");
  EXPECT_EQ(locale("", "fr_FR.UTF-8", "de_DE.UTF-8"), "fr_FR");
  EXPECT_EQ(locale("pt_BR", "fr_FR.UTF-8", "de_DE.UTF-8"), "pt_BR");
  for (const char* value : {"", "C", "C.UTF-8", "POSIX", "xx_YY"}) {
    EXPECT_EQ(locale("", "", value), "en_US_POSIX");
  }
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) unsetenv(name);
}

TEST(Locales, KnownTags) {
  const std::map<std::string, std::string> known{{"en", "en"},
                                                 {"de_AT.UTF-8", "de_AT"},
                                                 {"sr-RS", "sr_RS"},
                                                 {"zh-Hant-TW", "zh_Hant_TW"},
                                                 {"en-US-u-hc-h23", "en_US@hours=h23"},
                                                 {"iw", "iw"}};
  for (const auto& [tag, identifier] : known) EXPECT_EQ(localeIdentifier(tag), identifier) << tag;
  EXPECT_EQ(languageTag("he_IL@calendar=hebrew"), "he-IL");
  for (const char* tag : {"", "xx", "en-XQ", "english", "de--AT", "42", "en-Zzzx"}) {
    EXPECT_FALSE(localeIdentifier(tag)) << tag;
  }
}

// The tables as their sources have them: language -> key -> text.
using Languages = std::map<std::string, std::map<std::string, std::string>>;

Languages ReadSources(const std::string& table) {
  static const std::regex entry(R"rx(^\s+(\w+) \{ "(.*)" \}\s*$)rx");
  Languages languages;
  const auto folder =
      std::filesystem::path(LUMENQUEST_SOURCE_DIR) / "resources" / "strings" / table;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    auto& texts = languages[file.path().stem().string()];
    std::ifstream stream(file.path());
    for (std::string line; std::getline(stream, line);) {
      std::smatch match;
      if (!std::regex_match(line, match, entry)) continue;
      // The escapes in use (\n, \", \u200E) are those of JSON.
      texts[match[1]] = nlohmann::json::parse('"' + match.str(2) + '"').get<std::string>();
    }
  }
  return languages;
}

// What is made of each argument, and the percent signs: "1@", "2.1f", "%". A language may take the
// arguments in another order than English.
std::multiset<std::string> Placeholders(const std::string& text) {
  static const std::regex placeholder(R"(%(?:(%)|(?:(\d+)\$)?((?:\.\d+)?[@df])))");
  std::multiset<std::string> found;
  int nextInOrder = 1;
  for (std::sregex_iterator match(text.begin(), text.end(), placeholder), end; match != end;
       ++match) {
    if ((*match)[1].matched) {
      found.insert("%");
      continue;
    }
    const std::string position =
        (*match)[2].matched ? match->str(2) : std::to_string(nextInOrder++);
    found.insert(position + match->str(3));
  }
  return found;
}

TEST(StringTables, EveryLanguageHasEveryKey) {
  std::set<std::string> languagesOfFirstTable;
  for (const char* table : {"Ephemeris", "Common", "App"}) {
    Languages languages = ReadSources(table);
    const auto english = languages.at("root");
    EXPECT_GT(english.size(), 20u);
    languages.erase("root");
    languages.erase("en");  // English is the root table
    std::set<std::string> names;
    for (const auto& [language, texts] : languages) names.insert(language);
    if (languagesOfFirstTable.empty()) languagesOfFirstTable = names;
    EXPECT_EQ(names, languagesOfFirstTable) << table;
    for (const auto& [language, texts] : languages) {
      IcuStringTables compiled(LUMENQUEST_TEST_RESOURCES "/strings", language);
      for (const auto& [key, text] : english) {
        ASSERT_TRUE(texts.contains(key)) << table << ' ' << language << ' ' << key;
        EXPECT_FALSE(texts.at(key).empty()) << key;
        EXPECT_EQ(Placeholders(texts.at(key)), Placeholders(text)) << language << ' ' << key;
        EXPECT_EQ(compiled.localizedString(key, table), texts.at(key)) << language << ' ' << key;
      }
      EXPECT_EQ(texts.size(), english.size()) << language << " has keys that English lacks";
    }
  }
}

TEST(StringTables, HoldEveryKeyInUse) {
  std::set<std::string> keys;
  for (const char* table : {"Ephemeris", "Common", "App"}) {
    const auto english = ReadSources(table).at("root");
    for (const auto& [key, text] : english) keys.insert(key);
  }
  // Keys in the sources are quoted words with an underscore; these few are something else.
  const std::set<std::string> others{"pt_planet", "lumenquest_migrate_appgroups"};
  static const std::regex quoted(R"rx("([a-z]+(?:_[a-z0-9]+)+)")rx");
  int found = 0;
  for (const auto& file : std::filesystem::recursive_directory_iterator(
           std::filesystem::path(LUMENQUEST_SOURCE_DIR) / "src")) {
    if (file.path().extension() != ".cpp") continue;
    const std::string source = testing::Contents(file.path());
    for (std::sregex_iterator match(source.begin(), source.end(), quoted), end; match != end;
         ++match) {
      const std::string key = (*match)[1];
      if (others.contains(key)) continue;
      EXPECT_TRUE(keys.contains(key)) << key << " in " << file.path().filename();
      ++found;
    }
  }
  EXPECT_GT(found, 80);
}

TEST(StringTables, FallBackToEnglishAndToNothing) {
  const std::string folder = LUMENQUEST_TEST_RESOURCES "/strings";
  const auto night = [&](const char* locale) {
    return IcuStringTables(folder, locale).localizedString("light_nighttime", "Ephemeris");
  };
  EXPECT_EQ(night("en_GB"), "Night");
  EXPECT_EQ(night("de_CH"), "Nacht");
  // Hebrew's older name.
  EXPECT_EQ(night("iw_IL"), "לילה");
  EXPECT_EQ(night("eo"), "Night");
  IcuStringTables tables(folder, "de");
  EXPECT_EQ(tables.localizedString("no_such_key", "Ephemeris"), "");
  EXPECT_EQ(tables.localizedString("light_nighttime", "NoSuchTable"), "");
}

TEST(Files, AreReplacedWholeAndPipesWrittenTo) {
  namespace fs = std::filesystem;
  const testing::ScratchFolder folder;
  EXPECT_FALSE(writeFileWhole(folder / "file", "old"));
  fs::permissions(folder / "file", fs::perms(0640));
  fs::create_symlink("file", folder / "link");
  EXPECT_FALSE(writeFileWhole(folder / "link", "new"));
  EXPECT_EQ(testing::Contents(folder / "file"), "new");
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms(0640));

  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);

  // As /dev/stdout names the pipe that somebody reads from.
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  EXPECT_FALSE(writeFileWhole("/proc/self/fd/" + std::to_string(ends[1]), "piped"));
  char read[6] = {};
  EXPECT_EQ(::read(ends[0], read, 5), 5);
  EXPECT_STREQ(read, "piped");
  ::close(ends[0]);
  ::close(ends[1]);
}

}  // namespace
}  // namespace lumenquest::adapters
