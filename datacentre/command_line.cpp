#include "command_line.h"

#include <fmt/format.h>

namespace datacentre {

CommandLine::CommandLine(const std::vector<std::string>& words, const std::set<std::string>& valued,
                         const std::set<std::string>& flags) {
    for (auto word = words.begin(); word != words.end(); ++word) {
        const std::string name = word->starts_with("--") ? word->substr(2) : std::string();
        if (flags.contains(name)) {
            flags_.insert(name);
        } else if (valued.contains(name)) {
            if (std::next(word) == words.end())
                throw UsageError(fmt::format("--{} needs a value", name));
            values_.emplace_back(name, *++word);
        } else {
            throw UsageError(fmt::format("unknown word \"{}\"", *word));
        }
    }
}

std::string CommandLine::required(const std::string& name) const {
    if (auto value = optional(name))
        return *value;
    throw UsageError(fmt::format("--{} is missing", name));
}

std::optional<std::string> CommandLine::optional(const std::string& name) const {
    const auto values = all(name);
    if (values.empty())
        return std::nullopt;
    return values.back();
}

std::vector<std::string> CommandLine::all(const std::string& name) const {
    std::vector<std::string> found;
    for (const auto& [key, value] : values_)
        if (key == name)
            found.push_back(value);
    return found;
}

} // namespace datacentre
