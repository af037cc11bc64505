#pragma once

#include <functional>
#include <memory>
#include <mutex>

namespace lumora {

/// Holds a class's one instance, made on first use under a class-wide lock. The instance is never destroyed while
/// the process runs: work on other threads may still use it at exit.
template <class T>
class SharedInstance {
  public:
    /// The instance; `make` makes it when there is none yet, inside the lock (which is recursive).
    T& get(const std::function<std::unique_ptr<T>()>& make) {
        std::lock_guard lock(mutex_);
        if (!instance_)
            instance_ = make().release();
        return *instance_;
    }

    /// Lets a test begin with no instance. No other thread may be using the old one.
    void resetForTesting() {
        std::lock_guard lock(mutex_);
        delete instance_;
        instance_ = nullptr;
    }

  private:
    std::recursive_mutex mutex_;
    T* instance_ = nullptr;
};

} // namespace lumora
