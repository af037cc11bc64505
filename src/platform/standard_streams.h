#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lumora::platform {

/// The process's three standard streams, which the application points at its log file.
///
/// Every write is one appended `write`, unbuffered: lines from any thread, on either stream, keep their order and are
/// never torn. Writers, reopening and exclusive sections share one lock, so no line falls between.
class StandardStreams {
  public:
    virtual ~StandardStreams() = default;

    virtual void writeError(std::string_view text) = 0;
    virtual void writeOutput(std::string_view text) = 0;

    /// Reopens standard input, output and error, in this order, on the path in mode "a+". A stream whose reopening
    /// fails stays closed to writers (its descriptor is held by something harmless) until a later call succeeds.
    virtual void reopenAll(const std::string& path) = 0;

    /// Runs the section while no thread writes. The section may itself write (the lock is recursive).
    virtual void withWritersHeld(const std::function<void()>& section) = 0;
};

} // namespace lumora::platform
