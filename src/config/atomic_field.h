#pragma once

#include <mutex>
#include <utility>

namespace lumora {

/// One field of the session record: a reader on any thread sees a whole value, never half of a write.
template <class T>
class AtomicField {
  public:
    [[nodiscard]] T get() const {
        std::lock_guard lock(mutex_);
        return value_;
    }

    void set(T value) {
        std::lock_guard lock(mutex_);
        std::swap(value_, value);
    }

  private:
    mutable std::mutex mutex_;
    T value_{};
};

} // namespace lumora
