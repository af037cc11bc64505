#include "server/json_members.h"

#include <fmt/format.h>

#include <stdexcept>

namespace datacentre {

JsonMembers::JsonMembers(const Json& object, const std::set<std::string>& known) : object_(object) {
    if (!object.is_object())
        throw std::invalid_argument("a JSON object is expected");
    for (const auto& [name, value] : object.items())
        if (!known.contains(name))
            throw std::invalid_argument(fmt::format("unknown member \"{}\"", name));
}

const Json* JsonMembers::member(const std::string& name) const {
    const auto found = object_.find(name);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
}

bool JsonMembers::flag(const std::string& name) const {
    const Json* const value = member(name);
    if (value == nullptr)
        return false;
    if (!value->is_boolean())
        throw std::invalid_argument(fmt::format("\"{}\" is true or false", name));
    return value->get<bool>();
}

std::optional<std::string> JsonMembers::text(const std::string& name) const {
    const Json* const value = member(name);
    if (value == nullptr)
        return std::nullopt;
    if (!value->is_string())
        throw std::invalid_argument(fmt::format("\"{}\" is a text", name));
    return value->get<std::string>();
}

std::optional<long long> JsonMembers::number(const std::string& name) const {
    const Json* const value = member(name);
    if (value == nullptr)
        return std::nullopt;
    if (!value->is_number_integer() || value->get<long long>() < 0)
        throw std::invalid_argument(fmt::format("\"{}\" is a whole number from 0", name));
    return value->get<long long>();
}

std::chrono::milliseconds JsonMembers::milliseconds(const std::string& name) const {
    return std::chrono::milliseconds(number(name).value_or(0));
}

} // namespace datacentre
