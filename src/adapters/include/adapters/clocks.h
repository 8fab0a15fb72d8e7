#pragma once

#include "platform/services.h"

namespace lumenquest::adapters {

/// The machine's clock.
class SystemClock final : public platform::Clock {
 public:
  platform::NSDate now() override;
};

/// The machine's clock, set to another instant at the start.
class ShiftedClock final : public platform::Clock {
 public:
  explicit ShiftedClock(platform::NSDate start);
  platform::NSDate now() override;
  /// By which it goes before the machine's.
  double secondsAhead() const { return secondsAhead_; }

 private:
  SystemClock machine_;
  double secondsAhead_;
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
