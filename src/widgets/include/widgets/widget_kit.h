#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/ns_date.h"

namespace lumenquest::widgets {

/// The sizes in which a host shows widgets.
enum class WidgetFamily { systemSmall, systemMedium, systemLarge };

/// A version of the host's system, of which widgets know what it offers.
struct SystemVersion {
  int major = 18;
  int minor = 0;

  auto operator<=>(const SystemVersion&) const = default;
};

/// From here on a configuration may do without the host's margins.
inline constexpr SystemVersion kSystemWithContentMargins{17, 0};
/// From here on the host may draw widgets in the user's accent colour.
inline constexpr SystemVersion kSystemWithRenderingModes{18, 0};

/// When a host asks again.
struct TimelineReloadPolicy {
  enum class Kind {
    /// After the last entry, when the host sees fit.
    atEnd,
    /// At an instant.
    after
  };

  static TimelineReloadPolicy atEnd() { return {Kind::atEnd, std::nullopt}; }
  static TimelineReloadPolicy after(platform::NSDate date) { return {Kind::after, date}; }

  bool operator==(const TimelineReloadPolicy&) const = default;

  Kind kind = Kind::atEnd;
  std::optional<platform::NSDate> date;
};

/// What a provider answers: entries with the dates from which on they are shown.
template <typename Entry>
struct Timeline {
  std::vector<Entry> entries;
  TimelineReloadPolicy policy;
};

/// For whom an entry is made.
struct TimelineProviderContext {
  WidgetFamily family = WidgetFamily::systemSmall;
};

/// Answers a host's three requests for a widget. A snapshot and a timeline may come later, on the
/// main queue; each is given at most once.
template <typename EntryType, typename IntentType>
class IntentTimelineProvider {
 public:
  using Entry = EntryType;
  using Intent = IntentType;
  using SnapshotCompletion = std::function<void(Entry)>;
  using TimelineCompletion = std::function<void(Timeline<Entry>)>;

  virtual ~IntentTimelineProvider() = default;

  /// Sample data, at once.
  virtual Entry placeholder(const TimelineProviderContext& context) = 0;
  /// Sample data in the configuration's theme, for a gallery of widgets.
  virtual void getSnapshot(const Intent& configuration, const TimelineProviderContext& context,
                           SnapshotCompletion completion) = 0;
  /// The real thing.
  virtual void getTimeline(const Intent& configuration, const TimelineProviderContext& context,
                           TimelineCompletion completion) = 0;
};

/// Which of the two intents configures a widget.
enum class ConfigurationIntent { locationSelector, themeSelector };

/// What a widget tells its host about itself, in the user's language.
struct WidgetConfiguration {
  std::string kind;
  ConfigurationIntent intent = ConfigurationIntent::locationSelector;
  std::vector<WidgetFamily> supportedFamilies;
  std::string displayName;
  std::string description;
  bool contentMarginsDisabled = false;
};

}  // namespace lumenquest::widgets
