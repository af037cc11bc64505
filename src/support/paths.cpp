#include "support/paths.h"

namespace lumora {

namespace {

std::string withFoldedSlashes(std::string_view path) {
    std::string folded;
    for (const char character : path)
        if (character != '/' || !folded.ends_with('/'))
            folded += character;
    if (folded.size() > 1 && folded.ends_with('/'))
        folded.pop_back();
    return folded;
}

} // namespace

std::string appendPathComponent(std::string_view path, std::string_view component) {
    if (path.empty())
        return withFoldedSlashes(component);
    std::string joined(path);
    joined += '/';
    joined += component;
    return withFoldedSlashes(joined);
}

std::string lastPathComponent(std::string_view path) {
    const auto folded = withFoldedSlashes(path);
    return folded == "/" ? folded : folded.substr(folded.rfind('/') + 1);
}

} // namespace lumora
