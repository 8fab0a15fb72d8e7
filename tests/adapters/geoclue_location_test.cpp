// The location adapter against a GeoClue of the test's own, on a private bus.

#include "adapters/geoclue_location.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "adapters/glib_main_queue.h"
#include "widget_world.h"

namespace lumenquest::adapters {
namespace {

using platform::CLLocation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Status = platform::CLAuthorizationStatus;

/// The address of a bus that lives as long as the process; empty where none can be started. GLib
/// keeps one connection to the system's bus for good, so there can be no second one.
const std::string& PrivateBus() {
  static const std::string address = [] {
    char* const daemon = g_find_program_in_path("dbus-daemon");
    if (daemon == nullptr) return std::string();
    g_free(daemon);
    GTestDBus* const bus = g_test_dbus_new(G_TEST_DBUS_NONE);
    g_test_dbus_up(bus);  // a process beside this one ends it after this one
    std::string started = g_test_dbus_get_bus_address(bus);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", started.c_str(), 1);
    return started;
  }();
  return address;
}

/// As much of the service as its clients use.
class FakeGeoclue {
 public:
  enum class Answer { found, denied, silence };

  explicit FakeGeoclue(Answer howToAnswer) : answer(howToAnswer) {
    connection_ = g_dbus_connection_new_for_address_sync(
        PrivateBus().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(kInterfaces, nullptr);
    static const GDBusInterfaceVTable kTable{Call, Get, Set, {}};
    const char* const paths[] = {kManager, kClient, kLocation};
    for (int i = 0; i < 3; ++i) {
      g_dbus_connection_register_object(connection_, paths[i], node->interfaces[i], &kTable, this,
                                        nullptr, nullptr);
    }
    g_dbus_node_info_unref(node);
    GVariant* const reply = g_dbus_connection_call_sync(
        connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.freedesktop.GeoClue2", 4u), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    g_variant_unref(reply);
  }
  ~FakeGeoclue() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
  }
  FakeGeoclue(const FakeGeoclue&) = delete;
  FakeGeoclue& operator=(const FakeGeoclue&) = delete;

  Answer answer;
  /// Seconds since 1970 at which the position was found; 0: unknown.
  guint64 measuredAt = 0;
  int starts = 0;
  /// Clients that were made and neither stopped nor deleted: for these the receiver stays on.
  int clients = 0;
  std::string desktopId;

 private:
  static constexpr const char* kManager = "/org/freedesktop/GeoClue2/Manager";
  static constexpr const char* kClient = "/org/freedesktop/GeoClue2/Client/1";
  static constexpr const char* kLocation = "/org/freedesktop/GeoClue2/Client/1/Location/0";
  static constexpr const char* kInterfaces = R"(<node>
    <interface name='org.freedesktop.GeoClue2.Manager'>
      <method name='GetClient'><arg type='o' direction='out'/></method>
      <method name='CreateClient'><arg type='o' direction='out'/></method>
      <method name='DeleteClient'><arg type='o' direction='in'/></method>
    </interface>
    <interface name='org.freedesktop.GeoClue2.Client'>
      <method name='Start'/>
      <method name='Stop'/>
      <signal name='LocationUpdated'><arg type='o'/><arg type='o'/></signal>
      <property name='DesktopId' type='s' access='readwrite'/>
      <property name='RequestedAccuracyLevel' type='u' access='readwrite'/>
    </interface>
    <interface name='org.freedesktop.GeoClue2.Location'>
      <property name='Latitude' type='d' access='read'/>
      <property name='Longitude' type='d' access='read'/>
      <property name='Accuracy' type='d' access='read'/>
      <property name='Altitude' type='d' access='read'/>
      <property name='Timestamp' type='(tt)' access='read'/>
    </interface></node>)";

