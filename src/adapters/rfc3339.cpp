#include "adapters/rfc3339.h"

#include <absl/time/civil_time.h>
#include <absl/time/time.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace lumenquest::adapters {

namespace {

using platform::NSDate;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes a run of at least `least` digits off the front; false when there are fewer.
bool TakeDigits(std::string_view& text, std::size_t least, std::size_t most) {
  std::size_t count = 0;
  while (count < text.size() && count < most && IsDigit(text[count])) ++count;
  if (count < least) return false;
  text.remove_prefix(count);
  return true;
}

bool Take(std::string_view& text, char c, char alternative) {
  if (text.empty() || (text.front() != c && text.front() != alternative)) return false;
  text.remove_prefix(1);
  return true;
}

/// The parser below also takes one-digit months, blanks and words such as "infinite-future".
bool HasTimestampShape(std::string_view text) {
  const bool hasSign = Take(text, '-', '+');
  if (!TakeDigits(text, 4, hasSign ? 6 : 4)) return false;
  for (const char separator : {'-', '-'}) {
    if (!Take(text, separator, separator) || !TakeDigits(text, 2, 2)) return false;
  }
  if (!Take(text, 'T', 't') || !TakeDigits(text, 2, 2)) return false;
  for (const char separator : {':', ':'}) {
    if (!Take(text, separator, separator) || !TakeDigits(text, 2, 2)) return false;
  }
  if (Take(text, '.', '.') && !TakeDigits(text, 1, text.size())) return false;
  if (Take(text, 'Z', 'z')) return text.empty();
  return Take(text, '+', '-') && TakeDigits(text, 2, 2) && Take(text, ':', ':') &&
         TakeDigits(text, 2, 2) && text.empty();
}

/// The first and the last second that the parser takes: years of six digits.
constexpr double kFirst = -31619087596800.0;
constexpr double kLast = 31494784780799.0;

absl::Time ToTime(NSDate date) {
  const double seconds = std::clamp(date.timeIntervalSince1970(), kFirst, kLast);
  const double whole = std::floor(seconds);
  return absl::FromUnixSeconds(static_cast<int64_t>(whole)) +
         absl::Microseconds(std::llround((seconds - whole) * 1e6));
}

}  // namespace

std::optional<NSDate> parseRfc3339(const std::string& text) {
  if (!HasTimestampShape(text)) return std::nullopt;
  // A plus sign before the year is ours; the library knows the minus sign only.
  const std::string unsignedText = text.front() == '+' ? text.substr(1) : text;
  absl::Time time;
  if (!absl::ParseTime(absl::RFC3339_full, unsignedText, &time, nullptr)) return std::nullopt;
  // Whole seconds apart: converted in one piece, a far instant would come out a hair too early.
  const int64_t seconds = absl::ToUnixSeconds(time);
  const double part = absl::ToDoubleSeconds(time - absl::FromUnixSeconds(seconds));
  return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds) + part);
}

std::string formatRfc3339(NSDate date) {
  const absl::Time time = ToTime(date);
  const int year = rfc3339Year(date);
  std::string digits = std::to_string(std::abs(year));
  if (digits.size() < 4) digits.insert(0, 4 - digits.size(), '0');
  const char* sign = year < 0 ? "-" : (year > 9999 ? "+" : "");
  return sign + digits + absl::FormatTime("-%m-%dT%H:%M:%E*SZ", time, absl::UTCTimeZone());
}

int rfc3339Year(NSDate date) {
  return static_cast<int>(absl::ToCivilYear(ToTime(date), absl::UTCTimeZone()).year());
}

}  // namespace lumenquest::adapters
