#include "platform/linux/ports/linux_property_lists.h"

#include "platform/linux/ports/binary_property_list_check.h"
#include "platform/linux/ports/property_list_date.h"
#include "platform/linux/ports/property_list_limits.h"
#include "platform/linux/ports/xml_property_list_writer.h"
#include "platform/linux/ports/xml_text.h"
#include "support/property_lists.h"

#include <plist/plist.h>

#include <charconv>
#include <clocale>
#include <cstdlib>
#include <memory>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr int kReadCorrupt = 3840; // NSPropertyListReadCorruptError

Error unreadable(const std::string& reason) {
    return Error{"NSCocoaErrorDomain", kReadCorrupt, "The property list cannot be read: " + reason + ".", {}};
}

struct FreePlist {
    void operator()(void* node) const { plist_free(node); }
};
using PlistNode = std::unique_ptr<void, FreePlist>;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using CText = std::unique_ptr<char, FreeMemory>;

// The library reads numbers by the thread's locale, in which the decimal sign may be a comma.
class CLocaleScope {
  public:
    CLocaleScope() : previous_(uselocale(cLocale())) {}
    ~CLocaleScope() { uselocale(previous_); }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

  private:
    static locale_t cLocale() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr); // lives as long as the process
        return locale;
    }

    locale_t previous_;
};

// The library keeps integers without telling their sign, and cuts dates to 32 bits; its XML form of the single node
// tells both whole.
std::string xmlContentOf(plist_t node) {
    char* xml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node, &xml, &length);
    const CText owner(xml);
    const std::string_view text(xml == nullptr ? "" : xml, xml == nullptr ? 0 : length);
    const std::size_t root = text.find("<plist");
    const std::size_t element = text.find('<', root + 1);
    const std::size_t begin = text.find('>', element);
    if (root == std::string_view::npos || element == std::string_view::npos ||
        begin == std::string_view::npos)
        return {};
    return std::string(text.substr(begin + 1, text.find('<', begin) - begin - 1));
}

Result<PropertyListValue> convert(plist_t node, std::size_t level);

Result<PropertyListValue> convertInteger(plist_t node) {
    const std::string text = xmlContentOf(node);
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, number);
    if (fault == std::errc::result_out_of_range)
        return PropertyListValue(std::strtod(text.c_str(), nullptr)); // above what a signed integer holds
    if (fault != std::errc{} || rest != end)
        return unreadable("an integer in it is malformed");
    return PropertyListValue(number);
}

Result<PropertyListValue> convertString(plist_t node) {
    char* text = nullptr;
    plist_get_string_val(node, &text);
    const CText owner(text);
    return PropertyListValue(std::string(text == nullptr ? "" : text));
}

Result<PropertyListValue> convertData(plist_t node) {
    std::uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(node, &length);
    PropertyListData data;
    if (bytes != nullptr)
        data.bytes.assign(bytes, bytes + length);
    return PropertyListValue(std::move(data));
}

Result<PropertyListValue> convertDate(plist_t node) {
    const auto date = dateFromXml(xmlContentOf(node));
    return date ? Result<PropertyListValue>(PropertyListValue(*date))
                : unreadable("a date in it is malformed");
}

Result<PropertyListValue> convertArray(plist_t node, std::size_t level) {
    PropertyListArray array;
    const std::uint32_t count = plist_array_get_size(node);
    plist_array_iter position = nullptr;
    plist_array_new_iter(node, &position);
    const CText owner(static_cast<char*>(position));
    for (std::uint32_t index = 0; index < count; ++index) {
        plist_t item = nullptr;
        plist_array_next_item(node, position, &item);
        Result<PropertyListValue> value = convert(item, level + 1);
        if (!value)
            return value;
        array.push_back(std::move(value.value()));
    }
    return PropertyListValue(std::move(array));
}

Result<PropertyListValue> convertDictionary(plist_t node, std::size_t level) {
    PropertyListDictionary dictionary;
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(node, &position);
    const CText owner(static_cast<char*>(position));
    for (;;) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, position, &key, &item);
        if (item == nullptr)
            return PropertyListValue(std::move(dictionary));
        const CText keyOwner(key);
        Result<PropertyListValue> value = convert(item, level + 1);
        if (!value)
            return value;
        dictionary.insert_or_assign(key, std::move(value.value()));
    }
}

Result<PropertyListValue> convert(plist_t node, std::size_t level) {
    if (level > kMaximumNesting)
        return unreadable("it is nested too deeply");
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t flag = 0;
        plist_get_bool_val(node, &flag);
        return PropertyListValue(flag != 0);
    }
    case PLIST_REAL: {
        double number = 0;
        plist_get_real_val(node, &number);
        return PropertyListValue(number);
    }
    case PLIST_UINT:
        return convertInteger(node);
    case PLIST_STRING:
        return convertString(node);
    case PLIST_DATA:
        return convertData(node);
    case PLIST_DATE:
        return convertDate(node);
    case PLIST_ARRAY:
        return convertArray(node, level);
    case PLIST_DICT:
        return convertDictionary(node, level);
    default:
        return unreadable("it holds a value of an unknown type");
    }
}

} // namespace

Result<PropertyListValue> LinuxPropertyLists::parse(std::string_view bytes) {
    if (bytes.size() > kMaximumPropertyListBytes)
        return unreadable("it is too large");

    const CLocaleScope locale;
    plist_t root = nullptr;
    if (bytes.starts_with(kBinaryPropertyListMagic)) {
        if (!isDecodableBinaryPropertyList(bytes))
            return unreadable("its binary form is malformed or beyond the limits");
        plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    } else {
        if (!isXmlText(bytes))
            return unreadable("it is neither a binary property list nor XML in UTF-8");
        if (containersInXmlPropertyList(bytes) > kMaximumXmlContainers)
            return unreadable("it holds too many lists and dictionaries");
        if (bytes.starts_with(kByteOrderMark)) // some editors begin every file with it
            bytes.remove_prefix(kByteOrderMark.size());
        plist_from_xml(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    }
    const PlistNode owner(root);
    if (!owner)
        return unreadable("it is malformed");
    return convert(root, 1);
}

Result<std::string> LinuxPropertyLists::serializeXml(const PropertyListValue& value) {
    if (auto fault = faultAsXml(value))
        return std::move(*fault);
    return xmlPropertyList(value);
}

} // namespace lumora::platform::linux_backend
