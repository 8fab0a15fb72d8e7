#include "host/widget_source.h"

#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/assertion.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::host {

namespace {

template <typename Provider>
class SourceOf final : public WidgetSource {
 public:
  void ask(HostRequest request, const PlacedWidget& widget, Completion completion) override {
    const widgets::TimelineProviderContext context{widget.family};
    const auto intent = Configuration(widget);
    using Entry = typename Provider::Entry;
    switch (request) {
      case HostRequest::placeholder:
        completion({provider_.placeholder(context), std::nullopt});
        break;
      case HostRequest::snapshot:
        provider_.getSnapshot(intent, context, [completion = std::move(completion)](Entry entry) {
          completion({std::move(entry), std::nullopt});
        });
        break;
      case HostRequest::timeline:
        provider_.getTimeline(
            intent, context,
            [completion = std::move(completion)](widgets::Timeline<Entry> timeline) {
              completion({std::move(timeline.entries.front()), timeline.policy});
            });
        break;
    }
  }

 private:
  static typename Provider::Intent Configuration(const PlacedWidget& widget) {
    typename Provider::Intent intent;
    intent.theme = widget.theme;
    if constexpr (std::is_same_v<decltype(intent), widgets::LocationSelectorIntent>) {
      intent.location = widget.place ? *widget.place : widgets::IntentPlacemark::myLocation();
    }
    return intent;
  }

  Provider provider_;
};

}  // namespace

std::unique_ptr<WidgetSource> WidgetSource::ofKind(const std::string& kind) {
  std::unique_ptr<WidgetSource> source;
  const auto makeIfMeant = [&](const auto& widget) {
    using Provider = typename std::decay_t<decltype(widget)>::Provider;
    if (widget.kind == kind) source = std::make_unique<SourceOf<Provider>>();
  };
  std::apply([&](const auto&... widget) { (makeIfMeant(widget), ...); },
             widgets::LumenquestWidgets{}.body);
  LUMENQUEST_ASSERT(source != nullptr);
  return source;
}

}  // namespace lumenquest::host
