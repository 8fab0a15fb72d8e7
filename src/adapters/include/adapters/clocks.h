#pragma once

#include "platform/services.h"

namespace lumenquest::adapters {

/// The machine's clock.
class SystemClock final : public platform::Clock {
 public:
  platform::NSDate now() override;
};

/// A clock that always shows the same instant.
class FixedClock final : public platform::Clock {
 public:
  explicit FixedClock(platform::NSDate instant) : instant_(instant) {}
  platform::NSDate now() override { return instant_; }

 private:
  platform::NSDate instant_;
};

}  // namespace lumenquest::adapters
