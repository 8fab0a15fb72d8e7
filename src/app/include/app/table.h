#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lumenquest::app {

/// Rows of cells in columns, mostly a label and a value, in groups set apart by a blank line.
class Table {
 public:
  void Row(std::string label, std::string value) {
    Row(std::vector<std::string>{std::move(label), std::move(value)});
  }
  void Row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  void Gap() { rows_.emplace_back(); }

  /// Each column but the last as wide as its widest cell.
  std::string Text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace lumenquest::app
