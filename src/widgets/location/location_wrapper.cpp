#include "widgets/location/location_wrapper.h"

#include <cmath>
#include <tuple>
#include <utility>

#include "platform/geocoder.h"
#include "platform/localized_strings.h"
#include "platform/ns_user_defaults.h"
#include "platform/services.h"

namespace lumenquest::widgets {

using platform::CLAuthorizationStatus;
using platform::CLLocation;
using platform::SavedLocation;
using platform::SavedPlace;
using platform::Services;

std::string samplePlaceName() {
  return platform::localizedString("sample_place_name", platform::kTableCommon);
}

bool wantsCurrentLocation(const LocationSelectorIntent* intent) {
  return intent == nullptr || !intent->location || intent->location->isMyLocation();
}

/// One call of getLocation, and what was known when it began.
struct LocationWrapper::Request {
  std::optional<CLLocation> savedLocation;
  SavedPlace savedPlace;
  ErrorReporter errorReporter;
  std::shared_ptr<CLAuthorizationStatus> status;
  Completion completion;
  bool isDone = false;

  Request() { std::tie(savedLocation, savedPlace) = SavedLocation::loadWithPlace(); }

  bool isAnswered() const { return completion == nullptr; }
  void CompleteWithSaved() { Complete(savedLocation, savedPlace); }
  void Complete(const std::optional<CLLocation>& location, const SavedPlace& place) {
    // Whatever it owns goes with the answer, though the wrapper's handler may keep this request.
    if (const Completion answer = std::exchange(completion, nullptr)) {
      answer(location, place.address, place.timeZone);
    }
  }

