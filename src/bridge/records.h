#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumora {

/// The join details that the join page sends.
struct joinSessionMessage {
    std::int64_t sessionKey = 0;
    std::string email;
    std::optional<std::string> dc; ///< absent and null both mean that the page named no data centre

    bool operator==(const joinSessionMessage&) const = default;
};

/// The customer's own details, remembered between runs.
struct customerDetails {
    std::string name;
    std::string company;
    std::string email;
    std::string language;

    bool operator==(const customerDetails&) const = default;
};

/// Proxy settings entered on the page. The port's range is not checked here.
struct proxyDetails {
    std::string host;
    std::int64_t port = 0;
    bool authRequired = false;
    std::string userName;
    std::string password;

    bool operator==(const proxyDetails&) const = default;
};

/// Decodes a record from JSON text whose top level is an object. Keys are matched exactly, unknown ones are ignored; a
/// missing or null required key, or a value of another JSON type, fails the whole record.
template <class Record>
[[nodiscard]] std::optional<Record> decode(std::string_view text);

template <>
std::optional<joinSessionMessage> decode<joinSessionMessage>(std::string_view text);
template <>
std::optional<customerDetails> decode<customerDetails>(std::string_view text);
template <>
std::optional<proxyDetails> decode<proxyDetails>(std::string_view text);

/// Writes a record out under the same keys, in the same order; an absent `dc` is left out. Nothing when a text is not
/// valid UTF-8.
[[nodiscard]] std::optional<std::string> encode(const joinSessionMessage& record);
[[nodiscard]] std::optional<std::string> encode(const customerDetails& record);
[[nodiscard]] std::optional<std::string> encode(const proxyDetails& record);

} // namespace lumora
