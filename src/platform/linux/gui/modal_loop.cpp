#include "platform/linux/gui/modal_loop.h"

namespace lumora::platform::linux_backend {

ModalLoop::ModalLoop(EventTracking& tracking) : tracking_(tracking), loop_(g_main_loop_new(nullptr, FALSE)) {}

void ModalLoop::run() {
    if (tracking_.ended())
        return;
    const EventTracking::ModalSession session(tracking_, [this] { quit(); });
    g_main_loop_run(loop_.get());
}

bool waitForBackgroundWork(MainLoop& mainLoop, EventTracking& tracking, std::function<void()> work) {
    struct Wait {
        explicit Wait(EventTracking& tracking) : loop(tracking) {}
        ModalLoop loop;
        bool finished = false;
    };
    const auto wait = std::make_shared<Wait>(tracking); // the work may end after its waiter
    mainLoop.asyncInBackground([wait, &mainLoop, work = std::move(work)] {
        work();
        mainLoop.asyncOnMain([wait] {
            wait->finished = true;
            wait->loop.quit();
        });
    });
    wait->loop.run();
    return wait->finished;
}

} // namespace lumora::platform::linux_backend
