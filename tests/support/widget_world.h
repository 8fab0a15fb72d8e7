#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "adapters/geographiclib_geodesy.h"
#include "platform/cl_location_manager.h"
#include "platform/geocoder.h"
#include "queue_in_memory.h"
#include "test_services.h"

namespace lumenquest::platform {

inline void PrintTo(const SavedPlace& place, std::ostream* out) {
  *out << place.address.value_or("-") << " in " << place.timeZone.value_or("-");
}

}  // namespace lumenquest::platform

namespace lumenquest::testing {

/// A clock that goes when the test says so.
class VirtualClock final : public platform::Clock {
 public:
  explicit VirtualClock(platform::NSDate start) : instant(start) {}
  platform::NSDate now() override { return instant; }
  void Advance(double seconds) { instant = Later(instant, seconds); }
  platform::NSDate instant;
};

/// A device's location services, which do what the test says. Whoever asks for a position waits
/// until Fix(), Fail() or the end of his manager.
class ScriptedLocations final : public platform::LocationService {
 public:
  using Status = platform::CLAuthorizationStatus;

  std::unique_ptr<platform::CLLocationManager> locationManager() override {
    return std::make_unique<Manager>(*this);
  }
  /// The user changes his mind; managers' delegates are told.
  void Decide(Status decided) {
    status = decided;
    Tell([](auto& told) { told.locationManagerDidChangeAuthorization(); }, false);
  }
  /// Answers those who wait, or tells everybody, asked or not.
  void Fix(const platform::CLLocation& found, bool evenUnasked = false) {
    last = found;
    Tell([&](auto& told) { told.didUpdateLocations({found}); }, !evenUnasked);
  }
  void Fail() {
    Tell([](auto& told) { told.didFailWithError({"Test", 1, "no sky", {}}); }, true);
  }
  bool isAsked() const {
    return std::any_of(managers_.begin(), managers_.end(), [](auto* one) { return one->waits; });
  }

  Status status = Status::authorizedWhenInUse;
  /// Whether widgets may ask at all.
  bool isForWidgets = true;
  std::optional<platform::CLLocation> last;
  int requests = 0;
  /// Called at each request.
  std::function<void()> onRequest = [] {};

 private:
  class Manager final : public platform::CLLocationManager {
   public:
    explicit Manager(ScriptedLocations& device) : device_(device) {
      device_.managers_.push_back(this);
    }
    ~Manager() override { std::erase(device_.managers_, this); }
    Status authorizationStatus() const override { return device_.status; }
    bool isAuthorizedForWidgetUpdates() const override {
      return device_.isForWidgets && device_.status != Status::denied;
    }
    std::optional<platform::CLLocation> location() const override { return device_.last; }
    void requestLocation() override {
      ++device_.requests;
      waits = true;
      device_.onRequest();
    }
    bool waits = false;

   private:
    ScriptedLocations& device_;
  };

  template <typename Message>
  void Tell(Message message, bool waitingOnly) {
    std::vector<std::shared_ptr<platform::CLLocationManagerDelegate>> delegates;
    for (Manager* const manager : managers_) {
      if (waitingOnly && !std::exchange(manager->waits, false)) continue;
      if (auto told = manager->delegate()) delegates.push_back(std::move(told));
    }
    for (const auto& told : delegates) message(*told);
  }

  std::vector<Manager*> managers_;
};

/// A geocoder whose places are the degrees of the map: "46,14" is a town, in a zone of its own.
/// Answers wait until the test lets them go, in the order of its choice.
class ScriptedGeocoder final : public platform::Geocoder {
 public:
  explicit ScriptedGeocoder(std::shared_ptr<platform::MainQueue> queue)
      : queue_(std::move(queue)) {}

  static std::string Town(platform::CLLocationCoordinate2D at) {
    const auto degree = [](double x) { return std::to_string(std::lround(x)); };
    return degree(at.latitude) + "," + degree(at.longitude);
  }
  /// East of Greenwich by whole hours, so that towns tell apart what belongs to which.
  static std::string Zone(platform::CLLocationCoordinate2D at) {
    const long hours = std::lround(at.longitude / 15.0);
    return hours == 0 ? "UTC"
                      : std::string("Etc/GMT") + (hours > 0 ? "-" : "+") +
                            std::to_string(std::labs(hours));
  }

