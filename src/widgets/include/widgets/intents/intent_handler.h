#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "widgets/intents/intent.h"
#include "widgets/intents/intent_placemark.h"
#include "widgets/intents/location_selector_intent.h"

namespace lumenquest::widgets {

/// Places to choose from.
struct LocationOptionsCollection {
  struct Section {
    /// Empty for a section without a heading.
    std::string title;
    std::vector<IntentPlacemark> items;

    bool operator==(const Section&) const = default;
  };

  std::vector<Section> sections;

  bool operator==(const LocationOptionsCollection&) const = default;
};

/// Supplies the choices of a widget's configuration.
class IntentHandler {
 public:
  using LocationOptionsCompletion = std::function<void(LocationOptionsCollection)>;

  /// This handler, which handles every intent.
  IntentHandler& handlerForIntent(const Intent& intent);

  /// The place of a widget that nobody has configured: wherever the device is.
  IntentPlacemark defaultLocationForLocationSelector(const LocationSelectorIntent& intent) const;

  /// Hands over the device's location and, in a section of their own, the places that the shared
  /// geocoder finds for a search term. When it finds none or fails (which is logged), the device's
  /// location alone.
  /// Without a term the completion is called at once, otherwise later on the main queue; the
  /// handler may be gone by then.
  void provideLocationOptionsCollectionForLocationSelector(
      const LocationSelectorIntent& intent, const std::optional<std::string>& searchTerm,
      LocationOptionsCompletion withCompletion) const;
};

}  // namespace lumenquest::widgets
