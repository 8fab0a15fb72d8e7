#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/services.h"

namespace lumenquest::adapters {

/// The identifier of the locale that a language tag ("de-AT", also as "de_AT" or "de_AT.UTF-8")
/// names, or nothing when ICU knows no such language, script or region.
std::optional<std::string> localeIdentifier(const std::string& tag);

/// The locale of the environment: the first of LC_ALL, LC_MESSAGES and LANG that is set, where ICU
/// knows it, else the plain English one.
std::string environmentLocale();

/// The language tag (BCP 47) of a locale's identifier: "de-AT" for "de_AT" or "de_AT@euro". Of
/// language, script and region alone.
std::string languageTag(const std::string& locale);

/// Whether the locale's script runs from right to left.
bool isRightToLeft(const std::string& locale);

/// Calendars in the zones of the machine's database, with the first weekday of a locale.
class IcuCalendarService final : public platform::CalendarService {
 public:
  IcuCalendarService(std::string locale, std::shared_ptr<platform::TimeZoneService> timeZones);
  std::unique_ptr<platform::NSCalendar> currentCalendar() override;
  std::unique_ptr<platform::NSCalendar> gregorianCalendar(
      const platform::NSTimeZone& zone) override;

 private:
  std::string locale_;
  std::shared_ptr<platform::TimeZoneService> timeZones_;
};

/// Formatters with the patterns, names and digits of a locale.
class IcuFormatterService final : public platform::FormatterService {
 public:
  IcuFormatterService(std::string locale, std::shared_ptr<platform::TimeZoneService> timeZones);
  std::unique_ptr<platform::NSDateFormatter> dateFormatter(
      const std::string& locale, platform::NSDateFormatterStyle dateStyle,
      platform::NSDateFormatterStyle timeStyle) override;
  std::unique_ptr<platform::NSNumberFormatter> numberFormatter(
      const std::string& locale, const platform::NumberStyle& style) override;
  std::string dateFormatFromTemplate(const std::string& pattern) override;

 private:
  std::string locale_;
  std::shared_ptr<platform::TimeZoneService> timeZones_;
};

}  // namespace lumenquest::adapters
