#include "widgets/intents/intent_handler.h"

#include <utility>

#include "platform/assertion.h"
#include "platform/geocoder.h"
#include "platform/localized_strings.h"
#include "platform/services.h"

namespace lumenquest::widgets {

namespace {

using platform::CLPlacemark;

LocationOptionsCollection MyLocationAlone() { return {{{"", {IntentPlacemark::myLocation()}}}}; }

/// The placemarks that can be shown in a list, in their order.
std::vector<IntentPlacemark> Choices(const std::vector<CLPlacemark>& placemarks) {
  std::vector<IntentPlacemark> choices;
  for (const CLPlacemark& placemark : placemarks) {
    const std::optional<std::string> title = placemark.shortTitle();
    if (!placemark.location || !title) continue;
    choices.push_back({*placemark.location, *title, placemark.postalAddress});
  }
  return choices;
}

}  // namespace

IntentHandler& IntentHandler::handlerForIntent(const Intent& /*intent*/) { return *this; }

IntentPlacemark IntentHandler::defaultLocationForLocationSelector(
    const LocationSelectorIntent& /*intent*/) const {
  return IntentPlacemark::myLocation();
}

void IntentHandler::provideLocationOptionsCollectionForLocationSelector(
    const LocationSelectorIntent& /*intent*/, const std::optional<std::string>& searchTerm,
    LocationOptionsCompletion withCompletion) const {
  LUMENQUEST_ASSERT(withCompletion != nullptr);
  if (!searchTerm) {
    withCompletion(MyLocationAlone());
    return;
  }
  platform::Services::current().geocoder().geocodeAddressString(
      *searchTerm,
      [withCompletion = std::move(withCompletion)](const std::vector<CLPlacemark>& placemarks,
                                                   const std::optional<platform::NSError>& error) {
        if (error) platform::Services::current().log().write(error->description());
        LocationOptionsCollection options = MyLocationAlone();
        if (!error && !placemarks.empty()) {
          options.sections.push_back(
              {platform::localizedString("other_locations", platform::kTableCommon),
               Choices(placemarks)});
        }
        withCompletion(std::move(options));
      });
}

}  // namespace lumenquest::widgets
