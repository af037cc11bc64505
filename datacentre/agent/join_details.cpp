#include "agent/join_details.h"

#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

namespace datacentre::agent {

namespace {

constexpr std::string_view kMarker = "OVRA_VARLO_IND";

}

std::string JoinDetails::value(const std::string& key) const {
    for (const auto& [name, text] : pairs)
        if (name == key)
            return text;
    return {};
}

std::filesystem::path joinDetailsFile(const std::filesystem::path& home) {
    return home / "Library/Application Support/OvraVarloNative/ovrajoindetails.conf";
}

JoinDetails readJoinDetails(const std::filesystem::path& file) {
    JoinDetails details;
    details.file = file;
    const std::ifstream input(file, std::ios::binary);
    if (!input)
        return details;
    details.present = true;
    std::error_code gone;
    details.mode = static_cast<unsigned>(std::filesystem::status(file, gone).permissions());
    details.bytes = (std::ostringstream() << input.rdbuf()).str();
    parseJoinDetails(details);
    return details;
}

void parseJoinDetails(JoinDetails& details) {
    const std::string_view text = details.bytes;
    const auto lineEnd = text.find('\n');
    details.marker = text.substr(0, lineEnd);
    details.pairs.clear();
    details.wellFormed = false;
    if (lineEnd == std::string_view::npos)
        return;

    std::string_view line = text.substr(lineEnd + 1);
    bool everyPairHasAValue = true;
    const bool enclosed = line.size() >= 2 && line.front() == '&' && line.back() == '&';
    const bool oneLine = line.find('\n') == std::string_view::npos;
    while (!line.empty()) {
        const auto end = line.find('&');
        const auto pair = line.substr(0, end);
        line = end == std::string_view::npos ? std::string_view() : line.substr(end + 1);
        if (pair.empty())
            continue;
        const auto equals = pair.find('=');
        if (equals == std::string_view::npos)
            everyPairHasAValue = false;
        else
            details.pairs.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
    }
    details.wellFormed = details.marker == kMarker && enclosed && oneLine && everyPairHasAValue;
}

} // namespace datacentre::agent
