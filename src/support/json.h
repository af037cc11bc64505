#pragma once

#include "platform/property_list.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumora {

/// What was received. Its objects look members up quickly, however many a hostile text brings.
using Json = nlohmann::json;

/// What is sent or stored: its objects keep the order in which their few members were put in.
using OrderedJson = nlohmann::ordered_json;

/// Nesting beyond this is refused, as the platform's own parser refuses it (NSJSONSerialization stops at 512).
inline constexpr int kMaximumJsonDepth = 512;

/// Parses one JSON text. Absent for anything malformed, trailing text and too deep nesting.
[[nodiscard]] std::optional<Json> parseJson(std::string_view text);

/// The member of an object; nullptr when `object` is no object or lacks it.
[[nodiscard]] const Json* member(const Json& object, const std::string& key);

/// The number as a signed 64-bit integer, when it is exactly integral and fits (1.0 and 1e9 do, 1.5 does not).
[[nodiscard]] std::optional<std::int64_t> exactInteger(const Json& value);

/// The boolean conversion of update answers: true/false as they are, numbers by being non-zero, text by the
/// platform's rule (after blanks, a sign and zeros: Y, y, T, t or a digit from 1 to 9).
[[nodiscard]] bool booleanConversion(const Json& value);

/// A stored preference as JSON: null for an absent one; nothing for what JSON cannot carry (data, dates,
/// non-finite numbers).
[[nodiscard]] std::optional<OrderedJson> toJson(const std::optional<platform::PropertyListValue>& value);

/// Compact JSON text; nothing when a text inside is not valid UTF-8.
[[nodiscard]] std::optional<std::string> serializeJson(const Json& value);
[[nodiscard]] std::optional<std::string> serializeJson(const OrderedJson& value);

} // namespace lumora
