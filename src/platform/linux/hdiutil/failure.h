#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace lumora::platform::linux_backend {

/// Why an image could not be mounted or a volume not be detached. Thrown inside this library only; DiskImages turns
/// it into an error value.
class DiskImageFailure : public std::runtime_error {
  public:
    explicit DiskImageFailure(const std::string& reason, int errorNumber = 0)
        : std::runtime_error(reason), errorNumber_(errorNumber) {}

    /// The errno behind it, or 0 if the image or the argument is at fault.
    [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }

  private:
    int errorNumber_;
};

/// Throws "WHAT: text of errno".
[[noreturn]] void throwErrno(std::string_view what);

/// The text with control characters replaced, so that a name out of an image can neither break a line nor steer a
/// terminal, and with everything beyond ASCII where it is not UTF-8, which a reader might not decode at all.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace lumora::platform::linux_backend
