#include "bridge/records.h"

#include "support/json.h"

#include <array>
#include <variant>

namespace lumora {

namespace {

/// One field: its JSON key, which is its name, and its place in the record, whose type is the JSON type it needs.
template <class Record>
struct CodingKey {
    const char* stringValue;
    std::variant<std::string Record::*, std::int64_t Record::*, bool Record::*,
                 std::optional<std::string> Record::*>
        place;
};

/// The fields in the order in which they are read and written.
template <class Record>
struct CodingKeys;

template <>
struct CodingKeys<joinSessionMessage> {
    static constexpr std::array cases{
        CodingKey<joinSessionMessage>{"sessionKey", &joinSessionMessage::sessionKey},
        CodingKey<joinSessionMessage>{"email", &joinSessionMessage::email},
        CodingKey<joinSessionMessage>{"dc", &joinSessionMessage::dc},
    };
};

template <>
struct CodingKeys<customerDetails> {
    static constexpr std::array cases{
        CodingKey<customerDetails>{"name", &customerDetails::name},
        CodingKey<customerDetails>{"company", &customerDetails::company},
        CodingKey<customerDetails>{"email", &customerDetails::email},
        CodingKey<customerDetails>{"language", &customerDetails::language},
    };
};

template <>
struct CodingKeys<proxyDetails> {
    static constexpr std::array cases{
        CodingKey<proxyDetails>{"host", &proxyDetails::host},
        CodingKey<proxyDetails>{"port", &proxyDetails::port},
        CodingKey<proxyDetails>{"authRequired", &proxyDetails::authRequired},
        CodingKey<proxyDetails>{"userName", &proxyDetails::userName},
        CodingKey<proxyDetails>{"password", &proxyDetails::password},
    };
};

/// Takes one JSON value (nullptr: the key is missing) into a field of exactly its type; false when it does not fit.
struct Reader {
    const Json* value;

    bool operator()(std::string& field) const {
        const auto* text = value == nullptr ? nullptr : value->get_ptr<const Json::string_t*>();
        if (text == nullptr)
            return false;
        field = *text;
        return true;
    }

    bool operator()(std::int64_t& field) const {
        const auto number = value == nullptr ? std::nullopt : exactInteger(*value);
        field = number.value_or(0);
        return number.has_value();
    }

    bool operator()(bool& field) const {
        if (value == nullptr || !value->is_boolean())
            return false;
        field = value->get<bool>();
        return true;
    }

    bool operator()(std::optional<std::string>& field) const {
        field.reset();
        return value == nullptr || value->is_null() || (*this)(field.emplace());
    }
};

struct Writer {
    const char* key;
    OrderedJson& object;

    void operator()(const std::optional<std::string>& field) const {
        if (field)
            object[key] = *field;
    }

    template <class Field>
    void operator()(const Field& field) const {
        object[key] = field;
    }
};

template <class Record>
std::optional<Record> decodeRecord(std::string_view text) {
    const auto object = parseJson(text);
    if (!object || !object->is_object())
        return std::nullopt;
    Record record;
    for (const auto& key : CodingKeys<Record>::cases) {
        const Reader read{member(*object, key.stringValue)};
        if (!std::visit([&](auto place) { return read(record.*place); }, key.place))
            return std::nullopt;
    }
    return record;
}

template <class Record>
std::optional<std::string> encodeRecord(const Record& record) {
    OrderedJson object = OrderedJson::object();
    for (const auto& key : CodingKeys<Record>::cases)
        std::visit([&](auto place) { Writer{key.stringValue, object}(record.*place); }, key.place);
    return serializeJson(object);
}

} // namespace

template <>
std::optional<joinSessionMessage> decode<joinSessionMessage>(std::string_view text) {
    return decodeRecord<joinSessionMessage>(text);
}

template <>
std::optional<customerDetails> decode<customerDetails>(std::string_view text) {
    return decodeRecord<customerDetails>(text);
}

template <>
std::optional<proxyDetails> decode<proxyDetails>(std::string_view text) {
    return decodeRecord<proxyDetails>(text);
}

std::optional<std::string> encode(const joinSessionMessage& record) { return encodeRecord(record); }
std::optional<std::string> encode(const customerDetails& record) { return encodeRecord(record); }
std::optional<std::string> encode(const proxyDetails& record) { return encodeRecord(record); }

} // namespace lumora
