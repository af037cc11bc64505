#pragma once

#include "support/log.h"

#include <cstdlib>
#include <string_view>

namespace lumora {

/// Stops the process over a programming error, with a line that says which. Any thread.
[[noreturn]] inline void fatal(std::string_view reason) {
    log("Fatal error: {}", reason);
    std::abort();
}

} // namespace lumora
