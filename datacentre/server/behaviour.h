#pragma once

#include "server/exchange.h"
#include "server/json_members.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace datacentre {

/// How a path misbehaves; README.md tells what each member means. A default one changes nothing.
struct Behaviour {
    /// Throws std::invalid_argument.
    [[nodiscard]] static Behaviour fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    /// Puts status, body and headers over the answer that the path would normally give.
    void replaceIn(Answer& answer) const;

    std::optional<int> status;
    std::optional<std::string> body;
    std::optional<std::string> contentType;
    HeaderList headers;
    std::chrono::milliseconds delay{0};
    std::optional<std::size_t> truncateAt;
    bool reset = false;
    bool hang = false;
    std::chrono::milliseconds chunkDelay{0};
    std::size_t chunkSize = 1024;
    std::optional<long long> times;
    std::string exceptAgent; ///< requests with this User-Agent are answered as usual; empty: none
};

/// The behaviours set at the moment, by path. Used by the control thread and every connection's thread.
class BehaviourTable {
  public:
    static constexpr const char* kEveryPath = "*";

    void set(const std::string& path, Behaviour behaviour);
    void clear(const std::string& path);
    void clearAll();
    /// The behaviour for one request of this path by this User-Agent, counting it.
    [[nodiscard]] std::optional<Behaviour> take(const std::string& path, const std::string& agent = {});
    [[nodiscard]] Json toJson() const;

  private:
    mutable std::mutex mutex_;
    std::map<std::string, Behaviour> behaviours_;
};

} // namespace datacentre
