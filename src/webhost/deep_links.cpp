#include "platform/ports.h"
#include "platform/workspace.h"
#include "support/log.h"
#include "webhost/view_controller.h"

namespace lumora {

void ViewController::handleDeepLink(const std::string& url) {
    print("handleDeepLink(_:) : Handling deep link: {}", url);
    platform::ports().workspace->openUrl(url); // without a registered application nothing happens
}

} // namespace lumora
