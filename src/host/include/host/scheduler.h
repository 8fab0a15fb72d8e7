#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/home_screen.h"
#include "host/widget_entry.h"
#include "host/widget_source.h"
#include "platform/alarm.h"
#include "platform/text_file.h"

namespace lumenquest::host {

/// A placed widget with what it shows.
struct ShownWidget {
  PlacedWidget widget;
  AnyEntry entry;
  /// Sample data, until the provider has answered for the first time.
  bool isPlaceholder = true;
  /// Another number for each entry that is shown, in this process and in others.
  std::uint64_t version = 0;
  /// When the provider is asked again.
  platform::NSDate reloadDate;
};

/// Asks the widgets of a home screen for their timelines, keeps the one entry of each, and asks
/// again at its reload instant. A timeline that names no instant is asked for again at the next
/// local midnight, at the latest after 30 minutes; any at the end of the day that it shows. When
/// the clock or the time zone is changed, all are asked.
///
/// Lives on the main queue.
class Scheduler {
 public:
  /// Told of a widget's new entry. It must not change what is shown.
  using EntryListener = std::function<void(const ShownWidget& shown)>;

  struct Options {
    std::shared_ptr<platform::Alarm> alarm;
    /// Keeps the entries for the next start; null: nothing is kept.
    std::shared_ptr<platform::TextFile> memory;
    /// The language of the entries; those of another language are not shown again.
    std::string locale;
  };

  explicit Scheduler(Options options);
  ~Scheduler();
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  void onEntry(EntryListener listener);
  /// Shows these widgets. One that stands as it stood keeps its entry; the others show the entry of
  /// an earlier process or sample data, and are asked.
  void show(const HomeScreen& screen);
  /// Whether these very widgets are shown.
  bool isShowing(const HomeScreen& screen) const;
  /// Asks those again for which `isMeant` holds.
  void reload(const std::function<bool(const PlacedWidget& widget)>& isMeant);
  void reloadAll();
  /// Asks all again with providers made afresh, after the services were installed anew.
  void restart();

  const std::vector<ShownWidget>& shown() const { return shown_; }
  /// Null when there is none of this identifier.
  const ShownWidget* find(const std::string& id) const;

 private:
  /// What belongs to a shown widget and is nobody else's business.
  struct Request {
    std::unique_ptr<WidgetSource> source;
    /// Of the last request; an answer to an earlier one comes too late.
    std::uint64_t number = 0;
    bool isWaiting = false;
  };

  void Ask(std::size_t index);
  void Take(std::uint64_t number, WidgetAnswer answer);
  void Ring(platform::Alarm::Reason reason);
  void SetAlarm();
  void Remember();
  void WriteMemory();

  Options options_;
  EntryListener onEntry_ = [](const ShownWidget&) {};
  std::vector<ShownWidget> shown_;
  /// One for each of shown_.
  std::vector<Request> requests_;
  std::uint64_t lastNumber_ = 0;
  bool isMemoryDue_ = false;
  bool isMemoryRead_ = false;
  bool couldRemember_ = true;
  /// Tells answers and queued work that come too late that nobody is here any more.
  std::shared_ptr<bool> isHere_ = std::make_shared<bool>(true);
};

/// When a timeline that was answered at `now` is asked for again.
platform::NSDate reloadDateOf(const widgets::TimelineReloadPolicy& policy, platform::NSDate now);

}  // namespace lumenquest::host
