#include "platform/linux/ports/http_transport.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kIdle{60000};
constexpr milliseconds kPathPolling{250}; ///< while a request waits for a network path

// The C library and OpenSSL write to sockets that the other end may have closed.
void blockBrokenPipeSignal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

void initializeLibraryOnce() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
            throw std::runtime_error("libcurl cannot be initialized");
    });
}

} // namespace

/// What the transport and its thread share; ends with the later of them.
class HttpTransport::Loop : public std::enable_shared_from_this<Loop> {
  public:
    Loop(HttpTransferSettings settings, std::function<bool()> hasNetworkPath)
        : settings_(std::move(settings)), hasNetworkPath_(std::move(hasNetworkPath)) {
        if (!multi_)
            throw std::runtime_error("libcurl cannot be initialized");
    }

    void add(HttpRequest request, const HttpSessionConfiguration& configuration, BodyPlace place,
             std::function<void(HttpOutcome)> done) {
        auto transfer = std::make_unique<HttpTransfer>(std::move(request), configuration, place, settings_);
        const std::lock_guard lock(mutex_);
        if (!started_)
            std::thread([self = shared_from_this()] { self->run(); }).detach();
        started_ = true;
        incoming_.push_back({std::move(transfer), std::move(done)});
        curl_multi_wakeup(multi_.get());
    }

    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        curl_multi_wakeup(multi_.get());
    }

  private:
    struct Task {
        std::unique_ptr<HttpTransfer> transfer;
        std::function<void(HttpOutcome)> done;
    };
    using Tasks = std::vector<Task>;

    struct FreeMulti {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };

    void run() {
        blockBrokenPipeSignal();
        while (takeIncoming()) {
            startWaiting();
            int stillRunning = 0;
            curl_multi_perform(multi_.get(), &stillRunning);
            finishEnded();
            expire(running_);
            expire(waiting_);
            curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(untilNextEvent().count()), nullptr);
        }
    }

    /// False when there is nothing left to do and nothing more can come.
    bool takeIncoming() {
        Tasks tasks;
        {
            const std::lock_guard lock(mutex_);
            tasks.swap(incoming_);
            if (tasks.empty() && running_.empty() && waiting_.empty() && closed_)
                return false;
        }
        for (Task& task : tasks) {
            if (task.transfer->refusal())
                task.done(HttpOutcome{{}, {}, {}, task.transfer->refusal()});
            else if (task.transfer->waitsForConnectivity())
                waiting_.push_back(std::move(task));
            else
                start(std::move(task));
        }
        return true;
    }

    void start(Task task) {
        if (curl_multi_add_handle(multi_.get(), task.transfer->handle()) == CURLM_OK)
            running_.push_back(std::move(task));
        else
            task.done(task.transfer->fail(UrlError::unknown));
    }

    void startWaiting() {
        if (waiting_.empty() || !hasNetworkPath_())
            return;
        for (Task& task : std::exchange(waiting_, {}))
            start(std::move(task));
    }

    void finishEnded() {
        int left = 0;
        while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
            if (message->msg != CURLMSG_DONE)
                continue;
            const CURLcode result = message->data.result;
            CURL* handle = message->easy_handle; // the message goes with the handle's removal
            const auto ended = std::find_if(running_.begin(), running_.end(), [&](const Task& task) {
                return task.transfer->handle() == handle;
            });
            if (ended != running_.end())
                end(running_, ended,
                    [&](HttpTransfer& transfer) { return transfer.finish(result, hasNetworkPath_); });
        }
    }

    void expire(Tasks& tasks) {
        const Clock::time_point now = Clock::now();
        for (auto task = tasks.begin(); task != tasks.end();) {
            task->transfer->noteProgress(now);
            if (now >= task->transfer->deadline())
                task = end(tasks, task,
                           [](HttpTransfer& transfer) { return transfer.fail(UrlError::timedOut); });
            else
                ++task;
        }
    }

    template <class Outcome>
    Tasks::iterator end(Tasks& tasks, Tasks::iterator position, Outcome outcome) {
        Task task = std::move(*position);
        const auto next = tasks.erase(position);
        curl_multi_remove_handle(multi_.get(),
                                 task.transfer->handle()); // harmless for one that never started
        task.done(outcome(*task.transfer));
        return next;
    }

    [[nodiscard]] milliseconds untilNextEvent() const {
        milliseconds wait = waiting_.empty() ? kIdle : kPathPolling;
        const Clock::time_point now = Clock::now();
        for (const Tasks* tasks : {&running_, &waiting_}) {
            for (const Task& task : *tasks)
                wait = std::min(wait, std::chrono::ceil<milliseconds>(task.transfer->deadline() - now));
        }
        return std::max(wait, milliseconds::zero());
    }

    const HttpTransferSettings settings_;
    const std::function<bool()> hasNetworkPath_;
    const std::unique_ptr<CURLM, FreeMulti> multi_{curl_multi_init()};

    std::mutex mutex_; ///< for the next three
    Tasks incoming_;
    bool started_ = false;
    bool closed_ = false;

    // The thread's own. Their handles end before the multi handle does.
    Tasks running_;
    Tasks waiting_;
};

HttpTransport::HttpTransport(HttpTransferSettings settings, std::function<bool()> hasNetworkPath)
    : loop_((initializeLibraryOnce(),
             std::make_shared<Loop>(std::move(settings), std::move(hasNetworkPath)))) {}

HttpTransport::~HttpTransport() { loop_->close(); }

void HttpTransport::start(HttpRequest request, const HttpSessionConfiguration& configuration, BodyPlace place,
                          std::function<void(HttpOutcome)> done) {
    loop_->add(std::move(request), configuration, place, std::move(done));
}

} // namespace lumora::platform::linux_backend
