// Makes the gazetteer's SQLite file from the table of resources/gazetteer at build time.
//   build_gazetteer TABLE FILE

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "gazetteer_schema.h"
#include "search_key.h"
#include "sqlite_connection.h"
#include "tab_table.h"

namespace lumenquest::adapters {
namespace {

struct Place {
  std::string name;
  std::vector<std::string> otherNames;
  double latitude = 0.0;
  double longitude = 0.0;
  std::string country;
  std::string admin1Code;
  std::string admin1Name;
  std::string admin2Name;
  std::int64_t population = 0;
  std::string zone;
};

Place Read(const std::vector<std::string>& fields) {
  if (fields.size() != 10) throw std::runtime_error("expected 10 fields");
  Place place{fields[0],
              split(fields[1], ';'),
              parsed<double>(fields[2]),
              parsed<double>(fields[3]),
              fields[4],
              fields[5],
              fields[6],
              fields[7],
              parsed<std::int64_t>(fields[8]),
              fields[9]};
  if (place.name.empty() || place.country.size() != 2 || place.zone.empty()) {
    throw std::runtime_error("expected a name, a country code and a time zone");
  }
  return place;
}

/// Postal abbreviations where GeoNames' codes are others.
struct Abbreviation {
  const char* country;
  const char* area;
  const char* key;
};

constexpr std::array<Abbreviation, 21> kAbbreviations{{
    {"AU", "Australian Capital Territory", "act"},
    {"AU", "New South Wales", "nsw"},
    {"AU", "Northern Territory", "nt"},
    {"AU", "Queensland", "qld"},
    {"AU", "South Australia", "sa"},
    {"AU", "Tasmania", "tas"},
    {"AU", "Victoria", "vic"},
    {"AU", "Western Australia", "wa"},
    {"CA", "Alberta", "ab"},
    {"CA", "British Columbia", "bc"},
    {"CA", "Manitoba", "mb"},
    {"CA", "New Brunswick", "nb"},
    {"CA", "Newfoundland and Labrador", "nl"},
    {"CA", "Northwest Territories", "nt"},
    {"CA", "Nova Scotia", "ns"},
    {"CA", "Nunavut", "nu"},
    {"CA", "Ontario", "on"},
    {"CA", "Prince Edward Island", "pe"},
    {"CA", "Quebec", "qc"},
    {"CA", "Saskatchewan", "sk"},
    {"CA", "Yukon", "yt"},
}};

/// The words by which an area is searched: its name, its postal abbreviation, and its code where
/// that is letters (the postal abbreviations of the United States among them).
std::vector<std::string> AreaKeys(const Place& place) {
  std::vector<std::string> keys = searchKeys(place.admin1Name);
  for (const Abbreviation& abbreviation : kAbbreviations) {
    if (place.country == abbreviation.country && place.admin1Name == abbreviation.area) {
      keys.emplace_back(abbreviation.key);
    }
  }
  if (std::all_of(place.admin1Code.begin(), place.admin1Code.end(),
                  [](char c) { return c >= 'A' && c <= 'Z'; })) {
    keys.push_back(joinedWords(searchWords(place.admin1Code)));
  }
  return keys;
}

void Write(std::vector<Place> places, const std::string& path) {
  std::stable_sort(places.begin(), places.end(),
                   [](const Place& a, const Place& b) { return a.population > b.population; });
  SqliteConnection connection(path, SqliteConnection::Mode::create);
  connection.Run("PRAGMA page_size = 4096");
  // A build that is broken off starts anew.
  connection.Run("PRAGMA journal_mode = MEMORY");
  connection.Run("PRAGMA synchronous = OFF");
  connection.Run("PRAGMA application_id = " + std::to_string(kGazetteerApplicationId));
  connection.Run("PRAGMA user_version = " + std::to_string(kGazetteerVersion));
  connection.Run(kGazetteerSchema);
  SqliteTransaction transaction(connection, true);
  SqliteStatement insertZone(connection, "INSERT INTO zone VALUES (?, ?)");
  SqliteStatement insertArea(connection, "INSERT INTO admin1 VALUES (?, ?, ?, ?)");
  SqliteStatement insertAreaKey(connection, "INSERT OR IGNORE INTO admin1_key VALUES (?, ?)");
  SqliteStatement insertPlace(connection,
                              "INSERT INTO place VALUES (?, ?, ?, ?, ?, NULLIF(?, 0), ?, ?, ?)");
  SqliteStatement insertKey(connection, "INSERT INTO name_key VALUES (?, ?)");
  SqliteStatement insertBox(connection, "INSERT INTO place_box VALUES (?1, ?2, ?2, ?3, ?3)");
  SqliteStatement insertSearch(connection,
                               "INSERT INTO place_search (rowid, names, region) VALUES (?, ?, ?)");

  std::map<std::string, std::int64_t> zones;
  std::map<std::pair<std::string, std::string>, std::int64_t> areas;
  std::set<std::pair<std::string, std::int64_t>> keys;
  std::int64_t id = 0;
  for (const Place& place : places) {
    ++id;
    const auto [zone, isNewZone] =
        zones.emplace(place.zone, static_cast<std::int64_t>(zones.size() + 1));
    if (isNewZone) insertZone.Run(zone->second, zone->first);

    std::int64_t area = 0;
    if (!place.admin1Name.empty()) {
      const auto [found, isNewArea] = areas.emplace(std::pair(place.country, place.admin1Code),
                                                    static_cast<std::int64_t>(areas.size() + 1));
      area = found->second;
      if (isNewArea) {
        insertArea.Run(area, place.country, place.admin1Code, place.admin1Name);
        for (const std::string& key : AreaKeys(place)) insertAreaKey.Run(key, area);
      }
    }
    insertPlace.Run(id, place.name, place.latitude, place.longitude, place.country, area,
                    place.admin2Name, place.population, zone->second);
    insertBox.Run(id, place.latitude, place.longitude);

    std::string text;
    std::set<std::string> own;
    std::vector<std::string> names{place.name};
    names.insert(names.end(), place.otherNames.begin(), place.otherNames.end());
    for (const std::string& name : names) {
      for (const std::string& key : searchKeys(name)) {
        if (!own.insert(key).second) continue;
        text += std::string(kNameMark) + " " + key + " ";
        keys.emplace(key, id);
      }
    }
    insertSearch.Run(id, text, "c" + place.country + " a" + std::to_string(area));
  }
  for (const auto& [key, place] : keys) insertKey.Run(key, place);
  connection.Run("INSERT INTO place_search (place_search) VALUES ('optimize')");
  transaction.Commit();
  connection.Run("ANALYZE");
  connection.Run("VACUUM");
}

}  // namespace
}  // namespace lumenquest::adapters

int main(int argc, char** argv) {
  using namespace lumenquest::adapters;
  if (argc != 3) {
    std::cerr << "build_gazetteer: give the table and the file to write\n";
    return 2;
  }
  const std::string table = argv[1];
  const std::string file = argv[2];
  // Under another name until it is whole.
  const std::string unfinished = file + ".new";
  try {
    std::filesystem::remove(unfinished);
    std::vector<Place> places;
    readTable(table, [&](const auto& fields) { places.push_back(Read(fields)); });
    Write(std::move(places), unfinished);
    std::filesystem::rename(unfinished, file);
  } catch (const std::exception& error) {
    std::cerr << "build_gazetteer: " << table << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
