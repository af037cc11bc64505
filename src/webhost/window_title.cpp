#include "webhost/window_title.h"

#include "config/window_title_preference.h"
#include "platform/ports.h"
#include "platform/preferences.h"
#include "support/fatal.h"

namespace lumora {

namespace {

const std::string& textOrStop(const std::optional<platform::PropertyListValue>& value) {
    const auto* text = value ? value->as<std::string>() : nullptr;
    if (text == nullptr)
        fatal("the stored WindowTitle is not a string");
    return *text;
}

void titleByDefault(platform::Window* window) {
    if (window != nullptr)
        window->setTitle(kDefaultWindowTitle);
    auto& preferences = *platform::ports().preferences;
    preferences.setObject(kWindowTitleKey,
                          window != nullptr ? window->title() : std::string()); // empty: cleared
    preferences.synchronize();
}

} // namespace

PreferenceValues storedTitleValues() {
    return {{kWindowTitleKey, platform::ports().preferences->objectForKey(kWindowTitleKey)}};
}

void showStoredTitle(const PreferenceValues& stored, platform::Window* window) {
    const auto entry = stored.find(kWindowTitleKey);
    if (entry == stored.end()) {
        titleByDefault(window);
        return;
    }
    // Converted without a question: the page stores only text here, and no window exists before the first page.
    if (window != nullptr)
        window->setTitle(textOrStop(entry->second));
}

} // namespace lumora
