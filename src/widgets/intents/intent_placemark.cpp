#include "widgets/intents/intent_placemark.h"

#include "platform/localized_strings.h"

namespace lumenquest::widgets {

namespace {

constexpr platform::CLLocationCoordinate2D kMyLocation{90.0, 180.0};

}  // namespace

IntentPlacemark IntentPlacemark::myLocation() {
  return {platform::CLLocation{kMyLocation},
          platform::localizedString("my_location", platform::kTableCommon), std::nullopt};
}

bool IntentPlacemark::isMyLocation() const { return location.coordinate == kMyLocation; }

}  // namespace lumenquest::widgets
