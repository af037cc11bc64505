#include "support/notification_center.h"

#include <algorithm>

namespace lumora {

NotificationCenter& NotificationCenter::defaultCenter() {
    static auto* center = new NotificationCenter; // outlives work that other threads still do at exit
    return *center;
}

void NotificationCenter::addObserver(const void* observer, const std::string& name, Handler handler) {
    std::lock_guard lock(mutex_);
    observations_[name].push_back({observer, std::move(handler)});
}

void NotificationCenter::removeObserver(const void* observer) {
    std::lock_guard lock(mutex_);
    for (auto& [name, observations] : observations_)
        std::erase_if(observations, [observer](const auto& entry) { return entry.observer == observer; });
}

void NotificationCenter::post(const std::string& name, const void* sender) {
    std::vector<Observation> observations; // a handler may add and remove observers
    {
        std::lock_guard lock(mutex_);
        if (const auto found = observations_.find(name); found != observations_.end())
            observations = found->second;
    }
    for (const auto& observation : observations)
        observation.handler(sender);
}

} // namespace lumora
