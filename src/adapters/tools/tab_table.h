#pragma once

#include <charconv>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace lumenquest::adapters {

/// The parts of a text; an empty last one is left out.
inline std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

/// The number that the text is; throws std::runtime_error when it is none.
template <typename Number>
Number parsed(const std::string& text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::runtime_error("\"" + text + "\" is no number");
  }
  return number;
}

/// Reads a table with tabs between its fields, a line at a time; what `read` throws gets the line's
/// number.
inline void readTable(const std::string& path,
                      const std::function<void(const std::vector<std::string>& fields)>& read) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read it");
  std::size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    try {
      read(split(line, '\t'));
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
    }
  }
}

}  // namespace lumenquest::adapters
