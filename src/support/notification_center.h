#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace lumora {

/// The process-local notification centre. Posting is synchronous: observers run on the posting thread, in the order
/// in which they were added, before `post` returns. Callable from any thread.
class NotificationCenter {
  public:
    /// Told who posted; nullptr for nobody.
    using Handler = std::function<void(const void* sender)>;

    [[nodiscard]] static NotificationCenter& defaultCenter();

    /// Observes a name, whoever posts it. The observer's address is its identity.
    void addObserver(const void* observer, const std::string& name, Handler handler);

    /// Forgets the observer for every name. A handler that is running may call this for itself.
    void removeObserver(const void* observer);

    /// @param sender identifies the poster; nullptr for none.
    void post(const std::string& name, const void* sender);

  private:
    struct Observation {
        const void* observer;
        Handler handler;
    };

    std::mutex mutex_;
    std::map<std::string, std::vector<Observation>> observations_;
};

} // namespace lumora
