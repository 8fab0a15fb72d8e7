#pragma once

namespace lumenquest::adapters {

/// The file's kind and the version of its layout, in SQLite's application_id and user_version.
inline constexpr int kGazetteerApplicationId = 0x4C51475A;  // "LQGZ"
inline constexpr int kGazetteerVersion = 1;

/// Stands before every name of a place in the searched text: a name's beginning can be asked for,
/// and no phrase runs from one name into the next. Of the private use area, which no typed text
/// keeps.
inline constexpr const char* kNameMark = "\uE000";

/// `place.id` counts the places from the one with most people down, and so does the search table's
/// row number: what a search yields first is best known. `name_key` holds every whole name.
inline constexpr const char* kGazetteerSchema = R"(
CREATE TABLE zone (id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE) STRICT;
CREATE TABLE admin1 (
  id INTEGER PRIMARY KEY,
  country TEXT NOT NULL,
  code TEXT NOT NULL,
  name TEXT NOT NULL,
  UNIQUE (country, code)
) STRICT;
CREATE TABLE admin1_key (
  key TEXT NOT NULL,
  admin1 INTEGER NOT NULL,
  PRIMARY KEY (key, admin1)
) STRICT, WITHOUT ROWID;
CREATE TABLE place (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  latitude REAL NOT NULL,
  longitude REAL NOT NULL,
  country TEXT NOT NULL,
  admin1 INTEGER REFERENCES admin1,
  admin2_name TEXT NOT NULL,
  population INTEGER NOT NULL,
  zone INTEGER NOT NULL REFERENCES zone
) STRICT;
CREATE TABLE name_key (
  key TEXT NOT NULL,
  place INTEGER NOT NULL,
  PRIMARY KEY (key, place)
) STRICT, WITHOUT ROWID;
CREATE VIRTUAL TABLE place_box USING rtree(id, south, north, west, east);
CREATE VIRTUAL TABLE place_search USING fts5(
  names, region,
  content='', columnsize=0, prefix='1 2 3',
  tokenize="unicode61 remove_diacritics 2 categories 'L* N* M* Co'"
);
)";

}  // namespace lumenquest::adapters
