#pragma once

#include <nlohmann/json.hpp>

#include <chrono>
#include <optional>
#include <set>
#include <string>

namespace datacentre {

using Json = nlohmann::ordered_json;

/// Reads a control request's members by name and type. Everything that does not fit throws std::invalid_argument with a
/// text that names the member: a misspelt member in a test must not pass for a wish.
class JsonMembers {
  public:
    JsonMembers(const Json& object, const std::set<std::string>& known);

    [[nodiscard]] bool flag(const std::string& name) const;
    [[nodiscard]] std::optional<std::string> text(const std::string& name) const;
    [[nodiscard]] std::optional<long long> number(const std::string& name) const; ///< not negative
    [[nodiscard]] std::chrono::milliseconds milliseconds(const std::string& name) const;
    /// The member itself, or nothing when it is absent or null.
    [[nodiscard]] const Json* member(const std::string& name) const;

  private:
    const Json& object_;
};

} // namespace datacentre
