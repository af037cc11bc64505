#include "platform/linux/ports/linux_system_versions.h"

#include <fstream>
#include <string_view>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The file is a list of shell assignments without expansion: within double quotes and outside of quotes a backslash
// takes the next character as it is, within single quotes nothing does.
std::string unquoted(std::string_view text) {
    std::string value;
    char quote = '\0';
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (character == quote) {
            quote = '\0';
        } else if (quote == '\0' && (character == '"' || character == '\'')) {
            quote = character;
        } else if (character == '\\' && quote != '\'' && at + 1 < text.size()) {
            value += text[++at];
        } else {
            value += character;
        }
    }
    return value;
}

} // namespace

LinuxSystemVersions::LinuxSystemVersions(std::vector<std::string> files) : files_(std::move(files)) {}

SystemVersion LinuxSystemVersions::current() {
    SystemVersion version;
    for (const std::string& path : files_) {
        std::ifstream file(path);
        std::string text;
        bool read = false;
        while (std::getline(file, text)) {
            read = true;
            const std::string_view line = withoutBlanks(text);
            const std::size_t equals = line.find('=');
            if (line.starts_with('#') || equals == std::string_view::npos)
                continue;
            const std::string_view name = line.substr(0, equals);
            if (name == "NAME")
                version.productName = unquoted(line.substr(equals + 1));
            else if (name == "VERSION_ID")
                version.productVersion = unquoted(line.substr(equals + 1));
        }
        if (read)
            break;
    }
    return version;
}

} // namespace lumora::platform::linux_backend
