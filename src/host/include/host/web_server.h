#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/web_page.h"
#include "host/web_request.h"
#include "platform/ns_error.h"

namespace lumenquest::host {

/// Why a server cannot listen; what() is a sentence in the user's language.
class WebServerError : public std::runtime_error {
 public:
  explicit WebServerError(const platform::NSError& reason)
      : std::runtime_error(reason.localizedDescription()) {}
};

/// Limits of a server. Those who come when all places are taken are told to come again (503).
struct WebServerOptions {
  ListenAddress listen{};
  /// Of the pages that the server itself answers with.
  WebLanguage language{};
  /// Where the server-sent events are.
  std::string eventsPath = "/events";
  std::size_t maxStreams = 1024;
  /// Beside the streams.
  std::size_t maxConnections = 1024;
  /// Bytes of a request.
  std::size_t maxBody = 64 * 1024;
  std::size_t maxHeaders = 16 * 1024;
  std::size_t maxTarget = 2048;
  /// Bytes that wait for a stream's client before it is taken for one that does not read. What the
  /// system's own buffer holds (some 64 KiB) comes on top.
  std::size_t maxBacklog = 64 * 1024;
  /// From a connection's beginning to its request's last byte.
  std::chrono::milliseconds requestTime{10'000};
  /// From a request's last byte to the answer's last.
  std::chrono::milliseconds answerTime{30'000};
  /// Between two signs of life on a stream.
  std::chrono::milliseconds heartbeat{15'000};
  /// How long clients wait before they open a lost stream anew.
  std::chrono::milliseconds retry{3'000};
};

/// A small HTTP/1.1 server on GLib's default main context: it answers while somebody runs that
/// loop, on the thread that does; all its operations belong to that thread. A connection carries
/// one request. It hands out what the handler returns and nothing else, under headers that keep
/// other sites out, and takes changes from its own pages only. RFC 9110 and 9112; events after the
/// HTML standard's section on server-sent events.
class WebServer {
 public:
  /// Called for each request in order. What it throws becomes a page with status 500 and a line in
  /// the log.
  using Handler = std::function<WebResponse(const WebRequest& request)>;

  /// Listens from now on. Where the process may have too few open files, raises its limit, or has
  /// places for fewer. Throws WebServerError.
  WebServer(const WebServerOptions& options, Handler handler);
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  std::uint16_t port() const;
  /// "http://127.0.0.1:8080/"
  std::string url() const;
  std::size_t streamCount() const;
  /// Streams among them.
  std::size_t connectionCount() const;

  /// Sends a server-sent event to every open stream. Who opens a stream, for the first time or
  /// again, is sent no earlier ones and asks for the state. The name is one word; data may have
  /// several lines.
  void publish(const std::string& event, const std::string& data);

  /// Ends all streams and connections at once and listens no more. Not to be called by the handler.
  void stop();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace lumenquest::host
