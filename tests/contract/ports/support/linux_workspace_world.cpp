#include "platform/linux/ports/linux_workspace.h"
#include "support/backend.h"
#include "support/linux_desktop.h"
#include "support/workspace_world.h"

namespace lumora::contract {

struct WorkspaceWorld::State {
    std::unique_ptr<platform::Bundles> bundles = makeBundles();
    backend::LinuxWorkspace workspace{*bundles, backend::HomeFolder(), {"PATH=/usr/bin:/bin"}};
};

WorkspaceWorld::WorkspaceWorld() {
    static_cast<void>(LinuxDesktop::instance());
    state_ = std::make_unique<State>();
}

WorkspaceWorld::~WorkspaceWorld() = default;

platform::Workspace& WorkspaceWorld::workspace() { return state_->workspace; }

std::string WorkspaceWorld::scheme() const { return LinuxDesktop::kScheme; }

void WorkspaceWorld::registerHandler(const std::string& bundle) {
    LinuxDesktop::instance().handleBy(fmt::format("exec '{}/Contents/MacOS/Agent' opened \"$1\"\n", bundle));
}

bool WorkspaceWorld::asksAPerson() { return false; }

} // namespace lumora::contract
