#pragma once

#include "platform/posix/unique_fd.h"
#include "platform/standard_streams.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <mutex>

namespace lumora::platform::posix_backend {

/// The C library's three streams. Make one a process, before other threads run.
///
/// A reopened stream keeps its number (0, 1, 2): a successful reopening changes it in one step, and after a failed one
/// the null device holds it. So no socket or file opened meanwhile can get the number and receive log text.
class PosixStandardStreams final : public StandardStreams {
  public:
    PosixStandardStreams();

    void writeError(std::string_view text) override;
    void writeOutput(std::string_view text) override;
    void reopenAll(const std::string& path) override;
    void withWritersHeld(const std::function<void()>& section) override;

  private:
    struct Stream {
        std::FILE* file;
        int number;             ///< 0, 1 or 2
        int writeTo;            ///< where messages go; -1 while the last reopening has failed
        bool ownsNumber = true; ///< false when someone else's descriptor got the number after a failure
    };

    void write(std::size_t index, std::string_view text);
    [[nodiscard]] bool reopen(Stream& stream, const std::string& path) const;
    void hold(Stream& stream) const;

    std::recursive_mutex mutex_;
    UniqueFd null_; ///< kept open, so that holding a number needs no new descriptor
    std::array<Stream, 3> streams_;
};

} // namespace lumora::platform::posix_backend
