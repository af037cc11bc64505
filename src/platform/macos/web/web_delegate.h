#pragma once

#include "platform/web_view.h"
#include "webhost/load_journal.h"

#import <WebKit/WebKit.h>

/// Hands everything that the engine asks and tells to the host's delegate; nothing that this raises reaches
/// the engine, which gets its answers all the same. The engine holds its delegates weakly, but the receivers
/// of script messages for good: with no host, nothing is handed on.
@interface LumoraWebDelegate : NSObject <WKNavigationDelegate, WKUIDelegate, WKScriptMessageHandler> {
  @public
    lumora::platform::WebViewDelegate* host;
    lumora::LoadJournal journal;
    NSURLRequest* windowRequest; ///< while a page's request for a window is being answered
}
@end
