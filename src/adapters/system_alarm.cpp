#include "adapters/system_alarm.h"

#include <glib-unix.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <utility>

namespace lumenquest::adapters {

namespace {

/// The kernel's longest, some 292 years, is not needed; year 2200.
constexpr double kLastSecond = 7258118400.0;

}  // namespace

SystemAlarm::SystemAlarm(double secondsAhead)
    : secondsAhead_(secondsAhead),
      timer_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)),
      date_(platform::NSDate::dateWithTimeIntervalSince1970(kLastSecond)) {
  if (timer_ < 0) throw std::system_error(errno, std::generic_category(), "a timer of the system");
  const auto ring = [](gint, GIOCondition, gpointer self) -> gboolean {
    static_cast<SystemAlarm*>(self)->Ring();
    return G_SOURCE_CONTINUE;
  };
  source_ = g_unix_fd_add(timer_, G_IO_IN, ring, this);
  Arm();
}

SystemAlarm::~SystemAlarm() {
  g_source_remove(source_);
  ::close(timer_);
}

void SystemAlarm::onRing(std::function<void(Reason reason)> listener) {
  listener_ = std::move(listener);
}

void SystemAlarm::set(platform::NSDate date) {
  date_ = date;
  Arm();
}

void SystemAlarm::Arm() {
  // At least a nanosecond: zero would disarm it, and an instant that is over rings at once.
  const double seconds =
      std::clamp(date_.timeIntervalSince1970() - secondsAhead_, 1e-9, kLastSecond);
  const double whole = std::floor(seconds);
  itimerspec spec{};
  spec.it_value.tv_sec = static_cast<time_t>(whole);
  spec.it_value.tv_nsec = std::min(std::lround(std::ceil((seconds - whole) * 1e9)), 999999999L);
  ::timerfd_settime(timer_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &spec, nullptr);
}

void SystemAlarm::Ring() {
  std::uint64_t times = 0;
  const bool isRead = ::read(timer_, &times, sizeof times) == sizeof times;
  if (!isRead && errno == EAGAIN) return;
  const bool isClockSet = !isRead && errno == ECANCELED;
  // The kernel forgets a timer that the clock was set under.
  if (isClockSet) Arm();
  // A copy: the listener may go with whoever it belongs to.
  const auto listener = listener_;
  listener(isClockSet ? Reason::clockChanged : Reason::due);
}

}  // namespace lumenquest::adapters
