#pragma once

#include <string>

#include "platform/ns_date.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::platform {

enum class NSDateFormatterStyle { noStyle, shortStyle, mediumStyle };

/// Writes instants as text, in a locale's pattern and a time zone.
class NSDateFormatter {
 public:
  virtual ~NSDateFormatter() = default;

  virtual std::string stringFromDate(NSDate date) = 0;
  virtual void setTimeZone(const NSTimeZone& zone) = 0;
  virtual NSDateFormatterStyle timeStyle() const = 0;
  virtual void setTimeStyle(NSDateFormatterStyle style) = 0;
  /// The pattern, in the letters of Unicode's date-format patterns.
  virtual std::string dateFormat() const = 0;
  virtual void setDateFormat(const std::string& pattern) = 0;
  virtual std::string AMSymbol() const = 0;
  virtual std::string PMSymbol() const = 0;
};

/// How a number formatter writes its digits.
struct NumberStyle {
  int minimumIntegerDigits = 1;
  int minimumFractionDigits = 0;
  int maximumFractionDigits = 3;
  bool usesGroupingSeparator = true;
  /// Otherwise halves go to the even digit.
  bool roundsHalfUp = false;
};

class NSNumberFormatter {
 public:
  virtual ~NSNumberFormatter() = default;

  virtual std::string stringFromNumber(double number) = 0;
};

}  // namespace lumenquest::platform
