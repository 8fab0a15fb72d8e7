#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "host/home_screen.h"
#include "host/widget_entry.h"
#include "widgets/widget_kit.h"

namespace lumenquest::host {

enum class HostRequest { placeholder, snapshot, timeline };

struct WidgetAnswer {
  AnyEntry entry;
  /// Of a timeline.
  std::optional<widgets::TimelineReloadPolicy> reloadPolicy;
};

/// The provider of one placed widget, which lives as long as the widget is placed.
class WidgetSource {
 public:
  using Completion = std::function<void(WidgetAnswer)>;

  virtual ~WidgetSource() = default;

  /// Asks the provider. The completion is called at once or later, on the main queue; never, when
  /// the device's location services never answer.
  virtual void ask(HostRequest request, const PlacedWidget& widget, Completion completion) = 0;

  /// The source for a kind of widget, which is one of the bundle's.
  static std::unique_ptr<WidgetSource> ofKind(const std::string& kind);
};

}  // namespace lumenquest::host
