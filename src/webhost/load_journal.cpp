#include "webhost/load_journal.h"

#include <utility>

namespace lumora {

namespace {

// The engine's headers name neither.
bool isInterruptedByPolicy(const platform::Error& failure) {
    constexpr int kFrameLoadInterruptedByPolicyChange = 102;
    return failure.domain == "WebKitErrorDomain" && failure.code == kFrameLoadInterruptedByPolicyChange;
}

} // namespace

void LoadJournal::hostLoads(Navigation navigation, std::string address, std::string written) {
    if (hosts_ != underWay_)
        replace(hosts_); // the engine never comes to begin it
    replaced_.erase(navigation);
    hosts_ = navigation;
    hostsMayBegin_ = false;
    awaited_ = std::move(address);
    written_ = std::move(written);
}

LoadJournal::Wish LoadJournal::hostWishesFor(const std::function<bool(const std::string&)>& isThatPage) {
    if (isThatPage(awaited_))
        return Wish::nothing;
    if (!isThatPage(standing_))
        return Wish::load;
    hostWithdraws();
    return Wish::stopLoading;
}

void LoadJournal::hostWithdraws() {
    replace(hosts_);
    replace(underWay_);
    forgetHosts();
}

std::string LoadJournal::asWritten(const std::string& address) const {
    return hosts_ != nullptr && address == awaited_ ? written_ : address;
}

void LoadJournal::policyDecided(const std::string& address, bool allowed) {
    policyCancelled_ = !allowed;
    if (hosts_ == nullptr || address != awaited_)
        return;
    if (!allowed) {
        forgetHosts();
        return;
    }
    hostsMayBegin_ = true;
    if (underWay_ != hosts_)
        replace(underWay_); // the engine stops it from now on
}

void LoadJournal::started(Navigation navigation) {
    policyCancelled_ = false;
    underWay_ = navigation;
    // It is over without having begun: it only led to another place in the page that stands.
    if (hostsMayBegin_ && navigation != hosts_)
        forgetHosts();
}

void LoadJournal::committed(Navigation navigation, std::string address) {
    standing_ = std::move(address);
    replaced_.clear(); // whatever came before is over, and its name may come again
    if (navigation == hosts_)
        forgetHosts();
}

std::optional<platform::Error> LoadJournal::failed(Navigation navigation, platform::Error failure) {
    if (!failure.failingUrl && !awaited_.empty())
        failure.failingUrl = awaited_;
    if (navigation == hosts_)
        forgetHosts();
    if (navigation == underWay_)
        underWay_ = nullptr;
    const bool isReplaced = replaced_.erase(navigation) != 0;
    if (isReplaced || (policyCancelled_ && isInterruptedByPolicy(failure)))
        return std::nullopt;
    return failure;
}

std::string LoadJournal::processEnded() {
    std::string lost = newest();
    hostWithdraws();
    standing_.clear();
    return lost;
}

void LoadJournal::replace(Navigation navigation) {
    if (navigation != nullptr)
        replaced_.insert(navigation);
}

void LoadJournal::forgetHosts() {
    hosts_ = nullptr;
    hostsMayBegin_ = false;
    awaited_.clear();
    written_.clear();
}

} // namespace lumora
