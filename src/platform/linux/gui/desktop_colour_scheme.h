#pragma once

#include "platform/linux/glib_handles.h"

#include <gtk/gtk.h>

namespace lumora::platform::linux_backend {

/// Makes the window dark while the desktop asks applications to be: the toolkit by itself goes by the name of its theme
/// only. The page follows the toolkit. Where nobody answers for the desktop, nothing changes, and nothing waits. Main
/// thread.
class DesktopColourScheme {
  public:
    explicit DesktopColourScheme(GtkSettings* settings);
    ~DesktopColourScheme();
    DesktopColourScheme(const DesktopColourScheme&) = delete;
    DesktopColourScheme& operator=(const DesktopColourScheme&) = delete;

  private:
    static void connected(GObject* source, GAsyncResult* result, gpointer self);
    static void answered(GObject* connection, GAsyncResult* result, gpointer self);
    static void changed(GDBusConnection* connection, const char* sender, const char* path,
                        const char* interface, const char* signal, GVariant* parameters, gpointer self);

    void apply(GVariant* value);

    GtkSettings* settings_;
    gboolean darkAnyway_ = FALSE; ///< what the user's own settings of the toolkit say
    ObjectRef<GCancellable> cancellable_ = ObjectRef<GCancellable>::adopt(g_cancellable_new());
    ObjectRef<GDBusConnection> connection_;
    guint subscription_ = 0;
};

} // namespace lumora::platform::linux_backend
