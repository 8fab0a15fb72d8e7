#include "adapters/file_watcher.h"

#include <gio/gio.h>
#include <sys/stat.h>

#include <array>
#include <optional>
#include <system_error>
#include <utility>

namespace lumenquest::adapters {

namespace {

/// Changes that come together: a database is written in several steps.
constexpr unsigned kPauseMilliseconds = 200;

/// What tells a file's contents from those before. Absent: there are none.
using Print = std::optional<std::array<long long, 5>>;

Print PrintOf(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0 || status.st_size == 0) return std::nullopt;
  return Print({static_cast<long long>(status.st_dev), static_cast<long long>(status.st_ino),
                static_cast<long long>(status.st_size),
                static_cast<long long>(status.st_mtim.tv_sec),
                static_cast<long long>(status.st_mtim.tv_nsec)});
}

}  // namespace

class FileWatcher::Implementation {
 public:
  Implementation(std::vector<std::filesystem::path> files, std::function<void()> changed)
      : files_(std::move(files)), changed_(std::move(changed)), prints_(Prints()) {
    Watch();
  }

  ~Implementation() {
    if (pause_ != 0) g_source_remove(pause_);
    Unwatch();
  }

 private:
  /// The files, and what links among them lead to.
  std::vector<std::filesystem::path> Places() const {
    std::vector<std::filesystem::path> places = files_;
    for (const auto& file : files_) {
      std::error_code error;
      if (!std::filesystem::is_symlink(file, error)) continue;
      const auto target = std::filesystem::weakly_canonical(file, error);
      if (!error) places.push_back(target);
    }
    return places;
  }

  void Watch() {
    places_ = Places();
    for (const auto& path : places_) {
      GFile* const file = g_file_new_for_path(path.c_str());
      // Null where the system watches no more files: the host still reloads in time.
      if (GFileMonitor* const monitor =
              g_file_monitor_file(file, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr)) {
        g_file_monitor_set_rate_limit(monitor, static_cast<gint>(kPauseMilliseconds));
        g_signal_connect_swapped(monitor, "changed", G_CALLBACK(OnChanged), this);
        monitors_.push_back(monitor);
      }
      g_object_unref(file);
    }
  }

  void Unwatch() {
    for (GFileMonitor* const monitor : monitors_) {
      g_signal_handlers_disconnect_by_data(monitor, this);
      g_file_monitor_cancel(monitor);
      g_object_unref(monitor);
    }
    monitors_.clear();
  }

  static void OnChanged(Implementation* self) {
    if (self->pause_ != 0) return;
    const auto look = [](gpointer data) -> gboolean {
      static_cast<Implementation*>(data)->Look();
      return G_SOURCE_REMOVE;
    };
    self->pause_ = g_timeout_add(kPauseMilliseconds, look, self);
  }

  void Look() {
    pause_ = 0;
    if (Places() != places_) {
      Unwatch();
      Watch();
    }
    std::vector<Print> prints = Prints();
    if (prints == prints_) return;
    prints_ = std::move(prints);
    const auto changed = changed_;
    changed();
  }

  std::vector<Print> Prints() const {
    std::vector<Print> prints;
    for (const auto& file : files_) prints.push_back(PrintOf(file));
    return prints;
  }

  std::vector<std::filesystem::path> files_;
  std::function<void()> changed_;
  std::vector<Print> prints_;
  std::vector<std::filesystem::path> places_;
  std::vector<GFileMonitor*> monitors_;
  unsigned pause_ = 0;
};

FileWatcher::FileWatcher(std::vector<std::filesystem::path> files, std::function<void()> changed)
    : implementation_(std::make_unique<Implementation>(std::move(files), std::move(changed))) {}

FileWatcher::~FileWatcher() = default;

}  // namespace lumenquest::adapters
