#pragma once

#include <functional>

#include "platform/ns_date.h"

namespace lumenquest::platform {

/// Rings at an instant of the wall clock, on the main queue: on time after the machine slept, and
/// when the clock is set.
class Alarm {
 public:
  enum class Reason {
    /// The instant has come, or has passed already.
    due,
    /// The clock was set, or the device is in another time zone. The instant stays set.
    clockChanged
  };

  virtual ~Alarm() = default;

  /// Whoever is to be told, once and for all.
  virtual void onRing(std::function<void(Reason reason)> listener) = 0;
  /// Rings at this instant rather than at the one set before.
  virtual void set(NSDate date) = 0;
};

}  // namespace lumenquest::platform
