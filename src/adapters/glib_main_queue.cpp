#include "adapters/glib_main_queue.h"

#include <glib.h>

#include <memory>
#include <utility>

namespace lumenquest::adapters {

void GlibMainQueue::async(std::function<void()> work) {
  using Work = std::function<void()>;
  const auto run = [](gpointer data) -> gboolean {
    (*static_cast<Work*>(data))();
    return G_SOURCE_REMOVE;
  };
  const auto forget = [](gpointer data) {
    std::unique_ptr<Work>(static_cast<Work*>(data)).reset();
  };
  // An idle source rather than g_main_context_invoke(), which would run the work here and now.
  GSource* source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(source, run, new Work(std::move(work)), forget);
  g_source_attach(source, nullptr);
  g_source_unref(source);
}

void GlibMainQueue::runUntil(const std::function<bool()>& done) {
  while (!done()) g_main_context_iteration(nullptr, TRUE);
}

}  // namespace lumenquest::adapters