  static void ResolvePlace(const std::shared_ptr<Request>& request,
                           const std::optional<CLLocation>& location);
};

std::shared_ptr<LocationWrapper> LocationWrapper::create() {
  return std::shared_ptr<LocationWrapper>(new LocationWrapper());
}

void LocationWrapper::makeManager() {
  if (locationManager) return;
  locationManager = Services::current().locations().locationManager();
  locationManager->activityType = platform::CLActivityType::otherNavigation;
  locationManager->setDelegate(weak_from_this());
}

CLLocation LocationWrapper::currentOrDefaultLocation() {
  makeManager();
  if (locationManager->isAuthorizedForWidgetUpdates()) {
    if (const auto location = locationManager->location()) return *location;
  }
  return {kSampleCoordinate};
}

void LocationWrapper::report(const LocationEvent& event) {
  // A handler may ask again, and so replace itself while it runs.
  if (const Handler handler = completionHandler) handler(event);
}

void LocationWrapper::didUpdateLocations(const std::vector<CLLocation>& locations) {
  if (!locations.empty()) report(NewLocation{locations.front()});
}

void LocationWrapper::didFailWithError(const platform::NSError& error) {
  report(LocationError{error});
}

void LocationWrapper::locationManagerDidChangeAuthorization() {
  report(LocationChangeAuthorization{});
}

void LocationWrapper::requestLocation(Handler handler) {
  completionHandler = std::move(handler);
  if (!locationManager) {
    report(LocationChangeAuthorization{});
    return;
  }
  if (locationManager->authorizationStatus() == CLAuthorizationStatus::notDetermined ||
      !locationManager->isAuthorizedForWidgetUpdates()) {
    return;
  }
  const auto last = locationManager->location();
  if (last && last->timestamp) {
    const double age = platform::NSDate::date().timeIntervalSinceReferenceDate() -
                       last->timestamp->timeIntervalSinceReferenceDate();
    // A fix from the future tells of a clock that was set back, not of a fresh position.
    if (std::fabs(age) < kCachedFixLifetime) {
      report(NewLocation{*last});
      return;
    }
  }
  locationManager->requestLocation();
}

void LocationWrapper::getLocation(const LocationSelectorIntent* intent, ErrorReporter errorReporter,
                                  std::shared_ptr<CLAuthorizationStatus> status,
                                  Completion completion) {
  const auto request = std::make_shared<Request>();
  request->errorReporter = std::move(errorReporter);
  request->status = std::move(status);
  request->completion = std::move(completion);

  if (!wantsCurrentLocation(intent)) {
    *request->status = CLAuthorizationStatus::authorizedWhenInUse;
    Request::ResolvePlace(request, intent->location->location);
    return;
  }
  makeManager();
  *request->status = locationManager->authorizationStatus();
  if (!locationManager->isAuthorizedForWidgetUpdates()) {
    request->isDone = true;
    request->CompleteWithSaved();
    return;
  }
  std::erase_if(waiting_, [](const auto& earlier) { return earlier->isAnswered(); });
  waiting_.push_back(request);
  // The handler lives in this object, so that it may point back to it.
  requestLocation([this, request](const LocationEvent& event) { handle(event, request); });
}

void LocationWrapper::handle(const LocationEvent& event, const std::shared_ptr<Request>& latest) {
  // Those whose handler was replaced while they waited get what they waited for as well. Taken
  // beforehand, because whoever is answered may ask again.
  std::vector<std::shared_ptr<Request>> requests = waiting_;
  std::erase(requests, latest);
  std::erase_if(requests, [](const auto& earlier) { return earlier->isAnswered(); });
  requests.push_back(latest);

  if (std::holds_alternative<LocationChangeAuthorization>(event)) {
    const CLAuthorizationStatus status = locationManager->authorizationStatus();
    bool isWaiting = false;
    for (const auto& request : requests) {
      *request->status = status;
      if (request->isDone) continue;
      isWaiting = true;
      if (status == CLAuthorizationStatus::denied) {
        request->isDone = true;
        request->CompleteWithSaved();
      }
    }
    if (isWaiting && status == CLAuthorizationStatus::authorizedWhenInUse) {
      locationManager->requestLocation();
    }
    return;
  }
  for (const auto& request : requests) {
    // A later position is saved, once.
    if (request->isDone && request != latest) continue;
    if (const auto* const fix = std::get_if<NewLocation>(&event)) {
      Request::ResolvePlace(request, fix->location);
    } else {
      request->errorReporter(std::get<LocationError>(event).error.localizedDescription());
      Request::ResolvePlace(request, std::nullopt);
    }
    request->isDone = true;
  }
}

void LocationWrapper::Request::ResolvePlace(const std::shared_ptr<Request>& request,
                                            const std::optional<CLLocation>& location) {
  // As it stands now: the geocoder's answer to the first fix counts although the call is marked
  // done by then.
  const bool wasDone = request->isDone;
  if (!location) {
    if (!wasDone) request->CompleteWithSaved();
    return;
  }
  const bool isSamePlace =
      request->savedPlace.address && request->savedLocation &&
      location->distanceFromLocation(*request->savedLocation) <= kSamePlaceDistance;
  // A title that is not this place's must never stand beside its coordinate: another widget, or
  // another host, would take it for this place's.
  SavedLocation::atomically([&] {
    SavedLocation::save(location->coordinate);
    SavedLocation::savePlace(isSamePlace ? request->savedPlace : SavedPlace{});
  });
  if (isSamePlace) {
    if (!wasDone) request->Complete(*location, request->savedPlace);
    return;
  }
  Services::current().geocoder().reverseGeocodeLocation(
      *location,
      [request, location = *location, wasDone](const std::vector<platform::CLPlacemark>& placemarks,
                                               const std::optional<platform::NSError>& error) {
        SavedPlace place;
        SavedLocation::atomically([&] {
          // By now another widget may have saved another place, whose title is on its way.
          const auto last = SavedLocation::load();
          const bool isLast = last && last->coordinate == location.coordinate;
          const auto take = isLast ? &SavedLocation::saveGeocoded : &SavedLocation::geocodedPlace;
          place = take(placemarks, error.has_value(), location);
        });
        if (!wasDone) request->Complete(location, place);
      });
}

}  // namespace lumenquest::widgets
