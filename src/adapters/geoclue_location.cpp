#include "adapters/geoclue_location.h"

#include <geoclue.h>

#include <functional>
#include <string>
#include <utility>

namespace lumenquest::adapters {

namespace {

using platform::CLAuthorizationStatus;
using platform::CLLocation;
using platform::NSDate;
using platform::NSError;

/// By this name the service asks the user, and its configuration may allow us in advance.
constexpr const char* kDesktopId = "lumenquest";
constexpr double kRefusalLifetime = 300.0;

enum ErrorCode : int { kUnavailable = 1, kTimeOut = 2 };

struct SearchResult {
  /// Absent: nothing was found.
  std::optional<platform::CLLocationCoordinate2D> coordinate{};
  /// When it was, as the service says, which may know an older position than a fresh one.
  std::optional<NSDate> measuredAt{};
  bool isRefused = false;
  bool isTimedOut = false;
  /// What the service said.
  std::string cause{};
};

/// One question to the service: a client of it, started, until its first position. The library's
/// own one-shot helper is no use here: it waits for ever where there is no position, and does not
/// survive a second position that comes while it is let go.
class Search : public std::enable_shared_from_this<Search> {
 public:
  using Completion = std::function<void(const SearchResult& result)>;

  explicit Search(Completion completion) : completion_(std::move(completion)) {}
  ~Search() { g_object_unref(cancellable_); }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  void Start(std::chrono::milliseconds timeOut) {
    timeOut_ = g_timeout_add(static_cast<guint>(timeOut.count()), OnTimeOut, this);
    // Not to be cancelled: a client that nobody gets is one that nobody deletes.
    gclue_client_proxy_create_full(kDesktopId, GCLUE_ACCURACY_LEVEL_EXACT,
                                   GCLUE_CLIENT_PROXY_CREATE_AUTO_DELETE, nullptr, OnClient,
                                   Reference());
  }

  /// Whatever comes now comes too late.
  void Stop() {
    completion_ = nullptr;
    if (timeOut_ != 0) g_source_remove(std::exchange(timeOut_, 0));
    g_cancellable_cancel(cancellable_);
    if (client_ == nullptr) return;
    g_signal_handlers_disconnect_by_data(client_, this);
    g_clear_object(&client_);
  }

 private:
  /// Keeps the search alive until the callback that it is handed to.
  gpointer Reference() { return new std::shared_ptr<Search>(shared_from_this()); }
  static std::shared_ptr<Search> Take(gpointer reference) {
    const std::unique_ptr<std::shared_ptr<Search>> taken(
        static_cast<std::shared_ptr<Search>*>(reference));
    return *taken;
  }

  bool IsOver() const { return completion_ == nullptr; }
  void Finish(const SearchResult& result) {
    const Completion completion = std::exchange(completion_, nullptr);
    Stop();
    if (completion) completion(result);
  }
  /// Frees the error, which may be null.
  void Fail(GError* error) {
    SearchResult result;
    if (error != nullptr) {
      result.isRefused = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED) != 0;
      g_dbus_error_strip_remote_error(error);
      result.cause = error->message;
      g_error_free(error);
    }
    Finish(result);
  }

  static gboolean OnTimeOut(gpointer data) {
    auto* const search = static_cast<Search*>(data);
    search->timeOut_ = 0;
    search->Finish({.isTimedOut = true});
    return G_SOURCE_REMOVE;
  }

  static void OnClient(GObject*, GAsyncResult* answer, gpointer data) {
    const auto search = Take(data);
    GError* error = nullptr;
    GClueClient* const client = gclue_client_proxy_create_full_finish(answer, &error);
    if (client == nullptr) return search->Fail(error);
    if (search->IsOver()) return g_object_unref(client);
    search->client_ = client;
    g_signal_connect(client, "location-updated", G_CALLBACK(OnLocationUpdated), search.get());
    gclue_client_call_start(client, search->cancellable_, OnStarted, search->Reference());
  }

  static void OnStarted(GObject* client, GAsyncResult* answer, gpointer data) {
    const auto search = Take(data);
    GError* error = nullptr;
    if (!gclue_client_call_start_finish(GCLUE_CLIENT(client), answer, &error)) search->Fail(error);
  }

  static void OnLocationUpdated(GClueClient*, const char*, const char* path, Search* search) {
    gclue_location_proxy_new_for_bus(G_BUS_TYPE_SYSTEM, G_DBUS_PROXY_FLAGS_NONE,
                                     "org.freedesktop.GeoClue2", path, search->cancellable_,
                                     OnLocation, search->Reference());
  }

  static void OnLocation(GObject*, GAsyncResult* answer, gpointer data) {
    const auto search = Take(data);
    GError* error = nullptr;
    GClueLocation* const found = gclue_location_proxy_new_for_bus_finish(answer, &error);
    if (found == nullptr) return search->Fail(error);
    // A location that is gone already has no properties, and would read as 0° 0°.
    GVariant* const known = g_dbus_proxy_get_cached_property(G_DBUS_PROXY(found), "Latitude");
    if (known != nullptr) {
      g_variant_unref(known);
      search->Finish(
          {.coordinate = platform::CLLocationCoordinate2D{gclue_location_get_latitude(found),
                                                          gclue_location_get_longitude(found)},
           .measuredAt = TimeOf(found)});
    }
    g_object_unref(found);
  }

  /// Seconds and microseconds since 1970; 0 where the service does not know.
  static std::optional<NSDate> TimeOf(GClueLocation* location) {
    GVariant* const timestamp = gclue_location_get_timestamp(location);
    if (timestamp == nullptr) return std::nullopt;
    guint64 seconds = 0;
    guint64 microseconds = 0;
    g_variant_get(timestamp, "(tt)", &seconds, &microseconds);
    if (seconds == 0) return std::nullopt;
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds) +
                                                 static_cast<double>(microseconds) / 1e6);
  }

  Completion completion_;
  GCancellable* cancellable_ = g_cancellable_new();
  GClueClient* client_ = nullptr;
  guint timeOut_ = 0;
};

class GeoclueManager final : public platform::CLLocationManager {
 public:
  explicit GeoclueManager(std::chrono::milliseconds timeOut) : timeOut_(timeOut) {}
  ~GeoclueManager() override {
    if (search_) search_->Stop();
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
    if (search_) return;
    search_ = std::make_shared<Search>([this](const SearchResult& result) { Take(result); });
    search_->Start(timeOut_);
  }

 private:
  void Take(const SearchResult& result) {
    // Whoever is told may ask again, or let go of this object.
    search_.reset();
    const auto told = delegate();
    if (result.coordinate) {
      location_ = CLLocation{*result.coordinate, result.measuredAt.value_or(NSDate::date())};
      refusedAt_.reset();
      if (told) told->didUpdateLocations({*location_});
    } else if (result.isRefused) {
      refusedAt_ = NSDate::date();
      if (told) told->locationManagerDidChangeAuthorization();
    } else if (told) {
      told->didFailWithError(
          result.isTimedOut
              ? NSError{"GeoClue", kTimeOut, "error_location_timeout"}
              : NSError{"GeoClue", kUnavailable, "error_location_service", {}, result.cause});
    }
  }

  std::chrono::milliseconds timeOut_;
  std::optional<CLLocation> location_;
  std::optional<NSDate> refusedAt_;
  std::shared_ptr<Search> search_;
};

}  // namespace

std::unique_ptr<platform::CLLocationManager> GeoclueLocationService::locationManager() {
  return std::make_unique<GeoclueManager>(timeOut_);
}

}  // namespace lumenquest::adapters
