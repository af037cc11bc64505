#include "server/drive_queue.h"

#include <algorithm>

namespace datacentre {

namespace {

// A page that has gone gives no signal here; its connection is looked at this often.
constexpr std::chrono::milliseconds kLookEvery{100};

} // namespace

DriveQueue::Poll DriveQueue::next(const std::string& page, Milliseconds patience,
                                  const std::function<bool()>& clientIsThere) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    std::unique_lock lock(mutex_);
    adopt(page);
    const auto leave = [this, &page](PollKind kind, Script script = {}) {
        if (page == page_)
            --polling_;
        return Poll{kind, std::move(script)};
    };
    if (page == page_)
        ++polling_;
    while (!closed_) {
        if (page != page_)
            return {PollKind::replaced, {}};
        if (!clientIsThere() || std::chrono::steady_clock::now() >= deadline)
            return leave(PollKind::idle);
        const auto waiting = std::find_if(jobs_.begin(), jobs_.end(), [](const auto& job) {
            return !job.second.handedOut && !job.second.outcome;
        });
        if (waiting != jobs_.end()) {
            waiting->second.handedOut = true;
            return leave(PollKind::script, {waiting->first, waiting->second.text});
        }
        changed_.wait_for(lock, kLookEvery);
    }
    return leave(PollKind::idle);
}

void DriveQueue::adopt(const std::string& page) {
    if (page == page_ || replacedPages_.contains(page))
        return;
    if (!page_.empty())
        replacedPages_.insert(page_);
    page_ = page;
    polling_ = 0;
    ++loads_;
    for (auto& [id, job] : jobs_)
        if (job.handedOut && !job.outcome)
            job.outcome = Outcome{nullptr, "the page was replaced"};
    changed_.notify_all();
}

bool DriveQueue::finish(std::uint64_t id, Json result, std::optional<std::string> error) {
    const std::lock_guard lock(mutex_);
    const auto job = jobs_.find(id);
    if (job == jobs_.end() || job->second.outcome)
        return false;
    job->second.outcome = Outcome{std::move(result), std::move(error)};
    changed_.notify_all();
    return true;
}

DriveQueue::Outcome DriveQueue::run(const std::string& script, Milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::unique_lock lock(mutex_);
    const auto job = jobs_.emplace(++lastId_, Job{script, false, std::nullopt}).first;
    changed_.notify_all();
    changed_.wait_until(lock, deadline, [&] { return closed_ || job->second.outcome; });
    Outcome outcome = job->second.outcome.value_or(Outcome{nullptr, "timed out", true});
    jobs_.erase(job);
    return outcome;
}

DriveQueue::Pages DriveQueue::pages() const {
    const std::lock_guard lock(mutex_);
    return {polling_, page_, loads_};
}

void DriveQueue::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
}

} // namespace datacentre
