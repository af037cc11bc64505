#include "platform/linux/gui/reader_languages.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

/// Each language is also listed without its character set and variant. "C" is none.
bool isPlainName(std::string_view name) {
    return name != "C" && name != "POSIX" && name.find_first_of(".@") == std::string_view::npos;
}

/// As a browser names it: "de-AT".
std::string tagOf(std::string name) {
    std::replace(name.begin(), name.end(), '_', '-');
    return name;
}

} // namespace

void speakReadersLanguages(WebKitWebContext* context) {
    std::vector<std::string> tags;
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name)
        if (isPlainName(*name))
            tags.push_back(tagOf(*name));
    if (tags.empty())
        return; // the engine's own choice
    std::vector<const char*> list;
    for (const std::string& tag : tags)
        list.push_back(tag.c_str());
    list.push_back(nullptr);
    webkit_web_context_set_preferred_languages(context, list.data());
}

} // namespace lumora::platform::linux_backend
