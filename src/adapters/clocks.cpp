#include "adapters/clocks.h"

#include <chrono>

namespace lumenquest::adapters {

platform::NSDate SystemClock::now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return platform::NSDate::dateWithTimeIntervalSince1970(
      std::chrono::duration<double>(sinceEpoch).count());
}

ShiftedClock::ShiftedClock(platform::NSDate start)
    : secondsAhead_(start.timeIntervalSinceReferenceDate() -
                    machine_.now().timeIntervalSinceReferenceDate()) {}

platform::NSDate ShiftedClock::now() {
  return platform::NSDate(machine_.now().timeIntervalSinceReferenceDate() + secondsAhead_);
}

}  // namespace lumenquest::adapters