  void reverseGeocodeLocation(const platform::CLLocation& location,
                              Completion completion) override {
    ++requests;
    waiting_.push_back({location, std::move(completion)});
    if (answersAtOnce) Answer(waiting_.size() - 1);
  }
  void geocodeAddressString(const std::string&, Completion completion) override {
    ++searches;
    std::optional<platform::NSError> error;
    if (fails) error = platform::NSError{"Test", 2, "no_network"};
    queue_->async([completion = std::move(completion), places = placesToFind, error] {
      completion(places, error);
    });
  }

  std::size_t waiting() const { return waiting_.size(); }
  /// Lets the answer to the n-th of those that wait go, onto the main queue.
  void Answer(std::size_t n = 0) {
    queue_->async([request = std::move(waiting_.at(n)), fails = fails] {
      std::vector<platform::CLPlacemark> found;
      std::optional<platform::NSError> error;
      if (fails) {
        error = platform::NSError{"Test", 2, "no_network"};
      } else {
        found.emplace_back().locality = Town(request.location.coordinate);
        found.back().timeZone = platform::NSTimeZone{Zone(request.location.coordinate)};
      }
      request.completion(found, error);
    });
    waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(n));
  }

  bool fails = false;
  bool answersAtOnce = true;
  int requests = 0;
  int searches = 0;
  /// What every search finds.
  std::vector<platform::CLPlacemark> placesToFind;

 private:
  struct Request {
    platform::CLLocation location;
    Completion completion;
  };
  std::vector<Request> waiting_;
  std::shared_ptr<platform::MainQueue> queue_;
};

/// Everything around a widget, on a virtual clock.
struct WidgetWorld {
  explicit WidgetWorld(const std::string& now = "2024-08-12T12:00:00Z",
                       const std::string& zone = "UTC", platform::Services::Adapters with = {})
      : clock(std::make_shared<VirtualClock>(Instant(now))),
        adapters(Adapters(std::move(with))),
        services(now, zone, "en_US", adapters) {}

  /// The device is in another zone, and the services are installed anew.
  void TravelTo(const std::string& zone) { services = TestServices("", zone, "en_US", adapters); }

  /// Does something after so many seconds.
  void After(double seconds, std::function<void()> work) {
    At(Later(clock->instant, seconds), std::move(work));
  }
  void At(platform::NSDate instant, std::function<void()> work) {
    agenda_.emplace(instant.timeIntervalSinceReferenceDate(), std::move(work));
  }
  /// Lets time pass, with all that happens in it. No instant before now comes again.
  void RunUntil(platform::NSDate end) {
    queue->RunAll();
    while (!agenda_.empty() && agenda_.begin()->first <= end.timeIntervalSinceReferenceDate()) {
      const auto next = agenda_.extract(agenda_.begin());
      clock->instant = std::max(clock->instant, platform::NSDate(next.key()));
      next.mapped()();
      queue->RunAll();
    }
    clock->instant = end;
  }

  std::shared_ptr<VirtualClock> clock;
  std::shared_ptr<QueueInMemory> queue = std::make_shared<QueueInMemory>();
  std::shared_ptr<ScriptedLocations> device = std::make_shared<ScriptedLocations>();
  std::shared_ptr<ScriptedGeocoder> geocoder = std::make_shared<ScriptedGeocoder>(queue);
  platform::Services::Adapters adapters;
  TestServices services;

 private:
  platform::Services::Adapters Adapters(platform::Services::Adapters with) {
    with.clock = clock;
    with.mainQueue = queue;
    with.locations = device;
    with.geocoder = geocoder;
    with.geodesy = std::make_shared<adapters::GeographicLibGeodesy>();
    return with;
  }

  std::multimap<double, std::function<void()>> agenda_;
};

}  // namespace lumenquest::testing
