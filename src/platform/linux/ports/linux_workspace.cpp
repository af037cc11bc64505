#include "platform/linux/ports/linux_workspace.h"

#include "platform/linux/ports/default_handler.h"
#include "platform/posix/posix_error.h"

#include <cerrno>
#include <utility>

namespace lumora::platform::linux_backend {

LinuxWorkspace::LinuxWorkspace(Bundles& bundles, HomeFolder home, Environment environment)
    : bundles_(bundles), home_(std::move(home)), environment_(std::move(environment)) {}

bool LinuxWorkspace::openUrl(const std::string& url) { return openInDefaultHandler(url, environment_); }

Result<void> LinuxWorkspace::launchApplication(const std::string& bundlePath,
                                               const std::vector<std::string>& arguments) {
    const auto entry = bundles_.infoDictionaryValue(bundlePath, "CFBundleExecutable");
    const auto* name = entry ? entry->as<std::string>() : nullptr;
    if (name == nullptr)
        return posix_backend::posixError(ENOENT, bundlePath);
    // The name comes from a downloaded image: it names a file of the bundle's own folder, nothing else.
    if (name->empty() || *name == "." || *name == ".." ||
        name->find_first_of(std::string("/\0", 2)) != std::string::npos)
        return posix_backend::posixError(EINVAL, bundlePath);

    ChildProcess child;
    child.executable = home_.resolve(bundlePath + "/Contents/MacOS/" + *name);
    child.arguments = arguments;
    child.environment = environment_;
    child.detached = true;
    const Result<pid_t> started = spawn(child);
    if (!started)
        return started.error();
    reapInBackground(started.value());
    return {};
}

} // namespace lumora::platform::linux_backend
