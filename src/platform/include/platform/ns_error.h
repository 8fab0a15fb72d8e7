#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumenquest::platform {

/// What went wrong, for people and for the log. Its sentence is looked up when it is shown: whoever
/// meets the failure, be it a process without a screen, needs no language.
struct NSError {
  /// Who speaks: "Context", "Store", "SQLite", "File", "Model".
  std::string domain;
  /// Unique within the domain.
  int code = 0;
  /// Of the sentence in the table "Common" that names the thing and what would be right.
  std::string key;
  /// What stands in the sentence's placeholders.
  std::vector<std::string> arguments{};
  /// A library's own words, in English, or nothing.
  std::string detail{};
  /// Particulars for the log.
  std::map<std::string, std::string> userInfo{};

  /// The sentence in the user's language, and the detail in parentheses.
  std::string localizedDescription() const;
  /// The error in no language, and its particulars, as the log shows them.
  std::string description() const;
  std::string userInfoDescription() const;
};

/// A value, or the error that stood in its way; with an error the value is empty.
template <typename Value>
struct Outcome {
  Outcome(Value result) : value(std::move(result)) {}
  Outcome(NSError failure) : error(std::move(failure)) {}

  Value value{};
  std::optional<NSError> error;
};

}  // namespace lumenquest::platform
