#include "app/table.h"

#include <algorithm>
#include <cstddef>

namespace lumenquest::app {

namespace {

/// Code points, which is columns for the words of our tables.
std::size_t Width(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0u) != 0x80u;
  }));
}

}  // namespace

std::string Table::Text() const {
  std::size_t width = 0;
  for (const auto& [label, value] : rows_) width = std::max(width, Width(label));
  std::string text;
  for (const auto& [label, value] : rows_) {
    if (!value.empty()) text += label + std::string(width - Width(label) + 3, ' ') + value;
    text += '\n';
  }
  return text;
}

}  // namespace lumenquest::app
