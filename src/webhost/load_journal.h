#pragma once

#include "platform/result.h"

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace lumora {

/// For a web engine that names its navigations: follows them to tell the page's failures from the consequences of what
/// the host did itself. Such an engine reports a load that the host replaced, or that the navigation policy cancelled, as
/// a failed one. Addresses are in the engine's own form. Main thread.
class LoadJournal {
  public:
    using Navigation = const void*; ///< the engine's name for one; may come again when that one is over

    /// The host has asked for a load; the engine asks the navigation policy about it next.
    /// @param written  the address as the host wrote it
    void hostLoads(Navigation navigation, std::string address, std::string written);

    /// What is to become of the host's wish for a page that stands by itself, such as a local one.
    enum class Wish { load, nothing, stopLoading };

    /// The host wishes for such a page, which is not loaded again: it may be on its way already, or stand, and then only what was
    /// to replace it is given up.
    /// @param isThatPage  whether an address is the page's
    [[nodiscard]] Wish hostWishesFor(const std::function<bool(const std::string& address)>& isThatPage);

    /// The host gives up what is under way.
    void hostWithdraws();

    /// The address to judge for the main frame. The engine lower-cases a server's name, which the policy would not know
    /// again: the host's own load is judged as it was written.
    [[nodiscard]] std::string asWritten(const std::string& address) const;

    /// What the navigation policy answered for the main frame.
    void policyDecided(const std::string& address, bool allowed);

    void started(Navigation navigation);
    void committed(Navigation navigation, std::string address);

    /// The failure as the host is to be told, with its address; absent when it is not the page's own.
    [[nodiscard]] std::optional<platform::Error> failed(Navigation navigation, platform::Error failure);

    /// The page's process has gone, and with it everything that was under way; the address that it showed or was to show.
    [[nodiscard]] std::string processEnded();

    /// The address of the host's newest load that is not shown yet, or empty.
    [[nodiscard]] const std::string& awaited() const { return awaited_; }

    /// The one or, when there is none, the other.
    [[nodiscard]] const std::string& newest() const { return awaited_.empty() ? standing_ : awaited_; }

    /// The address of the page that stands, or empty.
    [[nodiscard]] const std::string& standing() const { return standing_; }

  private:
    void replace(Navigation navigation);
    void forgetHosts();

    Navigation hosts_ = nullptr;    ///< the host's newest, until it is shown, refused or fails
    bool hostsMayBegin_ = false;    ///< the policy has allowed it
    Navigation underWay_ = nullptr; ///< the newest that began, of anyone
    std::string awaited_;
    std::string written_; ///< the awaited one as the host wrote it
    std::string standing_;
    std::set<Navigation> replaced_;
    bool policyCancelled_ = false; ///< its failure, if one arrives, is not the page's
};

} // namespace lumora
