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
    // A local page is what a failure shows: treated as one it would stay away.
    if (!isLocalPage(url) || !revivals_.allowsAt(now_()))
        didFailNavigation(processTerminated(url));
    else if (url.find(kNoInternetPage) != std::string::npos)
        loadStaticNoInternetPage();
    else
        loadMisconfigurationPage();
}

} // namespace lumora
