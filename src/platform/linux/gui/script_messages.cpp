#include "platform/linux/gui/script_messages.h"

#include "support/characters.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::size_t kCodeUnitDigits = 4;

/// What an escape other than "u" stands for.
char escaped(char letter) {
    switch (letter) {
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return letter;
    }
}

/// A string as the engine writes it in JSON. Only this form tells half a surrogate pair, as an escape: the engine's
/// conversion to UTF-8 ends before the first one.
std::string textOfJsonString(std::string_view json) {
    json = json.substr(1, json.size() - 2); // the quotes
    std::string text;
    text.reserve(json.size());
    while (!json.empty()) {
        const std::size_t plain = std::min(json.find('\\'), json.size());
        text += json.substr(0, plain);
        json.remove_prefix(plain);
        if (json.empty())
            break;
        const char letter = json[1];
        json.remove_prefix(2);
        if (letter != 'u') {
            text += escaped(letter);
            continue;
        }
        std::uint16_t unit = 0;
        std::from_chars(json.data(), json.data() + kCodeUnitDigits, unit, 16);
        text += utf8OfUtf16(std::u16string(1, unit));
        json.remove_prefix(kCodeUnitDigits);
    }
    return text;
}

} // namespace

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
    // The engine's own type decides: any value at all can be turned into text.
    if (jsc_value_is_string(value) != FALSE) {
        const CharPointer json(jsc_value_to_json(value, 0));
        message.stringBody = json ? textOfJsonString(json.get()) : std::string();
    }
    registration->owner->receiver_(message);
}

} // namespace lumora::platform::linux_backend
