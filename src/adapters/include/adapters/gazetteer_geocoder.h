#pragma once

#include <functional>
#include <memory>
#include <string>

#include "adapters/gazetteer.h"
#include "platform/geocoder.h"
#include "platform/services.h"

namespace lumenquest::adapters {

/// Answers from the gazetteer. A request waits in the main queue and is worked off there, in
/// milliseconds; the ones that still wait are answered even when the geocoder is gone.
class GazetteerGeocoder final : public platform::Geocoder {
 public:
  /// Domain of its errors.
  static constexpr const char* kErrorDomain = "Geocoder";
  enum ErrorCode : int {
    /// The gazetteer cannot be opened, or cannot be read.
    kUnavailable = 1,
  };

  /// Opens the gazetteer; throws GazetteerError where it cannot.
  using Opener = std::function<std::shared_ptr<Gazetteer>()>;

  GazetteerGeocoder(std::shared_ptr<Gazetteer> gazetteer,
                    std::shared_ptr<platform::MainQueue> mainQueue);
  /// The gazetteer is opened at the first request; when that fails, at the next one.
  GazetteerGeocoder(Opener open, std::shared_ptr<platform::MainQueue> mainQueue);

  void reverseGeocodeLocation(const platform::CLLocation& location, Completion completion) override;
  void geocodeAddressString(const std::string& address, Completion completion) override;

 private:
  using Question = std::function<std::vector<platform::CLPlacemark>(Gazetteer&)>;
  class LazyGazetteer;

  /// Queues the question, and after it the completion with its answer.
  void Ask(Question question, Completion completion);

  std::shared_ptr<LazyGazetteer> gazetteer_;
  std::shared_ptr<platform::MainQueue> mainQueue_;
};

}  // namespace lumenquest::adapters