  static void Call(GDBusConnection* connection, const char*, const char*, const char* interface,
                   const char* method, GVariant*, GDBusMethodInvocation* call, gpointer data) {
    auto& self = *static_cast<FakeGeoclue*>(data);
    const std::string name = method;
    if (name == "GetClient" || name == "CreateClient") {
      ++self.clients;
      g_dbus_method_invocation_return_value(call, g_variant_new("(o)", kClient));
      return;
    }
    if (name == "DeleteClient") --self.clients;
    if (name == "Start") {
      ++self.starts;
      if (self.answer == Answer::denied) {
        g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED,
                                              "'lumenquest' disallowed");
        return;
      }
    }
    g_dbus_method_invocation_return_value(call, nullptr);
    if (name == "Start" && self.answer == Answer::found) {
      g_dbus_connection_emit_signal(connection, nullptr, kClient, interface, "LocationUpdated",
                                    g_variant_new("(oo)", "/", kLocation), nullptr);
      // A better one follows while the first is looked at.
      g_dbus_connection_emit_signal(connection, nullptr, kClient, interface, "LocationUpdated",
                                    g_variant_new("(oo)", kLocation, kLocation), nullptr);
    }
  }
  static GVariant* Get(GDBusConnection*, const char*, const char*, const char*,
                       const char* property, GError**, gpointer data) {
    const auto& self = *static_cast<FakeGeoclue*>(data);
    const std::string name = property;
    if (name == "Latitude") return g_variant_new_double(46.25);
    if (name == "Longitude") return g_variant_new_double(-14.5);
    if (name == "Timestamp")
      return g_variant_new("(tt)", self.measuredAt, guint64{self.measuredAt == 0 ? 0u : 500000u});
    if (name == "DesktopId") return g_variant_new_string("");
    if (name == "RequestedAccuracyLevel") return g_variant_new_uint32(8);
    return g_variant_new_double(0.0);
  }
  static gboolean Set(GDBusConnection*, const char*, const char*, const char*, const char* property,
                      GVariant* value, GError**, gpointer data) {
    auto& self = *static_cast<FakeGeoclue*>(data);
    if (std::string(property) == "DesktopId") {
      self.desktopId = g_variant_get_string(value, nullptr);
    }
    return TRUE;
  }

  GDBusConnection* connection_ = nullptr;
};

class Told final : public platform::CLLocationManagerDelegate {
 public:
  void didUpdateLocations(const std::vector<CLLocation>& locations) override {
    for (const CLLocation& one : locations) {
      what.push_back(std::to_string(one.coordinate.latitude) + "," +
                     std::to_string(one.coordinate.longitude));
    }
  }
  void didFailWithError(const platform::NSError& error) override {
    what.push_back("failed: " + error.key);
  }
  void locationManagerDidChangeAuthorization() override { what.push_back("authorization"); }
  std::vector<std::string> what;
};

class GeoclueLocation : public ::testing::Test {
 protected:
  void SetUp() override {
    if (PrivateBus().empty()) {
      GTEST_SKIP() << "NOT TESTED: there is no dbus-daemon; script/bootstrap test installs one";
    }
    manager_->setDelegate(told_);
  }
  void Run(double seconds) {
    bool isOver = false;
    g_timeout_add(
        static_cast<guint>(seconds * 1000.0),
        [](gpointer over) -> gboolean {
          *static_cast<bool*>(over) = true;
          return G_SOURCE_REMOVE;
        },
        &isOver);
    GlibMainQueue::runUntil([&] { return isOver; });
  }
  /// Asks, and hands over what the delegate is told then.
  std::vector<std::string> Ask() {
    manager_->requestLocation();
    const gint64 start = g_get_monotonic_time();
    while (told_->what.empty() && g_get_monotonic_time() - start < 10 * G_USEC_PER_SEC) {
      Run(0.01);
    }
    Run(0.05);
    return std::exchange(told_->what, {});
  }

