#include "platform/linux/gui/rendering.h"

#include <glib.h>

namespace lumora::platform::linux_backend {

namespace {

struct Variable {
    const char* name;
    const char* value;
};

constexpr Variable kVariables[] = {{"GSK_RENDERER", "cairo"}, {"GDK_DEBUG", "gl-disable"}};

} // namespace

void preferSoftwareRendering() {
    for (const Variable& variable : kVariables)
        g_setenv(variable.name, variable.value, FALSE);
}

} // namespace lumora::platform::linux_backend
