#include "app/option_values.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "adapters/icu_services.h"
#include "adapters/printable_text.h"
#include "adapters/rfc3339.h"
#include "platform/localized_strings.h"

namespace lumenquest::app {

namespace {

using platform::stringWithFormat;

/// Years for which the series and the calendar give something.
constexpr int kFirstYear = -3000;
constexpr int kLastYear = 5000;

double ParseDegrees(const char* option, const OptionText& text, double bound,
                    const char* expectationKey) {
  if (!text) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {option, appText(expectationKey)}));
  }
  const std::optional<double> degrees = parseNumber(*text);
  // Written so that NaN is refused too.
  if (!degrees || !(std::fabs(*degrees) <= bound)) throwBadOption(option, *text, expectationKey);
  return *degrees;
}

}  // namespace

std::optional<double> parseNumber(const std::string& given) {
  std::string_view text = given;
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  double number = 0.0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

std::string appText(const char* key) { return platform::localizedString(key, platform::kTableApp); }

void throwBadOption(const char* option, const std::string& value, const char* expectationKey) {
  throwBadOptionExpecting(option, value, appText(expectationKey));
}

void throwBadOptionExpecting(const char* option, const std::string& value,
                             const std::string& expectation) {
  throw UsageError(stringWithFormat(appText("error_bad_option"),
                                    {option, adapters::printableText(value), expectation}));
}

platform::CLLocation parseLocation(const OptionText& latitude, const OptionText& longitude) {
  platform::CLLocation location;
  location.coordinate.latitude = ParseDegrees("--latitude", latitude, 90.0, "expect_latitude");
  location.coordinate.longitude = ParseDegrees("--longitude", longitude, 180.0, "expect_longitude");
  return location;
}

platform::CLLocation parseCoordinate(const char* option, const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma != std::string::npos) {
    std::size_t second = comma + 1;
    while (second < text.size() && text[second] == ' ') ++second;
    const auto latitude = parseNumber(text.substr(0, comma));
    const auto longitude = parseNumber(text.substr(second));
    if (latitude && longitude) {
      const platform::CLLocation location{{*latitude, *longitude}};
      if (location.coordinate.isValid()) return location;
    }
  }
  throwBadOption(option, text, "expect_coordinate");
}

platform::NSTimeZone parseTimeZone(const OptionText& text) {
  if (text) {
    const auto zone = platform::NSTimeZone::timeZoneWithName(*text);
    if (!zone) throwBadOption("--time-zone", *text, "expect_time_zone");
    return *zone;
  }
  const platform::NSTimeZone device = platform::NSTimeZone::localTimeZone();
  if (!platform::NSTimeZone::timeZoneWithName(device.name)) {
    throw UsageError(stringWithFormat(appText("error_device_time_zone"),
                                      {adapters::printableText(device.name)}));
  }
  return device;
}

platform::NSDate parseInstant(const OptionText& text) {
  if (!text) return platform::NSDate::date();
  const std::optional<platform::NSDate> instant = adapters::parseRfc3339(*text);
  if (!instant) throwBadOption("--at", *text, "expect_at");
  const int year = adapters::rfc3339Year(*instant);
  if (year < kFirstYear || year > kLastYear) throwBadOption("--at", *text, "expect_at");
  return *instant;
}

std::string checkedLocale(const OptionText& tag) {
  if (!tag) return adapters::environmentLocale();
  const std::optional<std::string> known = adapters::localeIdentifier(*tag);
  if (!known) throwBadOption("--locale", *tag, "expect_locale");
  return *known;
}

OutputFormat parseFormat(const OptionText& text) {
  if (!text || *text == "text") return OutputFormat::text;
  if (*text == "json") return OutputFormat::json;
  throwBadOption("--format", *text, "expect_format");
}

}  // namespace lumenquest::app
