#pragma once

#include <string>
#include <vector>

#include "app/command_set.h"

namespace lumenquest::app {

// Values that the shell offers for options of several commands.

/// Places that can follow --place, best known first; none before the second letter.
std::vector<Suggestion> suggestPlaces(const std::string& beginning);
/// The zones of the time-zone database that a place has.
std::vector<Suggestion> suggestTimeZones(const std::string& beginning);
/// The languages that there are words in.
std::vector<Suggestion> suggestLocales(const std::string& beginning);
std::vector<Suggestion> suggestKinds(const std::string& beginning);
/// The sizes of the kind of widget that is a command's first argument; none for what is no kind.
std::vector<Suggestion> suggestFamiliesOfKind(const std::vector<std::string>& arguments);
/// Deep links: of the pages, and of the saved plans, whose names they are told by.
std::vector<Suggestion> suggestLinks(const std::string& beginning);

}  // namespace lumenquest::app
