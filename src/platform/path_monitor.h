#pragma once

#include <functional>
#include <memory>

namespace lumora::platform {

/// Whether requests can leave the machine at all.
enum class PathStatus { satisfied, unsatisfied };

/// Watches whether any network is usable. Main thread, but for the handler's calls.
class PathMonitor {
  public:
    virtual ~PathMonitor() = default;

    /// Called on a background thread for every path update, the first right after start. May be replaced while
    /// the monitor runs.
    virtual void setUpdateHandler(std::function<void(PathStatus)> handler) = 0;

    /// Begins watching; a second start does nothing.
    virtual void start() = 0;

    /// Ends watching for good: a cancelled monitor cannot be started again.
    virtual void cancel() = 0;
};

/// Makes path monitors. Main thread.
class PathMonitors {
  public:
    virtual ~PathMonitors() = default;
    [[nodiscard]] virtual std::unique_ptr<PathMonitor> makePathMonitor() = 0;
};

} // namespace lumora::platform
