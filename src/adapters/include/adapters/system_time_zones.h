#pragma once

#include <mutex>
#include <string>

#include "platform/services.h"

namespace lumenquest::adapters {

/// The zones of the machine's time-zone database, with the rules of each zone file's footer applied
/// to all years after its last listed change.
class SystemTimeZones final : public platform::TimeZoneService {
 public:
  platform::NSTimeZone localTimeZone() override;
  bool isKnown(const std::string& name) override;

 private:
  std::once_flag localTimeZoneOnce_;
  platform::NSTimeZone localTimeZone_;
};

}  // namespace lumenquest::adapters
