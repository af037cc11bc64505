#include "support/rendering.h"

#include <fmt/format.h>

namespace lumora {

namespace {

template <class AnyJson>
std::string compactText(const AnyJson& value) {
    return serializeJson(value).value_or(kNullPlaceholder);
}

} // namespace

std::string render(const std::optional<std::string>& text) { return text.value_or(kNullPlaceholder); }

std::string render(const std::vector<std::string>& list) { return compactText(Json(list)); }

std::string render(const std::optional<Json>& value) {
    if (!value || value->is_null())
        return kNullPlaceholder;
    if (const auto* text = value->get_ptr<const std::string*>())
        return *text;
    return compactText(*value);
}

std::string render(const platform::Error& error) {
    return fmt::format("Error Domain={} Code={} \"{}\"", error.domain, error.code,
                       error.localizedDescription);
}

std::string render(const std::optional<platform::Error>& error) {
    return error ? fmt::format("Optional({})", render(*error)) : "nil";
}

std::string render(const platform::PropertyListValue& value) {
    if (const auto* text = value.as<std::string>())
        return *text;
    if (const auto* flag = value.as<bool>())
        return *flag ? "1" : "0";
    if (const auto* number = value.as<std::int64_t>())
        return std::to_string(*number);
    if (const auto* number = value.as<double>())
        return fmt::format("{}", *number);
    if (const auto* data = value.as<platform::PropertyListData>())
        return fmt::format("<{:02x}>", fmt::join(data->bytes, ""));
    if (const auto* date = value.as<platform::PropertyListDate>())
        return fmt::format("{}", date->secondsSinceReferenceDate);
    const auto json = toJson(value);
    return json ? compactText(*json) : kNullPlaceholder;
}

} // namespace lumora
