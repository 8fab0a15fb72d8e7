#include "app/table.h"

#include <algorithm>
#include <cstddef>

#include "adapters/printable_text.h"

namespace lumenquest::app {

std::string Table::Text() const {
  constexpr std::size_t kGap = 3;
  std::vector<std::size_t> widths;
  for (const auto& cells : rows_) {
    widths.resize(std::max(widths.size(), cells.size()));
    for (std::size_t i = 0; i < cells.size(); ++i) {
      widths[i] = std::max(widths[i], adapters::columnsOf(cells[i]));
    }
  }
  std::string text;
  for (const auto& cells : rows_) {
    // Blanks wait for a cell that needs them, so that no line ends with any.
    std::size_t blanks = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (!cells[i].empty()) {
        text += std::string(blanks, ' ') + cells[i];
        blanks = 0;
      }
      blanks += widths[i] + kGap - adapters::columnsOf(cells[i]);
    }
    text += '\n';
  }
  return text;
}

}  // namespace lumenquest::app
