#pragma once

#include <functional>

#include "platform/services.h"

namespace lumenquest::adapters {

/// The main queue on GLib's default main context, where D-Bus and the server answer too. Work may
/// be queued from any thread; it runs on the thread that runs the loop.
class GlibMainQueue final : public platform::MainQueue {
 public:
  void async(std::function<void()> work) override;

  /// Runs what is queued, and waits for more, until `done` holds; asks after every piece of work.
  static void runUntil(const std::function<bool()>& done);
};

}  // namespace lumenquest::adapters
