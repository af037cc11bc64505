#pragma once

#include <deque>
#include <string>

namespace lumora::platform::linux_backend {

/// Follows the view's loads to tell the page's failures from the consequences of what the host did itself: the engine
/// reports a load that the host replaced, or that the navigation policy cancelled, as a failed one. Addresses are those
/// of the engine's own form. Main thread.
class LoadTracker {
  public:
    enum class Ownership { notHosts, hosts, withdrawn };
    enum class Withdrawal { nothingToStop, stopEngine };
    enum class FailureKind {
        cancelled,
        cancelledForFilter, ///< by a navigation of the page's own that the filter then stops
        interruptedByPolicy,
        blockedByFilter,
        other,
    };
    enum class Verdict { pageFailed, replacedByHost, cancelledByPolicy };

    /// The host asks for a load; what is under way is replaced.
    void hostLoads(const std::string& uri);

    /// The host gives up what is under way, its own loads that the engine has not yet asked about included.
    [[nodiscard]] Withdrawal hostWithdraws();

    /// The engine asks about a navigation of the kind that the host's own loads have. A withdrawn one must not go on.
    [[nodiscard]] Ownership navigationAsked(const std::string& uri);

    /// The navigation policy cancelled this; its failure, if one arrives, is not the page's.
    void policyCancelled(const std::string& uri) { policyCancelled_ = uri; }

    void started() { phase_ = Phase::provisional; }
    void committed();
    void finished();

    /// The page that stands is still coming, and nothing is under way to replace it.
    [[nodiscard]] bool pageIsComing() const { return phase_ == Phase::committed; }

    /// The page that has just been committed came in another process. What the former one was still to ask about is gone
    /// with it.
    /// @return the host's newest load, if it is among that; else empty.
    [[nodiscard]] std::string processChanged();

    /// The engine loads nothing any more, and the page that stands has this address.
    /// @return whether the host's newest load, now over, led to another place in the page that stood.
    [[nodiscard]] bool arrivedUnbegun(const std::string& uri);

    [[nodiscard]] Verdict failed(FailureKind kind, const std::string& uri);

    /// The page's process has gone, and with it everything that was under way.
    void reset();

    /// The host's newest load that has not yet been shown, or empty.
    [[nodiscard]] const std::string& awaited() const { return awaited_; }

  private:
    enum class Phase { idle, decided, provisional, committed };

    struct Asked {
        std::string uri;
        bool withdrawn = false;
    };

    Phase phase_ = Phase::idle;
    std::deque<Asked> asked_; ///< the host's loads that the engine has not asked about yet
    std::string awaited_;
    int replaced_ = 0; ///< cancelled loads whose report is still to come
    std::string policyCancelled_;
};

} // namespace lumora::platform::linux_backend
