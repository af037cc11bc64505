#include "platform/macos/appkit/appkit_workspace.h"
#include "platform/macos/foundation/text.h"
#include "support/workspace_world.h"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#include <unistd.h>

namespace lumora::contract {

namespace {

NSString* const kRegistrar = @"/System/Library/Frameworks/CoreServices.framework/Frameworks/"
                             @"LaunchServices.framework/Support/lsregister";

} // namespace

struct WorkspaceWorld::State {
    platform::macos_backend::AppKitWorkspace workspace;
    NSString* handler = nil;
};

WorkspaceWorld::WorkspaceWorld() : state_(std::make_unique<State>()) {}

WorkspaceWorld::~WorkspaceWorld() {
    @autoreleasepool {
        // Best effort: the system also forgets by itself what has gone.
        if (state_->handler !=
            nil)[[NSTask launchedTaskWithLaunchPath:kRegistrar
                                          arguments:@[ @"-u", state_->handler ]] waitUntilExit]
            ;
    }
}

platform::Workspace& WorkspaceWorld::workspace() { return state_->workspace; }

std::string WorkspaceWorld::scheme() const { return "lumoratest" + std::to_string(::getpid()); }

void WorkspaceWorld::registerHandler(const std::string& bundle) {
    @autoreleasepool {
        state_->handler = platform::macos_backend::nsString(bundle);
        LSRegisterURL((__bridge CFURLRef)[NSURL fileURLWithPath:state_->handler isDirectory:YES], true);
    }
}

bool WorkspaceWorld::asksAPerson() { return true; }

} // namespace lumora::contract
