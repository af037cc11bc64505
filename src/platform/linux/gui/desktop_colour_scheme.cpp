#include "platform/linux/gui/desktop_colour_scheme.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kNamespace = "org.freedesktop.appearance";
constexpr const char* kKey = "color-scheme";
constexpr const char* kPreferDark = "gtk-application-prefer-dark-theme";

constexpr guint32 kDark = 1; // 0: no preference, 2: light

using VariantPointer = std::unique_ptr<GVariant, Release<g_variant_unref>>;

/// The answer to a question wraps its value once more than the news of a change.
VariantPointer unwrapped(GVariant* value) {
    VariantPointer inner(g_variant_ref(value));
    while (g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_VARIANT) != FALSE)
        inner.reset(g_variant_get_variant(inner.get()));
    return inner;
}

} // namespace

DesktopColourScheme::DesktopColourScheme(GtkSettings* settings) : settings_(settings) {
    g_object_get(settings, kPreferDark, &darkAnyway_, nullptr);
    g_bus_get(G_BUS_TYPE_SESSION, cancellable_.get(), &DesktopColourScheme::connected, this);
}

DesktopColourScheme::~DesktopColourScheme() {
    g_cancellable_cancel(cancellable_.get());
    if (subscription_ != 0)
        g_dbus_connection_signal_unsubscribe(connection_.get(), subscription_);
}

void DesktopColourScheme::connected(GObject*, GAsyncResult* result, gpointer data) {
    GError* failure = nullptr;
    auto connection = ObjectRef<GDBusConnection>::adopt(g_bus_get_finish(result, &failure));
    if (const ErrorPointer error{failure})
        return; // no session bus, or this object is gone
    auto* self = static_cast<DesktopColourScheme*>(data);
    self->connection_ = std::move(connection);
    self->subscription_ = g_dbus_connection_signal_subscribe(
        self->connection_.get(), kPortal, kInterface, "SettingChanged", kPath, kNamespace,
        G_DBUS_SIGNAL_FLAGS_NONE, &DesktopColourScheme::changed, self, nullptr);
    g_dbus_connection_call(self->connection_.get(), kPortal, kPath, kInterface, "Read",
                           g_variant_new("(ss)", kNamespace, kKey), G_VARIANT_TYPE("(v)"),
                           G_DBUS_CALL_FLAGS_NONE, -1, self->cancellable_.get(),
                           &DesktopColourScheme::answered, self);
}

void DesktopColourScheme::answered(GObject* connection, GAsyncResult* result, gpointer self) {
    GError* failure = nullptr;
    const VariantPointer answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure));
    if (const ErrorPointer error{failure})
        return;
    const VariantPointer value(g_variant_get_child_value(answer.get(), 0));
    static_cast<DesktopColourScheme*>(self)->apply(value.get());
}

void DesktopColourScheme::changed(GDBusConnection*, const char*, const char*, const char*, const char*,
                                  GVariant* parameters, gpointer self) {
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)")) == FALSE)
        return;
    const char* key = nullptr;
    g_variant_get_child(parameters, 1, "&s", &key);
    const VariantPointer value(g_variant_get_child_value(parameters, 2));
    if (g_str_equal(key, kKey) != FALSE)
        static_cast<DesktopColourScheme*>(self)->apply(value.get());
}

void DesktopColourScheme::apply(GVariant* value) {
    const VariantPointer scheme = unwrapped(value);
    if (g_variant_is_of_type(scheme.get(), G_VARIANT_TYPE_UINT32) == FALSE)
        return;
    const bool dark = g_variant_get_uint32(scheme.get()) == kDark;
    g_object_set(settings_, kPreferDark, dark ? TRUE : darkAnyway_, nullptr);
}

} // namespace lumora::platform::linux_backend
