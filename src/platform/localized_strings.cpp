#include "platform/localized_strings.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "platform/services.h"

namespace lumenquest::platform {

namespace {

/// A parsed placeholder, without its leading percent sign.
struct Placeholder {
  /// Place of the argument from 1, or 0 for the next one in order.
  std::size_t position = 0;
  int decimals = 6;
  char conversion = '\0';
  /// Characters after the percent sign.
  std::size_t length = 0;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Reads at most two digits, enough for a position and for the decimals of a double.
std::size_t ReadNumber(std::string_view text, std::size_t from, int* number) {
  std::size_t i = from;
  *number = 0;
  while (i < text.size() && i < from + 2 && IsDigit(text[i])) {
    *number = *number * 10 + (text[i++] - '0');
  }
  return i;
}

/// Nothing when `text`, which follows a percent sign, starts no placeholder.
std::optional<Placeholder> ParsePlaceholder(std::string_view text) {
  Placeholder placeholder;
  std::size_t i = 0;
  int number = 0;
  const std::size_t afterNumber = ReadNumber(text, 0, &number);
  if (afterNumber > 0 && afterNumber < text.size() && text[afterNumber] == '$' && number > 0) {
    placeholder.position = static_cast<std::size_t>(number);
    i = afterNumber + 1;
  }
  if (i < text.size() && text[i] == '.') i = ReadNumber(text, i + 1, &placeholder.decimals);
  if (i >= text.size()) return std::nullopt;
  placeholder.conversion = text[i];
  placeholder.length = i + 1;
  const bool known = placeholder.conversion == '@' || placeholder.conversion == 'd' ||
                     placeholder.conversion == 'f';
  return known ? std::optional(placeholder) : std::nullopt;
}

std::string Decimal(double number, int decimals) {
  // The longest: the largest double has 309 digits before the point.
  std::array<char, 512> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                    std::chars_format::fixed, decimals);
  return std::string(buffer.data(), result.ptr);
}

std::string Text(const Placeholder& placeholder, const FormatArgument& argument) {
  const auto& value = argument.value();
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  const auto* integer = std::get_if<std::int64_t>(&value);
  const double number = integer ? static_cast<double>(*integer) : std::get<double>(value);
  if (placeholder.conversion == 'f') return Decimal(number, placeholder.decimals);
  if (integer) return std::to_string(*integer);
  if (placeholder.conversion == 'd') return Decimal(std::trunc(number), 0);
  std::array<char, 64> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return std::string(buffer.data(), result.ptr);
}

}  // namespace

std::string localizedString(const std::string& key, const char* table) {
  return Services::current().strings().localizedString(key, table);
}

std::string stringWithFormat(std::string_view format,
                             std::initializer_list<FormatArgument> arguments) {
  return stringWithFormat(format,
                          std::span<const FormatArgument>(arguments.begin(), arguments.size()));
}

std::string stringWithFormat(std::string_view format, std::span<const FormatArgument> arguments) {
  std::string result;
  std::size_t nextInOrder = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      result += format[i];
      continue;
    }
    const std::string_view rest = format.substr(i + 1);
    if (!rest.empty() && rest.front() == '%') {
      result += '%';
      ++i;
      continue;
    }
    const std::optional<Placeholder> placeholder = ParsePlaceholder(rest);
    if (!placeholder) {
      result += '%';
      continue;
    }
    const std::size_t at = placeholder->position > 0 ? placeholder->position - 1 : nextInOrder++;
    if (at < arguments.size()) result += Text(*placeholder, arguments[at]);
    i += placeholder->length;
  }
  return result;
}

}  // namespace lumenquest::platform
