#pragma once

#include "platform/alarm.h"

namespace lumenquest::adapters {

/// The kernel's timer on the wall clock, on GLib's default main context. It goes on while the
/// machine sleeps, and tells when the clock is set and when the machine wakes.
class SystemAlarm final : public platform::Alarm {
 public:
  /// `secondsAhead`: by how much the clock whose instants are set goes before the machine's. Throws
  /// std::system_error when the system has no timer left.
  explicit SystemAlarm(double secondsAhead = 0.0);
  ~SystemAlarm() override;
  SystemAlarm(const SystemAlarm&) = delete;
  SystemAlarm& operator=(const SystemAlarm&) = delete;

  void onRing(std::function<void(Reason reason)> listener) override;
  void set(platform::NSDate date) override;

 private:
  void Arm();
  void Ring();

  double secondsAhead_;
  int timer_;
  unsigned source_ = 0;
  platform::NSDate date_;
  std::function<void(Reason reason)> listener_ = [](Reason) {};
};

}  // namespace lumenquest::adapters
