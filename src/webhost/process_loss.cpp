#include "platform/main_loop.h"
#include "platform/ports.h"
#include "webhost/local_pages.h"
#include "webhost/view_controller.h"

namespace lumora {

namespace {

/// WKErrorWebContentProcessTerminated, in its own domain and words.
platform::Error processTerminated(const std::string& url) {
    return {"WKErrorDomain", 2, "The Web Content process was terminated.", url};
}

} // namespace

void ViewController::webContentProcessDidTerminate(const std::string& url) {
    if (isLocalPage(url)) {
        reviveLocalPage(url.find(kNoInternetPage) != std::string::npos ? kNoInternetPage
                                                                       : kMisconfigurationPage);
        return;
    }
    if (!reloadsAfterLoss_.allowsAt(now_()))
        reloadAttempted_ = true; // it would only die again: the offline page stays until the monitor restores
    didFailNavigation(processTerminated(url));
}

// A local page is what a failure shows: treated as one it would stay away.
void ViewController::reviveLocalPage(const std::string& page) {
    if (revivals_.allowsAt(now_())) {
        showResourcePage(page);
        return;
    }
    revival_ = platform::ports().mainLoop->scheduleTimer(
        RevivalLimit::kWindow, platform::TimerMode::commonModes, [this, page] { showResourcePage(page); });
}

} // namespace lumora
