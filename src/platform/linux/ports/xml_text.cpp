#include "platform/linux/ports/xml_text.h"

#include <algorithm>
#include <array>

namespace lumora::platform::linux_backend {

namespace {

// Markup whose inside is not markup.
struct Opaque {
    std::string_view begin;
    std::string_view end;
};
constexpr std::array kOpaque{Opaque{"<!--", "-->"}, Opaque{"<![CDATA[", "]]>"}, Opaque{"<?", "?>"}};

bool opensContainer(std::string_view tag) { return tag.starts_with("<dict") || tag.starts_with("<array"); }
bool closesContainer(std::string_view tag) { return tag.starts_with("</dict") || tag.starts_with("</array"); }

} // namespace

std::string escapedForXml(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '\r':
            escaped += "&#13;"; // a plain one is a line feed to every XML reader
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

std::size_t nestingOfXmlPropertyList(std::string_view xml) {
    std::size_t level = 0;
    std::size_t deepest = 0;
    for (std::size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at)) {
        const std::string_view rest = xml.substr(at);
        const auto* opaque = std::find_if(kOpaque.begin(), kOpaque.end(), [&](const Opaque& markup) {
            return rest.starts_with(markup.begin);
        });
        if (opaque != kOpaque.end()) {
            const std::size_t end = xml.find(opaque->end, at + opaque->begin.size());
            if (end == std::string_view::npos)
                return deepest;
            at = end + opaque->end.size();
            continue;
        }
        if (opensContainer(rest))
            deepest = std::max(deepest, ++level);
        else if (closesContainer(rest) && level > 0)
            --level;
        const std::size_t end = xml.find('>', at);
        if (end == std::string_view::npos)
            return deepest;
        if (opensContainer(rest) && xml[end - 1] == '/')
            --level;
        at = end;
    }
    return deepest;
}

} // namespace lumora::platform::linux_backend
