#include "adapters/geoclue_location.h"

#include <geoclue.h>

#include <string>

namespace lumenquest::adapters {

namespace {

using platform::CLAuthorizationStatus;
using platform::CLLocation;
using platform::NSDate;
using platform::NSError;

/// By this name the service asks the user, and its configuration may allow us in advance.
constexpr const char* kDesktopId = "lumenquest";
constexpr guint kTimeOutSeconds = 30;
constexpr double kRefusalLifetime = 300.0;

enum ErrorCode : int { kUnavailable = 1, kTimeOut = 2 };

class GeoclueManager;

/// A request that waits for the service; owned by the callbacks that it waits for.
struct Waiting {
  std::weak_ptr<GeoclueManager*> manager;
  GCancellable* cancellable = nullptr;
  guint timeOut = 0;
  bool isTimedOut = false;
};

class GeoclueManager final : public platform::CLLocationManager {
 public:
  ~GeoclueManager() override {
    if (cancellable_ == nullptr) return;
    g_cancellable_cancel(cancellable_);
    g_object_unref(cancellable_);
  }

  CLAuthorizationStatus authorizationStatus() const override {
    const bool isRefused = refusedAt_ && NSDate::date().timeIntervalSinceReferenceDate() -
                                                 refusedAt_->timeIntervalSinceReferenceDate() <
                                             kRefusalLifetime;
    return isRefused ? CLAuthorizationStatus::denied : CLAuthorizationStatus::authorizedWhenInUse;
  }
  bool isAuthorizedForWidgetUpdates() const override {
    return authorizationStatus() != CLAuthorizationStatus::denied;
  }
  std::optional<CLLocation> location() const override { return location_; }

  void requestLocation() override {
    // One question at a time; its answer is everybody's.
    if (cancellable_ != nullptr) return;
    cancellable_ = g_cancellable_new();
    auto* const waiting = new Waiting{self_, G_CANCELLABLE(g_object_ref(cancellable_)), 0, false};
    waiting->timeOut = g_timeout_add_seconds(kTimeOutSeconds, OnTimeOut, waiting);
    gclue_simple_new(kDesktopId, GCLUE_ACCURACY_LEVEL_EXACT, cancellable_, OnAnswer, waiting);
  }

 private:
  static gboolean OnTimeOut(gpointer data) {
    auto* const waiting = static_cast<Waiting*>(data);
    waiting->timeOut = 0;
    waiting->isTimedOut = true;
    g_cancellable_cancel(waiting->cancellable);
    return G_SOURCE_REMOVE;
  }

  static void OnAnswer(GObject*, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Waiting> waiting(static_cast<Waiting*>(data));
    GError* error = nullptr;
    GClueSimple* const simple = gclue_simple_new_finish(result, &error);
    if (waiting->timeOut != 0) g_source_remove(waiting->timeOut);
    g_object_unref(waiting->cancellable);
    if (const auto manager = waiting->manager.lock()) {
      (*manager)->Take(simple, error, waiting->isTimedOut);
    }
    if (simple != nullptr) g_object_unref(simple);
    g_clear_error(&error);
  }

  void Take(GClueSimple* simple, const GError* error, bool isTimedOut) {
    g_clear_object(&cancellable_);
    const auto told = delegate();
    if (simple != nullptr) {
      GClueLocation* const found = gclue_simple_get_location(simple);
      location_ =
          CLLocation{{gclue_location_get_latitude(found), gclue_location_get_longitude(found)},
                     NSDate::date()};
      refusedAt_.reset();
      if (told) told->didUpdateLocations({*location_});
    } else if (error != nullptr &&
               g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED)) {
      refusedAt_ = NSDate::date();
      if (told) told->locationManagerDidChangeAuthorization();
    } else if (told) {
      const std::string cause = error != nullptr ? error->message : "";
      told->didFailWithError(
          isTimedOut ? NSError{"GeoClue", kTimeOut, "error_location_timeout"}
                     : NSError{"GeoClue", kUnavailable, "error_location_service", {}, cause});
    }
  }

  std::optional<CLLocation> location_;
  std::optional<NSDate> refusedAt_;
  GCancellable* cancellable_ = nullptr;
  /// Tells answers that come late whether there is still somebody to answer.
  std::shared_ptr<GeoclueManager*> self_ = std::make_shared<GeoclueManager*>(this);
};

}  // namespace

std::unique_ptr<platform::CLLocationManager> GeoclueLocationService::locationManager() {
  return std::make_unique<GeoclueManager>();
}

}  // namespace lumenquest::adapters
