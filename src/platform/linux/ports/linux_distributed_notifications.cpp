#include "platform/linux/ports/linux_distributed_notifications.h"

#include "platform/linux/glib_handles.h"

#include <gio/gio.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kObjectPath = "/com/ovra/tessel/Lumora";
constexpr const char* kInterface = "com.ovra.tessel.Lumora.Notification";
constexpr const char* kMember = "Posted";
constexpr std::chrono::seconds kPatience{2};

/// The address of the running session bus; empty without one. GIO's own look-up would start a bus.
std::string sessionBusAddress() {
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0')
        return std::string(address).starts_with("autolaunch:") ? std::string() : std::string(address);
    const std::string socket = std::string(g_get_user_runtime_dir()) + "/bus";
    return g_file_test(socket.c_str(), G_FILE_TEST_EXISTS) != 0 ? "unix:path=" + socket : std::string();
}

struct Message {
    std::string address;
    std::string name;
    std::string key;
    std::int64_t value;
};

// Losing a notification is not an error: every failure ends here in silence.
void send(const Message& message, GCancellable* cancellable) {
    GError* error = nullptr;
    const auto connection = ObjectRef<GDBusConnection>::adopt(g_dbus_connection_new_for_address_sync(
        message.address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable, &error));
    const ErrorPointer connecting(error);
    if (!connection)
        return;

    GVariantBuilder entries;
    g_variant_builder_init(&entries, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&entries, "{sv}", message.key.c_str(), g_variant_new_int64(message.value));
    g_dbus_connection_emit_signal(connection.get(), nullptr, kObjectPath, kInterface, kMember,
                                  g_variant_new("(sa{sv})", message.name.c_str(), &entries), nullptr);
    // Closing throws away what is still queued.
    g_dbus_connection_flush_sync(connection.get(), cancellable, nullptr);
    g_dbus_connection_close_sync(connection.get(), cancellable, nullptr);
}

} // namespace

void LinuxDistributedNotifications::post(const std::string& name, const std::string& key,
                                         std::int64_t value) {
    const Message message{sessionBusAddress(), name, key, value};
    if (message.address.empty())
        return;

    const auto sent = std::make_shared<std::promise<void>>();
    std::future<void> done = sent->get_future();
    const std::shared_ptr<GCancellable> cancellable(g_cancellable_new(), Release<g_object_unref>{});
    std::thread([message, sent, cancellable] {
        send(message, cancellable.get());
        sent->set_value();
    }).detach();
    if (done.wait_for(kPatience) == std::future_status::timeout)
        g_cancellable_cancel(cancellable.get());
}

} // namespace lumora::platform::linux_backend
