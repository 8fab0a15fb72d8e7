#include "adapters/gazetteer_geocoder.h"

#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "platform/assertion.h"

namespace lumenquest::adapters {

/// Used on the main queue only.
class GazetteerGeocoder::LazyGazetteer {
 public:
  explicit LazyGazetteer(Opener open) : open_(std::move(open)) {}

  Gazetteer& Opened() {
    if (!gazetteer_) gazetteer_ = open_();
    LUMENQUEST_ASSERT(gazetteer_ != nullptr);
    return *gazetteer_;
  }

 private:
  Opener open_;
  std::shared_ptr<Gazetteer> gazetteer_;
};

GazetteerGeocoder::GazetteerGeocoder(std::shared_ptr<Gazetteer> gazetteer,
                                     std::shared_ptr<platform::MainQueue> mainQueue)
    : GazetteerGeocoder([gazetteer = std::move(gazetteer)] { return gazetteer; },
                        std::move(mainQueue)) {}

GazetteerGeocoder::GazetteerGeocoder(Opener open, std::shared_ptr<platform::MainQueue> mainQueue)
    : gazetteer_(std::make_shared<LazyGazetteer>(std::move(open))),
      mainQueue_(std::move(mainQueue)) {
  LUMENQUEST_ASSERT(mainQueue_ != nullptr);
}

void GazetteerGeocoder::reverseGeocodeLocation(const platform::CLLocation& location,
                                               Completion completion) {
  Ask(
      [location](Gazetteer& gazetteer) {
        auto placemarks = gazetteer.reverseGeocodeLocation(location);
        // Where no place is near, as under the darkest skies, its hours are still known.
        if (placemarks.empty() && location.coordinate.isValid()) {
          platform::CLPlacemark wilderness;
          wilderness.location = location;
          wilderness.timeZone = gazetteer.timeZoneAt(location.coordinate);
          placemarks.push_back(std::move(wilderness));
        }
        return placemarks;
      },
      std::move(completion));
}

void GazetteerGeocoder::geocodeAddressString(const std::string& address, Completion completion) {
  Ask([address](Gazetteer& gazetteer) { return gazetteer.geocodeAddressString(address); },
      std::move(completion));
}

void GazetteerGeocoder::Ask(Question question, Completion completion) {
  LUMENQUEST_ASSERT(completion != nullptr);
  mainQueue_->async(
      [gazetteer = gazetteer_, question = std::move(question), completion = std::move(completion)] {
        std::vector<platform::CLPlacemark> placemarks;
        std::optional<platform::NSError> error;
        try {
          placemarks = question(gazetteer->Opened());
        } catch (const GazetteerError& failure) {
          error = failure.error;
          error->domain = kErrorDomain;
          error->code = kUnavailable;
        }
        completion(std::move(placemarks), std::move(error));
      });
}

}  // namespace lumenquest::adapters
