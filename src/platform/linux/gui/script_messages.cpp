#include "platform/linux/gui/script_messages.h"

namespace lumora::platform::linux_backend {

ScriptMessages::ScriptMessages(WebKitUserContentManager* manager, Receiver receiver)
    : manager_(manager), receiver_(std::move(receiver)) {}

ScriptMessages::~ScriptMessages() {
    while (!registrations_.empty())
        remove(std::string(registrations_.begin()->first));
}

void ScriptMessages::add(const std::string& name) {
    if (registrations_.contains(name))
        return;
    auto registration = std::make_unique<Registration>(Registration{this, name, 0});
    // Connected before the name is registered: a page that is already there may post at once.
    const std::string signal = "script-message-received::" + name;
    registration->handler =
        g_signal_connect(manager_, signal.c_str(), G_CALLBACK(&ScriptMessages::received), registration.get());
    webkit_user_content_manager_register_script_message_handler(manager_, name.c_str(), nullptr);
    registrations_.emplace(name, std::move(registration));
}

void ScriptMessages::remove(const std::string& name) {
    const auto found = registrations_.find(name);
    if (found == registrations_.end())
        return;
    webkit_user_content_manager_unregister_script_message_handler(manager_, name.c_str(), nullptr);
    g_signal_handler_disconnect(manager_, found->second->handler);
    registrations_.erase(found);
}

void ScriptMessages::received(WebKitUserContentManager*, JSCValue* value, gpointer data) {
    const auto* registration = static_cast<Registration*>(data);
    ScriptMessage message{registration->name, std::nullopt};
    // The engine's own type decides: any value at all can be turned into text. The bytes keep embedded NULs.
    if (jsc_value_is_string(value) != FALSE) {
        const BytesPointer bytes(jsc_value_to_string_as_bytes(value));
        gsize size = 0;
        const auto* text = static_cast<const char*>(g_bytes_get_data(bytes.get(), &size));
        message.stringBody = size == 0 ? std::string() : std::string(text, size);
    }
    registration->owner->receiver_(message);
}

} // namespace lumora::platform::linux_backend
