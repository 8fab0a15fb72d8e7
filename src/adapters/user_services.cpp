#include "adapters/user_services.h"

#include <gio/gio.h>

namespace lumenquest::adapters {

bool startUserService(const std::string& unit) {
  GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (bus == nullptr) return false;
  constexpr int kPatienceMilliseconds = 5000;
  GVariant* const job = g_dbus_connection_call_sync(
      bus, "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
      "org.freedesktop.systemd1.Manager", "StartUnit",
      g_variant_new("(ss)", unit.c_str(), "replace"), G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NONE,
      kPatienceMilliseconds, nullptr, nullptr);
  g_object_unref(bus);
  if (job == nullptr) return false;
  g_variant_unref(job);
  return true;
}

}  // namespace lumenquest::adapters
