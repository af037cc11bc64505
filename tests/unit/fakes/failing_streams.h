#pragma once

#include "platform/standard_streams.h"

#include <stdexcept>

namespace lumora::fakes {

/// Streams of which one write to standard error throws, to reach the exception guard of an operation whose other
/// ports cannot throw. Everything else goes to the streams behind.
class FailingStreams final : public platform::StandardStreams {
  public:
    /// @param failingWrite which write fails, counted from 1
    FailingStreams(platform::StandardStreams& behind, int failingWrite)
        : behind_(behind), failingWrite_(failingWrite) {}

    void writeError(std::string_view text) override {
        if (++writes_ == failingWrite_)
            throw std::runtime_error("write failed");
        behind_.writeError(text);
    }
    void writeOutput(std::string_view text) override { behind_.writeOutput(text); }
    void reopenAll(const std::string& path) override { behind_.reopenAll(path); }
    void withWritersHeld(const std::function<void()>& section) override { behind_.withWritersHeld(section); }

  private:
    platform::StandardStreams& behind_;
    int failingWrite_;
    int writes_ = 0;
};

} // namespace lumora::fakes
