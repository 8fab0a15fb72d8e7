#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "platform/core_location.h"
#include "platform/ns_date.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::app {

/// Wrong use of the command; the message is one line in the user's language.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What was given for an option; nothing when it was not.
using OptionText = std::optional<std::string>;

enum class OutputFormat { text, json };

// Checked values of options. Each throws UsageError naming option, value and what would be right.

platform::CLLocation parseLocation(const OptionText& latitude, const OptionText& longitude);
/// "46.36,14.09"
platform::CLLocation parseCoordinate(const char* option, const std::string& text);
/// Nothing given: the device's zone.
platform::NSTimeZone parseTimeZone(const OptionText& text);
/// Nothing given: now.
platform::NSDate parseInstant(const OptionText& text);
/// The identifier of a locale; nothing given: the environment's.
std::string checkedLocale(const OptionText& tag);
OutputFormat parseFormat(const OptionText& text);

/// A number with a decimal point, the whole text; nothing when it is none.
std::optional<double> parseNumber(const std::string& text);

/// Throws the error of an option's wrong value. `expectationKey`: key of what would be right.
[[noreturn]] void throwBadOption(const char* option, const std::string& value,
                                 const char* expectationKey);

/// The same where what would be right is no text of its own, such as a list.
[[noreturn]] void throwBadOptionExpecting(const char* option, const std::string& value,
                                          const std::string& expectation);

/// The text of a key of the command's table.
std::string appText(const char* key);

}  // namespace lumenquest::app
