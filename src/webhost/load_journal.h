#pragma once

#include <set>
#include <string>

namespace lumora {

/// For a web engine that names its navigations: follows them to tell the page's failures from the consequences of what
/// the host did itself. Such an engine reports a load that the host replaced, or that the navigation policy cancelled, as
/// a failed one. Addresses are in the engine's own form. Main thread.
class LoadJournal {
  public:
    using Navigation = const void*; ///< the engine's name for one; may come again when that one is over
    enum class Failure { interruptedByPolicy, other };

    /// The host has asked for a load; the engine asks the navigation policy about it next.
    void hostLoads(Navigation navigation, std::string address);

    /// The host gives up what is under way.
    void hostWithdraws();

    /// What the navigation policy answered for the main frame.
    void policyDecided(const std::string& address, bool allowed);

    void started(Navigation navigation);
    void committed(Navigation navigation, std::string address);

    /// Whether this is the page's own failure.
    [[nodiscard]] bool failed(Navigation navigation, Failure failure);

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
    Navigation underWay_ = nullptr; ///< the newest that began, of anyone
    std::string awaited_;
    std::string standing_;
    std::set<Navigation> replaced_;
    bool policyCancelled_ = false; ///< its failure, if one arrives, is not the page's
};

} // namespace lumora
