#include "outgoing_connection.h"

#include <sys/socket.h>

#include <utility>

namespace lumenquest::host {

namespace {

/// Whoever listens to events has nothing to say beyond the request.
constexpr std::size_t kMaxHeard = 4096;

}  // namespace

OutgoingConnection::OutgoingConnection(Owned<GIOStream> stream, GSocket* socket,
                                       std::function<void()> atEnd)
    : stream_(std::move(stream)),
      socket_(G_SOCKET(g_object_ref(socket))),
      atEnd_(std::move(atEnd)),
      readable_(socket, G_IO_IN, [this] { OnReadable(); }) {}

OutgoingConnection::~OutgoingConnection() {
  readable_.reset();
  writable_.reset();
  g_io_stream_close(stream_.get(), nullptr, nullptr);
  g_socket_close(socket_.get(), nullptr);
}

bool OutgoingConnection::Send(Text text) {
  backlog_ += text->size();
  texts_.push_back(std::move(text));
  if (writable_) return true;
  if (!Flush()) return false;
  if (!texts_.empty()) writable_ = Watch(socket_.get(), G_IO_OUT, [this] { OnWritable(); });
  return true;
}

void OutgoingConnection::Finish() {
  isFinishing_ = true;
  if (texts_.empty()) g_socket_shutdown(socket_.get(), FALSE, TRUE, nullptr);
}

bool OutgoingConnection::Flush() {
  while (!texts_.empty()) {
    const Text& text = texts_.front();
    ErrorBox error;
    const gssize count = g_socket_send_with_blocking(
        socket_.get(), text->data() + sent_, text->size() - sent_, FALSE, nullptr, error.out());
    if (count < 0) return error.is(G_IO_ERROR_WOULD_BLOCK);
    sent_ += static_cast<std::size_t>(count);
    backlog_ -= static_cast<std::size_t>(count);
    if (sent_ == text->size()) {
      texts_.pop_front();
      sent_ = 0;
    }
  }
  return true;
}

void OutgoingConnection::End() {
  // What is called may delete this object, and the member with it.
  const auto atEnd = std::move(atEnd_);
  atEnd();
}

void OutgoingConnection::OnWritable() {
  if (!Flush()) return End();
  if (!texts_.empty()) return;
  writable_.reset();
  if (isFinishing_) g_socket_shutdown(socket_.get(), FALSE, TRUE, nullptr);
}

void OutgoingConnection::OnReadable() {
  char ignored[16 * 1024];
  ErrorBox error;
  const gssize count = g_socket_receive_with_blocking(socket_.get(), ignored, sizeof ignored, FALSE,
                                                      nullptr, error.out());
  if (count < 0 && error.is(G_IO_ERROR_WOULD_BLOCK)) return;
  if (count > 0) heard_ += static_cast<std::size_t>(count);
  if (count <= 0 || (!isFinishing_ && heard_ > kMaxHeard)) End();
}

}  // namespace lumenquest::host
