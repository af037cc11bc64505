#include "platform/main_loop.h"
#include "platform/ports.h"
#include "webhost/local_pages.h"
#include "webhost/view_controller.h"

#include <utility>

namespace lumora {

namespace {

constexpr std::chrono::seconds kShortLife{1};

/// WKErrorWebContentProcessTerminated, in its own domain and words.
platform::Error processTerminated(const std::string& url) {
    return {"WKErrorDomain", 2, "The Web Content process was terminated.", url};
}

} // namespace

void ViewController::webContentProcessDidTerminate(const std::string& url) {
    if (isLocalPage(url)) {
        reviveLocalPage(isOfflinePage(url) ? kNoInternetPage : kMisconfigurationPage);
        return;
    }
    if (!reloadsAfterLoss_.allowsAt(now_()))
        reloadOnce_.refuse(); // it would only die again: the offline page stays until the monitor restores
    didFailNavigation(processTerminated(url));
}

// A local page is what a failure shows: treated as one it would stay away.
void ViewController::reviveLocalPage(std::string page) {
    const auto now = now_();
    const bool hasLived = !revivedAt_ || now - *revivedAt_ >= kShortLife;
    if (hasLived || revivals_.allowsAt(now))
        showRevived(std::move(page));
    else // it keeps dying: as often as this the machine can bear it
        revival_ = platform::ports().mainLoop->scheduleTimer(kShortLife, platform::TimerMode::commonModes,
                                                             [this, page] { showRevived(page); });
}

void ViewController::showRevived(std::string page) {
    revivedAt_ = now_();
    showResourcePage(std::move(page));
}

} // namespace lumora
