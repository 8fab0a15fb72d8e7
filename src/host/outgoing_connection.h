#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "glib_sources.h"

namespace lumenquest::host {

/// The rest of a connection on which the server alone speaks: a stream of events, or a refusal in
/// the middle of a request, whose remainder nobody wants to read.
class OutgoingConnection {
 public:
  using Text = std::shared_ptr<const std::string>;

  /// `atEnd` is called once, from the main context, when the client has gone, has said more than a
  /// stream's client may, or has everything and was to get no more; it may delete this object.
  OutgoingConnection(Owned<GIOStream> stream, GSocket* socket, std::function<void()> atEnd);
  ~OutgoingConnection();
  OutgoingConnection(const OutgoingConnection&) = delete;
  OutgoingConnection& operator=(const OutgoingConnection&) = delete;

  /// Sends, or keeps what the system does not take yet. False: the client has gone.
  bool Send(Text text);
  /// Sends no more after what waits. The client gets the time to read it: to close at once would
  /// make the system throw away what is on its way when a client is still sending.
  void Finish();

  /// Bytes that wait.
  std::size_t backlog() const { return backlog_; }

 private:
  bool Flush();
  void End();
  void OnReadable();
  void OnWritable();

  Owned<GIOStream> stream_;
  Owned<GSocket> socket_;
  std::function<void()> atEnd_;
  std::deque<Text> texts_;
  /// Bytes of the first text that are sent.
  std::size_t sent_ = 0;
  std::size_t backlog_ = 0;
  std::size_t heard_ = 0;
  bool isFinishing_ = false;
  Watch readable_;
  Watch writable_;
};

}  // namespace lumenquest::host
