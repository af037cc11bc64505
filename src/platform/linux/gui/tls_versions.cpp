#include "platform/linux/gui/tls_versions.h"

#include <glib.h>

namespace lumora::platform::linux_backend {

void refuseOldTls() {
    // The engine has no setting for it; its network process reads the TLS library's from the environment.
    constexpr gboolean kKeepWhatAdministratorsSet = FALSE;
    g_setenv("G_TLS_GNUTLS_PRIORITY", "NORMAL:%COMPAT:-VERS-TLS1.0:-VERS-TLS1.1", kKeepWhatAdministratorsSet);
}

} // namespace lumora::platform::linux_backend
