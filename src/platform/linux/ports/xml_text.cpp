#include "platform/linux/ports/xml_text.h"

namespace lumora::platform::linux_backend {

namespace {

std::size_t countOf(std::string_view part, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++count;
    return count;
}

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

std::size_t containersInXmlPropertyList(std::string_view xml) {
    return countOf("<dict", xml) + countOf("<array", xml);
}

} // namespace lumora::platform::linux_backend
