#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace lumora::contract {

/// Whether the condition comes true before a deadline that only a fault can reach.
[[nodiscard]] inline bool eventually(const std::function<bool()>& condition,
                                     std::chrono::seconds deadline = std::chrono::seconds(30)) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace lumora::contract