  testing::WidgetWorld world_;
  std::shared_ptr<Told> told_ = std::make_shared<Told>();
  std::unique_ptr<platform::CLLocationManager> manager_ =
      GeoclueLocationService(std::chrono::milliseconds(300)).locationManager();
};

const char* const kFound = "46.250000,-14.500000";

TEST_F(GeoclueLocation, Found) {
  FakeGeoclue service(FakeGeoclue::Answer::found);
  EXPECT_EQ(manager_->location(), std::nullopt);
  EXPECT_THAT(Ask(), ElementsAre(kFound));
  EXPECT_EQ(manager_->location(), (CLLocation{{46.25, -14.5}, world_.clock->instant}));
  EXPECT_EQ(service.desktopId, "lumenquest");
  // A position that the service has known for a while is as old as it is.
  service.measuredAt = 1'700'000'000;
  EXPECT_THAT(Ask(), ElementsAre(kFound));
  EXPECT_EQ(manager_->location()->timestamp,
            platform::NSDate::dateWithTimeIntervalSince1970(1'700'000'000.5));
  // Asking twice before the answer is asking once.
  manager_->requestLocation();
  EXPECT_THAT(Ask(), ElementsAre(kFound));
  EXPECT_EQ(service.starts, 3);
  EXPECT_EQ(service.clients, 0);
}

TEST_F(GeoclueLocation, RefusedForFiveMinutes) {
  FakeGeoclue service(FakeGeoclue::Answer::denied);
  EXPECT_EQ(manager_->authorizationStatus(), Status::authorizedWhenInUse);
  EXPECT_THAT(Ask(), ElementsAre("authorization"));
  world_.clock->Advance(299.9);
  EXPECT_EQ(manager_->authorizationStatus(), Status::denied);
  EXPECT_FALSE(manager_->isAuthorizedForWidgetUpdates());
  world_.clock->Advance(0.1);
  EXPECT_EQ(manager_->authorizationStatus(), Status::authorizedWhenInUse);
  EXPECT_TRUE(manager_->isAuthorizedForWidgetUpdates());
  service.answer = FakeGeoclue::Answer::found;
  EXPECT_THAT(Ask(), ElementsAre(kFound));
  EXPECT_EQ(service.clients, 0);
}

TEST_F(GeoclueLocation, WithoutAService) {
  EXPECT_THAT(Ask(), ElementsAre("failed: error_location_service"));
  EXPECT_EQ(manager_->authorizationStatus(), Status::authorizedWhenInUse);
}

TEST_F(GeoclueLocation, WithoutASky) {
  {
    FakeGeoclue service(FakeGeoclue::Answer::silence);
    EXPECT_THAT(Ask(), ElementsAre("failed: error_location_timeout"));
    EXPECT_EQ(service.starts, 1);
    EXPECT_EQ(service.clients, 0);
    service.answer = FakeGeoclue::Answer::found;
    EXPECT_THAT(Ask(), ElementsAre(kFound));
    service.answer = FakeGeoclue::Answer::silence;
    manager_->requestLocation();
    Run(0.1);
  }
  // The service ends while it searches.
  Run(0.5);
  EXPECT_THAT(std::exchange(told_->what, {}),
              ElementsAre(::testing::StartsWith("failed: error_location_")));
}

TEST_F(GeoclueLocation, WhoIsGoneIsNotAnswered) {
  for (const auto answer :
       {FakeGeoclue::Answer::found, FakeGeoclue::Answer::denied, FakeGeoclue::Answer::silence}) {
    // Before the first message is out, and while the service searches.
    for (const double wait : {0.0, 0.1}) {
      FakeGeoclue service(answer);
      auto leaving = GeoclueLocationService(std::chrono::milliseconds(200)).locationManager();
      const auto told = std::make_shared<Told>();
      leaving->setDelegate(told);
      leaving->requestLocation();
      if (wait > 0.0) Run(wait);
      told->what.clear();
      leaving.reset();
      Run(0.3);
      EXPECT_THAT(told->what, IsEmpty());
      EXPECT_EQ(service.clients, 0);
    }
  }
  // A manager that outlives its delegate answers nobody.
  FakeGeoclue service(FakeGeoclue::Answer::found);
  manager_->requestLocation();
  told_.reset();
  Run(0.2);
  EXPECT_NE(manager_->location(), std::nullopt);
}

}  // namespace
}  // namespace lumenquest::adapters
