#include "webhost/load_journal.h"

#include <utility>

namespace lumora {

void LoadJournal::hostLoads(Navigation navigation, std::string address) {
    if (hosts_ != underWay_)
        replace(hosts_); // the engine never comes to begin it
    replaced_.erase(navigation);
    hosts_ = navigation;
    awaited_ = std::move(address);
}

void LoadJournal::hostWithdraws() {
    replace(hosts_);
    replace(underWay_);
    forgetHosts();
}

void LoadJournal::policyDecided(const std::string& address, bool allowed) {
    policyCancelled_ = !allowed;
    if (hosts_ == nullptr || address != awaited_)
        return;
    if (!allowed)
        forgetHosts();
    else if (underWay_ != hosts_)
        replace(underWay_); // the engine stops it from now on
}

void LoadJournal::started(Navigation navigation) {
    policyCancelled_ = false;
    underWay_ = navigation;
}

void LoadJournal::committed(Navigation navigation, std::string address) {
    standing_ = std::move(address);
    replaced_.clear(); // whatever came before is over, and its name may come again
    if (navigation == hosts_)
        forgetHosts();
}

bool LoadJournal::failed(Navigation navigation, Failure failure) {
    if (navigation == hosts_)
        forgetHosts();
    if (navigation == underWay_)
        underWay_ = nullptr;
    const bool isReplaced = replaced_.erase(navigation) != 0;
    return !isReplaced && !(failure == Failure::interruptedByPolicy && policyCancelled_);
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
    awaited_.clear();
}

} // namespace lumora
