#pragma once

#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace datacentre {

/// The caller wrote something that no command understands; the text is meant for the terminal.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// "--name value" pairs and "--flag" words behind a command.
class CommandLine {
  public:
    /// `valued` and `flags` are the words this command knows, without dashes. Throws UsageError on anything else.
    CommandLine(const std::vector<std::string>& words, const std::set<std::string>& valued,
                const std::set<std::string>& flags);

    [[nodiscard]] std::string required(const std::string& name) const;
    [[nodiscard]] std::optional<std::string> optional(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> all(const std::string& name) const;
    [[nodiscard]] bool has(const std::string& flag) const { return flags_.contains(flag); }

  private:
    std::vector<std::pair<std::string, std::string>> values_;
    std::set<std::string> flags_;
};

} // namespace datacentre
