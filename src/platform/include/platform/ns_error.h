#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace lumenquest::platform {

/// What went wrong, for people and for the log.
struct NSError {
  /// Who speaks: "Store", "SQLite", "Model".
  std::string domain;
  /// Unique within the domain.
  int code = 0;
  /// One sentence that names the thing and what would be right.
  std::string localizedDescription;
  /// Particulars for the log.
  std::map<std::string, std::string> userInfo;

  /// The error, and its particulars, as the log shows them.
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
