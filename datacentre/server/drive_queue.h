#pragma once

#include "server/json_members.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace datacentre {

/// Carries scripts from the control interface to the one page that polls for them, and the results back. The newest
/// page load is the one that counts; older ones are told to stop. Any thread.
class DriveQueue {
  public:
    using Milliseconds = std::chrono::milliseconds;

    struct Script {
        std::uint64_t id;
        std::string text;
    };
    enum class PollKind { script, idle, replaced };
    struct Poll {
        PollKind kind;
        Script script; ///< for PollKind::script
    };
    struct Outcome {
        Json result;
        std::optional<std::string> error;
        bool timedOut = false;
    };
    struct Pages {
        std::size_t polling;
        std::string id;
        std::size_t loads;
    };

    /// The page's side: waits for a script while `clientIsThere` holds.
    [[nodiscard]] Poll next(const std::string& page, Milliseconds patience,
                            const std::function<bool()>& clientIsThere);
    /// False when nobody waits for that result any more.
    bool finish(std::uint64_t id, Json result, std::optional<std::string> error);

    /// The control side: waits until a page has run the script.
    [[nodiscard]] Outcome run(const std::string& script, Milliseconds timeout);
    [[nodiscard]] Pages pages() const;

    /// Lets every waiter go; nothing waits any more afterwards.
    void close();

  private:
    struct Job {
        std::string text;
        bool handedOut = false;
        std::optional<Outcome> outcome;
    };

    void adopt(const std::string& page);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool closed_ = false;
    std::string page_;
    std::set<std::string> replacedPages_;
    std::size_t loads_ = 0;
    std::size_t polling_ = 0;
    std::uint64_t lastId_ = 0;
    std::map<std::uint64_t, Job> jobs_;
};

} // namespace datacentre
