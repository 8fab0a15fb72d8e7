#pragma once

#include <optional>

#include "widgets/intents/raw_value.h"

namespace lumenquest::widgets {

/// The choice of a theme in a widget's configuration. fromRawValue<Enum>() reads a stored one.
enum class Enum : int {
  unknown = 0,  ///< not set
  system = 1,   ///< follow the system
  dark = 2,
  light = 3,
};
constexpr Enum lastValue(Enum) { return Enum::light; }

/// What became of a choice that somebody made by voice or in a shortcut.
class EnumResolutionResult {
 public:
  enum class Kind { success, confirmationRequired };

  /// The choice stands.
  static constexpr EnumResolutionResult successWithResolvedEnum(Enum resolvedEnum) {
    return {Kind::success, resolvedEnum};
  }
  /// The person is asked whether this was meant; absent, whether to go on at all.
  static constexpr EnumResolutionResult confirmationRequiredWithEnumToConfirm(
      std::optional<Enum> enumToConfirm) {
    return {Kind::confirmationRequired, enumToConfirm};
  }

  constexpr Kind kind() const { return kind_; }
  constexpr std::optional<Enum> value() const { return value_; }

  bool operator==(const EnumResolutionResult&) const = default;

 private:
  constexpr EnumResolutionResult(Kind kind, std::optional<Enum> value)
      : kind_(kind), value_(value) {}

  Kind kind_;
  std::optional<Enum> value_;
};

}  // namespace lumenquest::widgets
