#include "platform/linux/glib_handles.h"
#include "platform/linux/ports/linux_distributed_notifications.h"
#include "support/linux_session_bus.h"
#include "support/temporary_folder.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace lumora::contract {
namespace {

using platform::linux_backend::LinuxDistributedNotifications;
using platform::linux_backend::ObjectRef;

/// Another process's ear on the bus: whatever is posted, as text.
class Listener {
  public:
    explicit Listener(const std::string& address)
        : connection_(ObjectRef<GDBusConnection>::adopt(g_dbus_connection_new_for_address_sync(
              address.c_str(),
              static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr))) {
        g_dbus_connection_signal_subscribe(connection_.get(), nullptr, nullptr, nullptr, nullptr, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, &Listener::heard, this, nullptr);
        // An answered call makes sure that the bus knows the subscription.
        const auto answer = g_dbus_connection_call_sync(connection_.get(), "org.freedesktop.DBus", "/",
                                                        "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr,
                                                        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        g_variant_unref(answer);
    }

    std::string next() {
        const bool came = eventually([&] {
            g_main_context_iteration(nullptr, FALSE);
            return !heard_.empty();
        });
        return came ? heard_ : "nothing";
    }

  private:
    static void heard(GDBusConnection*, const gchar*, const gchar* path, const gchar* interface,
                      const gchar* member, GVariant* parameters, gpointer self) {
        if (std::string(interface).starts_with("org.freedesktop."))
            return;
        const platform::linux_backend::CharPointer printed(g_variant_print(parameters, TRUE));
        static_cast<Listener*>(self)->heard_ = std::string(path) + " " + interface + "." + member + " " +
                                               g_variant_get_type_string(parameters) + " " + printed.get();
    }

    ObjectRef<GDBusConnection> connection_;
    std::string heard_;
};

/// The bus behind the broadcast.
class LinuxDistributedNotificationsContract : public testing::Test {
  protected:
    TemporaryFolder folder_;
    LinuxDistributedNotifications notifications_;
};

TEST_F(LinuxDistributedNotificationsContract, aPostIsASignalThatCarriesNameAndPayload) {
    const SessionBus bus(folder_ / "bus");
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
    Listener listener(bus.address());

    notifications_.post("SendSessionStatusToTesselLumora", "status", 0);

    EXPECT_EQ("/com/ovra/tessel/Lumora com.ovra.tessel.Lumora.Notification.Posted (sa{sv}) "
              "('SendSessionStatusToTesselLumora', {'status': <int64 0>})",
              listener.next());
}

TEST_F(LinuxDistributedNotificationsContract, theUsersOwnBusIsFoundWithoutAnAddress) {
    const SessionBus bus(folder_ / "bus");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
    Listener listener(bus.address());

    notifications_.post("Name", "key", -7);

    EXPECT_THAT(listener.next(), testing::HasSubstr("('Name', {'key': <int64 -7>})"));
}

TEST_F(LinuxDistributedNotificationsContract, withoutABusNothingHappensAndNoneIsStarted) {
    ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
    writeFile(folder_ / "dbus-launch", "#!/bin/sh\ntouch " + (folder_ / "launched"));
    std::filesystem::permissions(folder_ / "dbus-launch", std::filesystem::perms(0755));
    ::setenv("PATH", (folder_.path().string() + ":/usr/bin:/bin").c_str(), 1);
    ::setenv("DISPLAY", ":99", 1);
    const auto start = std::chrono::steady_clock::now();
    for (const char* address : {"", "autolaunch:", "unix:path=/nonexistent/bus", "junk"}) {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
        notifications_.post("Name", "key", 1);
    }

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "launched"));
}

TEST_F(LinuxDistributedNotificationsContract, aBusThatDoesNotAnswerHoldsTheCallerForTwoSecondsOnly) {
    const std::string path = folder_ / "mute";
    const int mute = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(0, ::bind(mute, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    ASSERT_EQ(0, ::listen(mute, 1));
    ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);

    const auto start = std::chrono::steady_clock::now();
    notifications_.post("Name", "key", 1);
    const auto took = std::chrono::steady_clock::now() - start;
    ::close(mute);

    EXPECT_GE(took, std::chrono::milliseconds(1500));
    EXPECT_LT(took, std::chrono::seconds(10));
}

} // namespace
} // namespace lumora::contract
