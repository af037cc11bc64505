#include "platform/linux/glib_handles.h"
#include "support/linux_session_bus.h"
#include "support/notification_world.h"
#include "support/temporary_folder.h"

#include <gio/gio.h>

#include <cstdlib>

namespace lumora::contract {

using platform::PropertyListDictionary;
using platform::linux_backend::ObjectRef;

namespace {

using Payload = std::optional<PropertyListDictionary>;

void hear(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant* parameters,
          gpointer payload) {
    GVariantIter* entries = nullptr;
    const gchar* name = nullptr;
    g_variant_get(parameters, "(&sa{sv})", &name, &entries);
    PropertyListDictionary values;
    const gchar* key = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_loop(entries, "{&sv}", &key, &value))
        values.emplace(key, std::int64_t{g_variant_get_int64(value)});
    g_variant_iter_free(entries);
    *static_cast<Payload*>(payload) = std::move(values);
}

} // namespace

struct NotificationWorld::State {
    TemporaryFolder folder;
    SessionBus bus{folder / "bus"};
};

NotificationWorld::NotificationWorld() : state_(std::make_unique<State>()) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", state_->bus.address().c_str(), 1);
}

NotificationWorld::~NotificationWorld() { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

Payload awaitNotification(const std::string& name, const std::function<void()>& listening) {
    Payload payload;
    const auto connection =
        ObjectRef<GDBusConnection>::adopt(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    g_dbus_connection_signal_subscribe(connection.get(), nullptr, nullptr, "Posted", nullptr, name.c_str(),
                                       G_DBUS_SIGNAL_FLAGS_NONE, &hear, &payload, nullptr);
    // An answered call makes sure that the bus knows the subscription.
    const auto answer = g_dbus_connection_call_sync(connection.get(), "org.freedesktop.DBus", "/",
                                                    "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr,
                                                    G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    g_variant_unref(answer);
    listening();
    static_cast<void>(eventually([&] {
        g_main_context_iteration(nullptr, FALSE);
        return payload.has_value();
    }));
    return payload;
}

} // namespace lumora::contract
