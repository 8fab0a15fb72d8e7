#pragma once

#include <memory>
#include <optional>

#include "platform/ns_formatter.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::platform {

/// The one place that builds formatters for display and for machine-readable timestamps, so that
/// every text follows the user's 12/24-hour clock and date order alike.
class Formatters {
 public:
  Formatters();

  /// The process-wide instance.
  static Formatters& sharedInstance();

  NSDateFormatter& shortTimeFormatter() { return *shortTimeFormatter_; }
  NSDateFormatter& shortDateFormatter() { return *shortDateFormatter_; }
  NSDateFormatter& shortDateTimeFormatter() { return *shortDateTimeFormatter_; }

  /// Degrees with six decimals, and parts of degrees with up to two. Without grouping; halves go
  /// up.
  NSNumberFormatter& degreesFormatter() { return *degreesFormatter_; }
  NSNumberFormatter& sexagesimalFormatter() { return *sexagesimalFormatter_; }
  /// Degrees with six decimals after a point, in every locale.
  NSNumberFormatter& plainDegreesFormatter() { return *plainDegreesFormatter_; }

  /// Sets the zone of the three for dates.
  void setTimeZone(const NSTimeZone& zone);
  /// The zone they are in, which is the device's until another one is set.
  NSTimeZone timeZone() const { return timeZone_ ? *timeZone_ : NSTimeZone::localTimeZone(); }

  // New formatters on every call.

  /// 2000-01-01T12:00:00Z
  static std::unique_ptr<NSDateFormatter> RFC3339DateFormatter();
  /// With an offset in place of the Z; starts in GMT.
  static std::unique_ptr<NSDateFormatter> RFC3339DateFormatterWithSpecificTimeZone();
  /// Plain decimal numbers with a point, up to 20 decimals, no grouping.
  static std::unique_ptr<NSNumberFormatter> enUSPosixNumberFormatter();
  /// Day and abbreviated month.
  static std::unique_ptr<NSDateFormatter> dateFormatterWithMediumMonthAndNoYear();
  /// Day, abbreviated month and time, in the user's 12/24-hour choice.
  static std::unique_ptr<NSDateFormatter> dateTimeFormatterWithMediumMonthAndNoYear();

 private:
  std::optional<NSTimeZone> timeZone_;
  std::unique_ptr<NSDateFormatter> shortTimeFormatter_;
  std::unique_ptr<NSDateFormatter> shortDateFormatter_;
  std::unique_ptr<NSDateFormatter> shortDateTimeFormatter_;
  std::unique_ptr<NSNumberFormatter> degreesFormatter_;
  std::unique_ptr<NSNumberFormatter> sexagesimalFormatter_;
  std::unique_ptr<NSNumberFormatter> plainDegreesFormatter_;
};

}  // namespace lumenquest::platform
