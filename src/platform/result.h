#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace lumora::platform {

/// What an operating-system call reports when it fails. Values, never exceptions: a port tells, the core decides.
struct Error {
    std::string domain;               ///< "NSURLErrorDomain", "NSPOSIXErrorDomain", "NSCocoaErrorDomain", ...
    int code = 0;                     ///< the domain's own number: an errno, or the URL loading system's code
    std::string localizedDescription; ///< one sentence for a person

    /// The address that failed to load: HTTP requests and page loads, file: included.
    std::optional<std::string> failingUrl;
};

/// Either a value or the error that took its place.
template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return state_.index() == 0; }
    [[nodiscard]] T& value() { return std::get<0>(state_); }
    [[nodiscard]] const T& value() const { return std::get<0>(state_); }
    [[nodiscard]] const Error& error() const { return std::get<1>(state_); }

  private:
    std::variant<T, Error> state_;
};

/// Success without a value, or an error.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : error_(std::move(error)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return !error_.has_value(); }
    [[nodiscard]] const Error& error() const { return *error_; }

  private:
    std::optional<Error> error_;
};

} // namespace lumora::platform
