#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lumenquest::app {

/// Rows of a label and a value, in groups set apart by a blank line.
class Table {
 public:
  void Row(const std::string& label, const std::string& value) { rows_.emplace_back(label, value); }
  void Gap() { rows_.emplace_back(); }

  /// The values aligned behind the longest label.
  std::string Text() const;

 private:
  std::vector<std::pair<std::string, std::string>> rows_;
};

}  // namespace lumenquest::app
