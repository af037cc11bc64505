#include "platform/linux/ports/launch_arguments.h"

#include <cstddef>

namespace lumora::platform::linux_backend {

namespace {

bool isDashWord(const std::string& argument) { return argument.starts_with('-'); }

} // namespace

std::map<std::string, std::string> preferencesFromArguments(const std::vector<std::string>& arguments) {
    std::map<std::string, std::string> values;
    for (std::size_t at = 0; at + 1 < arguments.size(); ++at) {
        if (!isDashWord(arguments[at]) || isDashWord(arguments[at + 1]))
            continue;
        if (const std::string key = arguments[at].substr(1); !key.empty())
            values.insert_or_assign(key, arguments[at + 1]);
        ++at;
    }
    return values;
}

} // namespace lumora::platform::linux_backend
