#pragma once

#include "server/exchange.h"
#include "server/image_shelf.h"
#include "server/json_members.h"

#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace datacentre {

/// The three questions that the application asks. Default answers follow from the images; each can be replaced as a
/// whole through the control interface. Any thread.
class ApiAnswers {
  public:
    explicit ApiAnswers(const ImageShelf& images) : images_(images) {}

    /// Merges overrides: a string is a body as it is, null means the default, anything else is a JSON body.
    /// Throws std::invalid_argument.
    void override(const Json& overrides);
    /// Nothing when the path is none of the three.
    [[nodiscard]] std::optional<Answer> answer(const ReceivedRequest& request) const;

  private:
    using Builder = Json (ApiAnswers::*)(const ReceivedRequest&) const;
    struct Question {
        std::string_view path;
        std::string_view name; ///< in the control interface
        Builder build;
    };
    static const std::array<Question, 3> kQuestions;

    [[nodiscard]] Json agentCheck(const ReceivedRequest& request) const;
    [[nodiscard]] Json applicationCheck(const ReceivedRequest& request) const;
    [[nodiscard]] Json serviceDomain(const ReceivedRequest& request) const;

    const ImageShelf& images_;
    mutable std::mutex mutex_;
    std::map<std::string, std::string, std::less<>> overrides_;
};

} // namespace datacentre
