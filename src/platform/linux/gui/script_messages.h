#pragma once

#include "platform/linux/glib_handles.h"
#include "platform/web_view.h"

#include <webkit/webkit.h>

#include <functional>
#include <map>
#include <string>

namespace lumora::platform::linux_backend {

/// The names under which pages post messages. Any frame of any origin may post.
class ScriptMessages {
  public:
    using Receiver = std::function<void(const ScriptMessage&)>;

    ScriptMessages(WebKitUserContentManager* manager, Receiver receiver);
    ~ScriptMessages();
    ScriptMessages(const ScriptMessages&) = delete;
    ScriptMessages& operator=(const ScriptMessages&) = delete;

    void add(const std::string& name);

    /// A name that was never added is no error.
    void remove(const std::string& name);

  private:
    struct Registration {
        ScriptMessages* owner;
        std::string name;
        gulong handler;
    };

    static void received(WebKitUserContentManager* manager, JSCValue* value, gpointer registration);

    WebKitUserContentManager* manager_;
    Receiver receiver_;
    std::map<std::string, std::unique_ptr<Registration>> registrations_;
};

} // namespace lumora::platform::linux_backend
