#include "support/json.h"

#include "support/characters.h"

#include <cmath>
#include <limits>

namespace lumora {

namespace {

/// Whether brackets outside of strings nest deeper than the parser may be let. A pass of its own: the parser's callback,
/// which could tell, makes it walk a whole container again for each object in it. Text that is not JSON may be counted
/// wrongly, but only behind the place where the parser refuses it.
bool nestsTooDeeply(std::string_view text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (inString && character == '\\')
            ++at; // the next one is escaped, be it a quote
        else if (character == '"')
            inString = !inString;
        else if (!inString && (character == '[' || character == '{') && ++depth > kMaximumJsonDepth)
            return true;
        else if (!inString && (character == ']' || character == '}'))
            --depth;
    }
    return false;
}

std::optional<OrderedJson> toJsonValue(const platform::PropertyListValue& value);

struct ToJson {
    std::optional<OrderedJson> operator()(const std::string& text) const { return OrderedJson(text); }
    std::optional<OrderedJson> operator()(std::int64_t number) const { return OrderedJson(number); }
    std::optional<OrderedJson> operator()(bool flag) const { return OrderedJson(flag); }

    std::optional<OrderedJson> operator()(double number) const {
        if (!std::isfinite(number))
            return std::nullopt;
        return OrderedJson(number);
    }

    std::optional<OrderedJson> operator()(const platform::PropertyListData&) const { return std::nullopt; }
    std::optional<OrderedJson> operator()(const platform::PropertyListDate&) const { return std::nullopt; }

    std::optional<OrderedJson> operator()(const platform::PropertyListArray& array) const {
        OrderedJson list = OrderedJson::array();
        for (const auto& element : array) {
            auto json = toJsonValue(element);
            if (!json)
                return std::nullopt;
            list.push_back(std::move(*json));
        }
        return list;
    }

    std::optional<OrderedJson> operator()(const platform::PropertyListDictionary& dictionary) const {
        OrderedJson object = OrderedJson::object();
        for (const auto& [key, element] : dictionary) {
            auto json = toJsonValue(element);
            if (!json)
                return std::nullopt;
            object[key] = std::move(*json);
        }
        return object;
    }
};

std::optional<OrderedJson> toJsonValue(const platform::PropertyListValue& value) {
    return std::visit(ToJson{}, value.storage());
}

template <class AnyJson>
std::optional<std::string> compactText(const AnyJson& value) {
    try {
        return value.dump();
    } catch (const typename AnyJson::type_error&) {
        return std::nullopt; // text that is not UTF-8 has no JSON form
    }
}

} // namespace

std::optional<Json> parseJson(std::string_view text) {
    if (text.find('\0') != std::string_view::npos)
        return std::nullopt; // the parser takes it for the end of the text and would not see what follows
    if (nestsTooDeeply(text))
        return std::nullopt;
    Json value = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (value.is_discarded())
        return std::nullopt;
    return value;
}

const Json* member(const Json& object, const std::string& key) {
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

std::optional<std::int64_t> exactInteger(const Json& value) {
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return std::nullopt;
        return static_cast<std::int64_t>(number);
    }
    if (value.is_number_integer())
        return value.get<std::int64_t>();
    if (!value.is_number_float())
        return std::nullopt;
    const auto number = value.get<double>();
    constexpr double kTwoTo63 = 9223372036854775808.0;
    // The parser makes a double of an integer that does not fit: the least integer's double may be such a one.
    if (std::trunc(number) != number || number <= -kTwoTo63 || number >= kTwoTo63)
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

bool booleanConversion(const Json& value) {
    if (value.is_boolean())
        return value.get<bool>();
    if (value.is_number())
        return value.get<double>() != 0;
    const auto* text = value.get_ptr<const Json::string_t*>();
    if (text == nullptr)
        return false;
    std::string_view rest = trimmed(*text);
    if (!rest.empty() && (rest.front() == '+' || rest.front() == '-'))
        rest.remove_prefix(1);
    while (!rest.empty() && rest.front() == '0')
        rest.remove_prefix(1);
    constexpr std::string_view kTrueBeginnings = "YyTt123456789";
    return !rest.empty() && kTrueBeginnings.find(rest.front()) != std::string_view::npos;
}

std::optional<OrderedJson> toJson(const std::optional<platform::PropertyListValue>& value) {
    return value ? toJsonValue(*value) : std::optional<OrderedJson>(OrderedJson(nullptr));
}

std::optional<std::string> serializeJson(const Json& value) { return compactText(value); }

std::optional<std::string> serializeJson(const OrderedJson& value) { return compactText(value); }

} // namespace lumora
