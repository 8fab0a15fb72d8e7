#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumenquest::adapters {

/// The words of a text as names are searched by: letters and digits without case, accents, width
/// and ligatures ("Łódź" and "LODZ" are both "lodz"; "ø" is "o", "ß" is "ss"). Everything else
/// separates words. UTF-8 in and out; what is no UTF-8 separates as well.
std::vector<std::string> searchWords(std::string_view text);

/// The words, with one space between them.
std::string joinedWords(const std::vector<std::string>& words, std::size_t begin = 0,
                        std::size_t end = std::string::npos);

/// The ways in which a name is searched: its words; those of the spelling without umlauts where it
/// has some ("Gruenau", "Aarhus"); and without apostrophes ("Xian", "LAquila").
std::vector<std::string> searchKeys(const std::string& name);

}  // namespace lumenquest::adapters
