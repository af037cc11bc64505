#pragma once

#include "platform/posix/unique_fd.h"
#include "platform/standard_streams.h"

#include <array>
#include <mutex>

namespace lumora::platform::posix_backend {

/// The three standard streams, by their numbers. Make one a process, before other threads run.
///
/// A reopened stream keeps its number (0, 1, 2): a successful reopening changes what is under it in one step, and after a
/// failed one the null device holds it. So no socket or file opened meanwhile can get the number and receive log text.
class PosixStandardStreams final : public StandardStreams {
  public:
    PosixStandardStreams();

    void writeError(std::string_view text) override;
    void writeOutput(std::string_view text) override;
    void reopenAll(const std::string& path) override;
    void withWritersHeld(const std::function<void()>& section) override;

  private:
    void write(int number, std::string_view text);

    std::recursive_mutex mutex_;
    UniqueFd null_; ///< kept open, so that holding a number needs no new descriptor
    std::array<bool, 3> isOpen_{true, true, true}; ///< whether the last reopening succeeded
    /// Only the beginning of the last message was written: the next begins a line of its own.
    bool lineIsCut_ = false;
};

} // namespace lumora::platform::posix_backend
