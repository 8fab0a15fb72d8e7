#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "platform/ns_calendar.h"

namespace lumenquest::platform {

/// Guards a shared calendar: a calendar object resolves one date at a time.
class LockedCalendar final : public NSCalendar {
 public:
  explicit LockedCalendar(std::unique_ptr<NSCalendar> calendar) : calendar_(std::move(calendar)) {}

  NSTimeZone timeZone() const override {
    const std::lock_guard lock(mutex_);
    return calendar_->timeZone();
  }
  void setTimeZone(const NSTimeZone& zone) override {
    const std::lock_guard lock(mutex_);
    calendar_->setTimeZone(zone);
  }
  NSDateComponents componentsFromDate(NSDate date) override {
    const std::lock_guard lock(mutex_);
    return calendar_->componentsFromDate(date);
  }
  NSDate dateFromComponents(const NSDateComponents& components) override {
    const std::lock_guard lock(mutex_);
    return calendar_->dateFromComponents(components);
  }
  NSDate dateByAddingDays(NSDate date, int days) override {
    const std::lock_guard lock(mutex_);
    return calendar_->dateByAddingDays(date, days);
  }
  NSDate dateByAddingMinutes(NSDate date, int minutes) override {
    const std::lock_guard lock(mutex_);
    return calendar_->dateByAddingMinutes(date, minutes);
  }
  int weekday(NSDate date) override {
    const std::lock_guard lock(mutex_);
    return calendar_->weekday(date);
  }
  int dayInWeek(NSDate date) override {
    const std::lock_guard lock(mutex_);
    return calendar_->dayInWeek(date);
  }
  int numberOfDaysInMonth(NSDate date) override {
    const std::lock_guard lock(mutex_);
    return calendar_->numberOfDaysInMonth(date);
  }

 private:
  mutable std::mutex mutex_;
  std::unique_ptr<NSCalendar> calendar_;
};

}  // namespace lumenquest::platform
