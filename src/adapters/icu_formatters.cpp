#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>

#include <cmath>
#include <utility>

#include "adapters/icu_services.h"
#include "icu_strings.h"
#include "icu_time_zone.h"
#include "platform/assertion.h"

namespace lumenquest::adapters {

namespace {

using platform::NSDate;
using platform::NSDateFormatterStyle;
using platform::NSTimeZone;

icu::DateFormat::EStyle IcuStyle(NSDateFormatterStyle style) {
  switch (style) {
    case NSDateFormatterStyle::shortStyle:
      return icu::DateFormat::kShort;
    case NSDateFormatterStyle::mediumStyle:
      return icu::DateFormat::kMedium;
    case NSDateFormatterStyle::noStyle:
      break;
  }
  return icu::DateFormat::kNone;
}

/// The locale's pattern for the fields of a template.
std::string BestPattern(const std::string& locale, const std::string& fields) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::DateTimePatternGenerator> generator(
      icu::DateTimePatternGenerator::createInstance(icu::Locale(locale.c_str()), status));
  LUMENQUEST_ASSERT(U_SUCCESS(status));
  const icu::UnicodeString best = generator->getBestPattern(FromUtf8(fields), status);
  LUMENQUEST_ASSERT(U_SUCCESS(status));
  return ToUtf8(best);
}

class IcuDateFormatter final : public platform::NSDateFormatter {
 public:
  IcuDateFormatter(std::string locale, NSTimeZone zone, NSDateFormatterStyle dateStyle,
                   NSDateFormatterStyle timeStyle)
      : locale_(std::move(locale)),
        zone_(std::move(zone)),
        dateStyle_(dateStyle),
        timeStyle_(timeStyle) {
    Rebuild();
  }

  std::string stringFromDate(NSDate date) override {
    UErrorCode status = U_ZERO_ERROR;
    calendar_->setTime(date.timeIntervalSince1970() * 1000.0, status);
    LUMENQUEST_ASSERT(U_SUCCESS(status));
    icu::UnicodeString text;
    icu::FieldPosition anyField(icu::FieldPosition::DONT_CARE);
    format_->format(*calendar_, text, anyField);
    return ToUtf8(text);
  }

  void setTimeZone(const NSTimeZone& zone) override {
    if (zone == zone_) return;
    zone_ = zone;
    AdoptZone();
  }

  NSDateFormatterStyle timeStyle() const override { return timeStyle_; }

  void setTimeStyle(NSDateFormatterStyle style) override {
    timeStyle_ = style;
    Rebuild();
  }

  std::string dateFormat() const override {
    icu::UnicodeString pattern;
    return ToUtf8(format_->toPattern(pattern));
  }

  void setDateFormat(const std::string& pattern) override {
    format_->applyPattern(FromUtf8(pattern));
  }

  std::string AMSymbol() const override { return DayPeriod(0); }
  std::string PMSymbol() const override { return DayPeriod(1); }

 private:
  void Rebuild() {
    format_ = NewFormat(dateStyle_, timeStyle_);
    ApplyHourCycle();
    AdoptZone();
  }

  std::unique_ptr<icu::SimpleDateFormat> NewFormat(NSDateFormatterStyle dateStyle,
                                                   NSDateFormatterStyle timeStyle) const {
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
        IcuStyle(dateStyle), IcuStyle(timeStyle), icu::Locale(locale_.c_str())));
    auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format.release());
    LUMENQUEST_ASSERT(simple != nullptr);
    return std::unique_ptr<icu::SimpleDateFormat>(simple);
  }

  /// The styles' patterns know nothing of a 12- or 24-hour clock that the locale asks for
  /// ("en-US-u-hc-h23"); only the pattern generator does.
  void ApplyHourCycle() {
    UErrorCode status = U_ZERO_ERROR;
    const std::string hours =
        icu::Locale(locale_.c_str()).getKeywordValue<std::string>("hours", status);
    if (hours.empty() || timeStyle_ == NSDateFormatterStyle::noStyle) return;
    icu::UnicodeString stylePattern;
    NewFormat(NSDateFormatterStyle::noStyle, timeStyle_)->toPattern(stylePattern);
    icu::UnicodeString pattern;
    format_->toPattern(pattern);
    const bool withSeconds = timeStyle_ == NSDateFormatterStyle::mediumStyle;
    pattern.findAndReplace(stylePattern,
                           FromUtf8(BestPattern(locale_, withSeconds ? "jmmss" : "jmm")));
    format_->applyPattern(pattern);
  }

  void AdoptZone() {
    format_->adoptTimeZone(makeIcuTimeZone(zone_).release());
    calendar_.reset(format_->getCalendar()->clone());
  }

  std::string DayPeriod(int32_t which) const {
    int32_t count = 0;
    const icu::UnicodeString* symbols = format_->getDateFormatSymbols()->getAmPmStrings(count);
    return which < count ? ToUtf8(symbols[which]) : std::string();
  }

  std::string locale_;
  NSTimeZone zone_;
  NSDateFormatterStyle dateStyle_;
  NSDateFormatterStyle timeStyle_;
  std::unique_ptr<icu::SimpleDateFormat> format_;
  /// The format's own would be cloned for every text.
  std::unique_ptr<icu::Calendar> calendar_;
};

class IcuNumberFormatter final : public platform::NSNumberFormatter {
 public:
  IcuNumberFormatter(const std::string& locale, const platform::NumberStyle& style) {
    UErrorCode status = U_ZERO_ERROR;
    format_.reset(icu::NumberFormat::createInstance(icu::Locale(locale.c_str()), status));
    LUMENQUEST_ASSERT(U_SUCCESS(status));
    format_->setMinimumIntegerDigits(style.minimumIntegerDigits);
    format_->setMinimumFractionDigits(style.minimumFractionDigits);
    format_->setMaximumFractionDigits(style.maximumFractionDigits);
    format_->setGroupingUsed(style.usesGroupingSeparator);
    if (style.roundsHalfUp) format_->setRoundingMode(icu::NumberFormat::kRoundHalfUp);
  }

  std::string stringFromNumber(double number) override {
    icu::UnicodeString text;
    format_->format(number, text);
    return ToUtf8(text);
  }

 private:
  std::unique_ptr<icu::NumberFormat> format_;
};

}  // namespace

IcuFormatterService::IcuFormatterService(std::string locale,
                                         std::shared_ptr<platform::TimeZoneService> timeZones)
    : locale_(std::move(locale)), timeZones_(std::move(timeZones)) {}

std::unique_ptr<platform::NSDateFormatter> IcuFormatterService::dateFormatter(
    const std::string& locale, NSDateFormatterStyle dateStyle, NSDateFormatterStyle timeStyle) {
  return std::make_unique<IcuDateFormatter>(locale.empty() ? locale_ : locale,
                                            timeZones_->localTimeZone(), dateStyle, timeStyle);
}

std::unique_ptr<platform::NSNumberFormatter> IcuFormatterService::numberFormatter(
    const std::string& locale, const platform::NumberStyle& style) {
  return std::make_unique<IcuNumberFormatter>(locale.empty() ? locale_ : locale, style);
}

std::string IcuFormatterService::dateFormatFromTemplate(const std::string& pattern) {
  return BestPattern(locale_, pattern);
}

}  // namespace lumenquest::adapters
