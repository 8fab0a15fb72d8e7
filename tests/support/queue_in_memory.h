#pragma once

#include <deque>
#include <functional>
#include <utility>

#include "platform/services.h"

namespace lumenquest::testing {

/// A main queue that runs when the test says so.
class QueueInMemory final : public platform::MainQueue {
 public:
  void async(std::function<void()> work) override { works_.push_back(std::move(work)); }
  void RunAll() {
    for (; !works_.empty(); works_.pop_front()) works_.front()();
  }

 private:
  std::deque<std::function<void()>> works_;
};

}  // namespace lumenquest::testing
