#include "agent/agent_window.h"
#include "agent/session_texts.h"

#import <AppKit/AppKit.h>

namespace datacentre::agent {

namespace {

// Whatever the file holds, the window gets text that it can show.
NSString* shown(const std::string& text) {
    NSString* string = [NSString stringWithUTF8String:text.c_str()];
    return string != nil ? string : @"?";
}

NSString* lines(const JoinDetails& details) {
    NSMutableString* text = [NSMutableString stringWithString:shown(stateText(details))];
    if (details.present)
        for (const auto& row : detailRows(details))
            [text appendFormat:@"\n%@: %@", shown(row.name), shown(row.value)];
    return text;
}

} // namespace

void showAgentWindow(const JoinDetails& details) {
    @autoreleasepool {
        [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyRegular];
        [NSApplication.sharedApplication finishLaunching];
        NSAlert* alert = [[NSAlert alloc] init];
        alert.messageText = shown(heading(details));
        alert.informativeText = lines(details);
        [alert addButtonWithTitle:@(kEndSession)].keyEquivalent = @"\033";
        NSWindow* window = alert.window;
        window.title = shown(windowTitle(details));
        [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
        [alert runModal];
    }
}

void standWithoutWindow() {
    @autoreleasepool {
        [NSApplication.sharedApplication finishLaunching];
    }
}

} // namespace datacentre::agent
