#pragma once

#include <glib.h>

#include <functional>
#include <future>
#include <string>
#include <thread>
#include <utility>

#include "adapters/glib_main_queue.h"
#include "host/web_server.h"

namespace lumenquest::testing {

/// A server whose loop runs on a thread of its own, so that a test can be its client.
class RunningWebServer {
 public:
  RunningWebServer(const host::WebServerOptions& options, host::WebServer::Handler handler)
      : server_(options, std::move(handler)), thread_([this] {
          while (!isDone_) g_main_context_iteration(nullptr, TRUE);
        }) {}
  ~RunningWebServer() {
    OnLoop([this] {
      server_.stop();
      isDone_ = true;
    });
    thread_.join();
    // What the loop still has to do for the ended connections.
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }
  RunningWebServer(const RunningWebServer&) = delete;
  RunningWebServer& operator=(const RunningWebServer&) = delete;

  std::uint16_t port() const { return server_.port(); }
  std::string authority() const { return "127.0.0.1:" + std::to_string(port()); }

  /// Runs the work on the loop's thread and waits for it.
  void OnLoop(const std::function<void()>& work) {
    std::promise<void> done;
    adapters::GlibMainQueue().async([&] {
      work();
      done.set_value();
    });
    done.get_future().wait();
  }
  void Publish(const std::string& event, const std::string& data) {
    OnLoop([&] { server_.publish(event, data); });
  }
  void Stop() {
    OnLoop([&] { server_.stop(); });
  }
  std::size_t Streams() {
    std::size_t count = 0;
    OnLoop([&] { count = server_.streamCount(); });
    return count;
  }
  std::size_t Connections() {
    std::size_t count = 0;
    OnLoop([&] { count = server_.connectionCount(); });
    return count;
  }

 private:
  host::WebServer server_;
  bool isDone_ = false;
  std::thread thread_;
};

}  // namespace lumenquest::testing
