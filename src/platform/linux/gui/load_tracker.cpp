#include "platform/linux/gui/load_tracker.h"

#include <algorithm>

namespace lumora::platform::linux_backend {

void LoadTracker::hostLoads(const std::string& uri) {
    // The engine stops the older load by itself and reports that as its failure.
    static_cast<void>(hostWithdraws());
    asked_.push_back({uri});
    awaited_ = uri;
}

LoadTracker::Withdrawal LoadTracker::hostWithdraws() {
    for (Asked& load : asked_)
        load.withdrawn = true;
    awaited_.clear();
    if (phase_ == Phase::idle)
        return Withdrawal::nothingToStop;
    phase_ = Phase::idle;
    ++replaced_;
    return Withdrawal::stopEngine;
}

LoadTracker::Ownership LoadTracker::navigationAsked(const std::string& uri) {
    const auto load = std::find_if(asked_.begin(), asked_.end(),
                                   [&](const Asked& candidate) { return candidate.uri == uri; });
    if (load == asked_.end())
        return Ownership::notHosts;
    const bool withdrawn = load->withdrawn;
    asked_.erase(asked_.begin(), std::next(load)); // asked about in order: an older one never will be
    if (withdrawn)
        return Ownership::withdrawn;
    phase_ = Phase::decided;
    return Ownership::hosts;
}

void LoadTracker::committed() {
    phase_ = Phase::committed;
    replaced_ = 0;
    policyCancelled_.clear();
    if (asked_.empty())
        awaited_.clear();
}

void LoadTracker::finished() {
    // A replaced load's end arrives while its successor is already under way.
    if (phase_ == Phase::committed)
        phase_ = Phase::idle;
}

std::string LoadTracker::processChanged() {
    asked_.clear();
    return awaited_;
}

bool LoadTracker::arrivedUnbegun(const std::string& uri) {
    if (phase_ != Phase::decided || !asked_.empty() || uri != awaited_)
        return false;
    phase_ = Phase::idle;
    awaited_.clear();
    return true;
}

LoadTracker::Verdict LoadTracker::failed(FailureKind kind, const std::string& uri) {
    const bool isCancelled = kind == FailureKind::cancelled || kind == FailureKind::cancelledForFilter;
    if (isCancelled && replaced_ > 0) {
        --replaced_;
        return Verdict::replacedByHost;
    }
    phase_ = Phase::idle;
    if (asked_.empty())
        awaited_.clear();
    if (kind == FailureKind::blockedByFilter || kind == FailureKind::cancelledForFilter ||
        (kind == FailureKind::interruptedByPolicy && uri == policyCancelled_)) {
        policyCancelled_.clear();
        return Verdict::cancelledByPolicy;
    }
    return Verdict::pageFailed;
}

void LoadTracker::reset() { *this = LoadTracker(); }

} // namespace lumora::platform::linux_backend
