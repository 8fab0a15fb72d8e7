#pragma once

#include <gio/gio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace lumenquest::host {

/// One reference to a GObject.
struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

/// An error of GLib's, freed in the end; `out()` is where functions put it.
class ErrorBox {
 public:
  ErrorBox() = default;
  ~ErrorBox() { g_clear_error(&error_); }
  ErrorBox(const ErrorBox&) = delete;
  ErrorBox& operator=(const ErrorBox&) = delete;
  GError** out() {
    g_clear_error(&error_);
    return &error_;
  }
  bool is(GIOErrorEnum code) const { return g_error_matches(error_, G_IO_ERROR, code) != 0; }
  const char* message() const { return error_ == nullptr ? "" : error_->message; }

 private:
  GError* error_ = nullptr;
};

/// Something that the default main context calls again and again, until it is let go, which the
/// call itself may do.
class Watch {
 public:
  Watch() = default;
  /// While the socket is ready for the condition, or hung up.
  Watch(GSocket* socket, GIOCondition condition, std::function<void()> call) {
    Start(g_socket_create_source(socket, condition, nullptr), std::move(call),
          G_SOURCE_FUNC(OnSocket));
  }
  Watch(std::chrono::milliseconds interval, std::function<void()> call) {
    Start(g_timeout_source_new(static_cast<guint>(interval.count())), std::move(call),
          G_SOURCE_FUNC(OnTime));
  }
  ~Watch() { reset(); }
  Watch(Watch&& other) noexcept : source_(std::exchange(other.source_, nullptr)) {}
  Watch& operator=(Watch&& other) noexcept {
    if (this != &other) {
      reset();
      source_ = std::exchange(other.source_, nullptr);
    }
    return *this;
  }

  explicit operator bool() const { return source_ != nullptr; }
  void reset() {
    if (GSource* const source = std::exchange(source_, nullptr)) {
      g_source_destroy(source);
      g_source_unref(source);
    }
  }

 private:
  using Call = std::function<void()>;

  static gboolean OnTime(gpointer data) {
    (*static_cast<Call*>(data))();
    return G_SOURCE_CONTINUE;
  }
  static gboolean OnSocket(GSocket*, GIOCondition, gpointer data) { return OnTime(data); }
  static void Forget(gpointer data) { std::unique_ptr<Call>(static_cast<Call*>(data)).reset(); }

  void Start(GSource* source, Call call, GSourceFunc function) {
    // GLib keeps the call alive while it runs.
    g_source_set_callback(source, function, new Call(std::move(call)), Forget);
    g_source_attach(source, nullptr);
    source_ = source;
  }

  GSource* source_ = nullptr;
};

}  // namespace lumenquest::host
