#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace lumenquest::platform {

/// Tables of localised texts.
inline constexpr const char* kTableEphemeris = "Ephemeris";
inline constexpr const char* kTableCommon = "Common";
inline constexpr const char* kTableApp = "App";

/// The text of a key in the user's language, or the empty text when no language has it.
std::string localizedString(const std::string& key, const char* table);

/// One argument of stringWithFormat(); an absent text counts as the empty one.
class FormatArgument {
 public:
  FormatArgument(const char* text) : value_(std::string(text)) {}
  FormatArgument(std::string text) : value_(std::move(text)) {}
  FormatArgument(std::optional<std::string> text)
      : value_(text ? std::move(*text) : std::string()) {}
  FormatArgument(int number) : value_(std::int64_t{number}) {}
  FormatArgument(std::int64_t number) : value_(number) {}
  FormatArgument(double number) : value_(number) {}

  const std::variant<std::string, std::int64_t, double>& value() const { return value_; }

 private:
  std::variant<std::string, std::int64_t, double> value_;
};

/// Fills the placeholders of a format: %@ (text), %d (integer), %f and %.1f (number with 6 or the
/// given number of decimals, always with a point), %% (a percent sign), in order or by position
/// (%2$@). A placeholder without an argument becomes empty; what is no placeholder stays.
std::string stringWithFormat(std::string_view format, std::span<const FormatArgument> arguments);
std::string stringWithFormat(std::string_view format,
                             std::initializer_list<FormatArgument> arguments);

}  // namespace lumenquest::platform
