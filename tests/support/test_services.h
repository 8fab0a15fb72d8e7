#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/clocks.h"
#include "adapters/icu_services.h"
#include "adapters/rfc3339.h"
#include "adapters/system_time_zones.h"
#include "platform/services.h"

namespace lumenquest::testing {

/// The machine's zones, with a device zone of the test's choice.
class DeviceZone final : public platform::TimeZoneService {
 public:
  explicit DeviceZone(std::string name) : name_(std::move(name)) {}
  platform::NSTimeZone localTimeZone() override { return {name_}; }
  bool isKnown(const std::string& name) override { return zones_.isKnown(name); }

 private:
  std::string name_;
  adapters::SystemTimeZones zones_;
};

/// Every key's text is the key in angle brackets, so that a test reads which words were chosen; the
/// formats among them are real ones.
class KeyStrings final : public platform::StringTables {
 public:
  std::string localizedString(const std::string& key, const std::string&) override {
    if (key == "gc_not_visible_until") return "%@, %@";
    return key == "moon_phase_percentage" ? "(%.1f%%, %@)" : "<" + key + ">";
  }
};

class CapturedLog final : public platform::Log {
 public:
  void write(const std::string& message) override { messages.push_back(message); }
  std::vector<std::string> messages;
};

inline platform::NSDate Instant(const std::string& rfc3339) {
  return adapters::parseRfc3339(rfc3339).value();
}

inline platform::NSDate Later(platform::NSDate date, double seconds) {
  return platform::NSDate(date.timeIntervalSinceReferenceDate() + seconds);
}

/// Services for one test: real calendars and formatters, words as keys, and a clock that stands
/// unless the test gives one.
struct TestServices {
  explicit TestServices(const std::string& now, const std::string& zone = "UTC",
                        const std::string& locale = "en_US",
                        platform::Services::Adapters services = {}) {
    if (!services.clock) services.clock = std::make_shared<adapters::FixedClock>(Instant(now));
    services.timeZones = std::make_shared<DeviceZone>(zone);
    services.calendars = std::make_shared<adapters::IcuCalendarService>(locale, services.timeZones);
    services.formatters =
        std::make_shared<adapters::IcuFormatterService>(locale, services.timeZones);
    services.strings = std::make_shared<KeyStrings>();
    services.settings = settings;
    services.privateSettings = privateSettings;
    services.log = log;
    platform::Services::install(std::move(services));
  }

  std::shared_ptr<platform::InMemoryUserDefaults> settings =
      std::make_shared<platform::InMemoryUserDefaults>();
  std::shared_ptr<platform::InMemoryUserDefaults> privateSettings =
      std::make_shared<platform::InMemoryUserDefaults>();
  std::shared_ptr<CapturedLog> log = std::make_shared<CapturedLog>();
};

}  // namespace lumenquest::testing
