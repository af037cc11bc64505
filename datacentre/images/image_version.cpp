#include "images/image_version.h"

#include <charconv>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace datacentre {

namespace {

constexpr std::string_view kKey = "<key>CFBundleShortVersionString</key>";
constexpr std::string_view kOpen = "<string>";
constexpr std::string_view kClose = "</string>";

struct Span {
    std::size_t begin;
    std::size_t length;
};

std::optional<Span> findVersion(std::string_view text) {
    const auto key = text.find(kKey);
    if (key == std::string_view::npos)
        return std::nullopt;
    const auto value = text.find_first_not_of(" \t\r\n", key + kKey.size());
    if (value == std::string_view::npos || !text.substr(value).starts_with(kOpen))
        return std::nullopt;
    const auto begin = value + kOpen.size();
    const auto end = text.find(kClose, begin);
    if (end == std::string_view::npos)
        return std::nullopt;
    return Span{begin, end - begin};
}

std::optional<std::vector<unsigned long>> numbersOf(std::string_view version) {
    std::vector<unsigned long> numbers;
    const char* position = version.data();
    const char* const end = position + version.size();
    for (;;) {
        unsigned long number = 0;
        const auto [next, failure] = std::from_chars(position, end, number);
        if (failure != std::errc())
            return std::nullopt;
        numbers.push_back(number);
        if (next == end)
            break;
        if (*next != '.')
            return std::nullopt;
        position = next + 1;
    }
    while (!numbers.empty() && numbers.back() == 0) // "2.0" and "2" are the same version
        numbers.pop_back();
    return numbers;
}

} // namespace

std::optional<std::string> imageVersion(const std::filesystem::path& image) {
    const std::ifstream input(image, std::ios::binary);
    if (!input)
        return std::nullopt;
    const std::string bytes = (std::ostringstream() << input.rdbuf()).str();
    if (const auto span = findVersion(bytes))
        return bytes.substr(span->begin, span->length);
    return std::nullopt;
}

std::string withVersion(std::string_view propertyList, std::string_view version) {
    const auto span = findVersion(propertyList);
    if (!span)
        throw std::runtime_error("the bundle's Info.plist has no CFBundleShortVersionString in XML");
    std::string text(propertyList);
    return text.replace(span->begin, span->length, version);
}

bool isOlder(std::string_view installed, std::string_view offered) {
    const auto have = numbersOf(installed);
    const auto want = numbersOf(offered);
    if (!have || !want)
        return installed != offered;
    return *have < *want;
}

} // namespace datacentre
