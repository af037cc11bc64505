#include "bridge/native_message_handler.h"
#include "bridge/standard_defaults.h"
#include "config/window_title_preference.h"
#include "platform/ports.h"
#include "platform/preferences.h"

namespace lumora {

namespace {

/// The stored title, or the product's own when none is stored as text.
std::string fallbackTitle() {
    const auto stored = platform::ports().preferences->objectForKey(kWindowTitleKey);
    const auto* title = stored ? stored->as<std::string>() : nullptr;
    return title != nullptr ? *title : kDefaultWindowTitle;
}

} // namespace

void NativeMessageHandler::sendLumoraTitleToNative(const std::optional<std::string>& title) {
    if (title)
        standard_defaults::store({{kWindowTitleKey, *title}});
    if (delegate_ != nullptr)
        delegate_->updateWindowTitle(title ? *title : fallbackTitle());
}

} // namespace lumora
