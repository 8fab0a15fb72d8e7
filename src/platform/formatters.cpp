#include "platform/formatters.h"

#include <string>

#include "platform/services.h"

namespace lumenquest::platform {

namespace {

constexpr const char* kCurrentLocale = "";
constexpr const char* kPosixLocale = "en_US_POSIX";

std::unique_ptr<NSDateFormatter> NewFormatter(const char* locale, NSDateFormatterStyle dateStyle,
                                              NSDateFormatterStyle timeStyle) {
  return Services::current().formatters().dateFormatter(locale, dateStyle, timeStyle);
}

std::unique_ptr<NSDateFormatter> NewFormatter(const char* locale, const std::string& pattern) {
  auto formatter =
      NewFormatter(locale, NSDateFormatterStyle::shortStyle, NSDateFormatterStyle::shortStyle);
  formatter->setDateFormat(pattern);
  return formatter;
}

std::unique_ptr<NSDateFormatter> NewTimestampFormatter(const std::string& pattern) {
  auto formatter = NewFormatter(kPosixLocale, pattern);
  formatter->setTimeZone(NSTimeZone::gmt());
  return formatter;
}

std::string PatternForTemplate(const std::string& pattern) {
  return Services::current().formatters().dateFormatFromTemplate(pattern);
}

std::unique_ptr<NSNumberFormatter> NewCoordinateFormatter(const char* locale, int leastDecimals,
                                                          int mostDecimals) {
  NumberStyle style;
  style.minimumFractionDigits = leastDecimals;
  style.maximumFractionDigits = mostDecimals;
  style.usesGroupingSeparator = false;
  style.roundsHalfUp = true;
  return Services::current().formatters().numberFormatter(locale, style);
}

/// Locales that write the year in full here get two digits, as the others have them.
void ForceTwoDigitYear(NSDateFormatter& formatter) {
  const std::string pattern = formatter.dateFormat();
  if (pattern == "dd/MM/y") {
    formatter.setDateFormat("dd/MM/yy");
  } else if (pattern == "MM/dd/y") {
    formatter.setDateFormat("MM/dd/yy");
  }
}

}  // namespace

Formatters::Formatters()
    : shortTimeFormatter_(NewFormatter(kCurrentLocale, NSDateFormatterStyle::noStyle,
                                       NSDateFormatterStyle::shortStyle)),
      shortDateFormatter_(NewFormatter(kCurrentLocale, NSDateFormatterStyle::shortStyle,
                                       NSDateFormatterStyle::noStyle)),
      shortDateTimeFormatter_(NewFormatter(kCurrentLocale, NSDateFormatterStyle::shortStyle,
                                           NSDateFormatterStyle::shortStyle)),
      degreesFormatter_(NewCoordinateFormatter(kCurrentLocale, 6, 6)),
      sexagesimalFormatter_(NewCoordinateFormatter(kCurrentLocale, 0, 2)),
      plainDegreesFormatter_(NewCoordinateFormatter(kPosixLocale, 6, 6)) {
  ForceTwoDigitYear(*shortDateFormatter_);
}

Formatters& Formatters::sharedInstance() { return Services::current().sharedFormatters(); }

void Formatters::setTimeZone(const NSTimeZone& zone) {
  timeZone_ = zone;
  shortTimeFormatter_->setTimeZone(zone);
  shortDateFormatter_->setTimeZone(zone);
  shortDateTimeFormatter_->setTimeZone(zone);
}

std::unique_ptr<NSDateFormatter> Formatters::RFC3339DateFormatter() {
  return NewTimestampFormatter("yyyy'-'MM'-'dd'T'HH':'mm':'ss'Z'");
}

std::unique_ptr<NSDateFormatter> Formatters::RFC3339DateFormatterWithSpecificTimeZone() {
  return NewTimestampFormatter("yyyy-MM-dd'T'HH:mm:ssZZZZZ");
}

std::unique_ptr<NSNumberFormatter> Formatters::enUSPosixNumberFormatter() {
  NumberStyle style;
  style.minimumIntegerDigits = 1;
  style.maximumFractionDigits = 20;
  style.usesGroupingSeparator = false;
  return Services::current().formatters().numberFormatter(kPosixLocale, style);
}

std::unique_ptr<NSDateFormatter> Formatters::dateFormatterWithMediumMonthAndNoYear() {
  return NewFormatter(kCurrentLocale, PatternForTemplate("dMMM"));
}

std::unique_ptr<NSDateFormatter> Formatters::dateTimeFormatterWithMediumMonthAndNoYear() {
  const bool twelveHourClock = PatternForTemplate("j").find('a') != std::string::npos;
  return NewFormatter(kCurrentLocale, PatternForTemplate(twelveHourClock ? "dMMMhmm" : "dMMMHmm"));
}

}  // namespace lumenquest::platform
