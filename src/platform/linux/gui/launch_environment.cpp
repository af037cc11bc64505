#include "platform/linux/gui/launch_environment.h"

#include <glib.h>

#include <unistd.h>

namespace lumora::platform::linux_backend {

namespace {

struct Variable {
    const char* name;
    const char* value;
};

constexpr Variable kRendering[] = {{"GSK_RENDERER", "cairo"}, {"GDK_DEBUG", "gl-disable"}};

} // namespace

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        entries.emplace_back(*entry);
    return entries;
}

void preferSoftwareRendering() {
    for (const Variable& variable : kRendering)
        g_setenv(variable.name, variable.value, FALSE);
}

} // namespace lumora::platform::linux_backend
