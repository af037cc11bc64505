#include "platform/linux/ports/xml_property_list_writer.h"

#include "platform/linux/ports/property_list_date.h"
#include "platform/linux/ports/property_list_limits.h"
#include "platform/linux/ports/xml_text.h"

#include <fmt/format.h>
#include <glib.h>

#include <cmath>
#include <memory>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                   "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                   "<plist version=\"1.0\">\n";
constexpr std::string_view kTail = "</plist>\n";
constexpr int kWriteError = 3851; // NSPropertyListWriteStreamError

std::string realText(double number) {
    if (std::isnan(number))
        return "nan";
    if (std::isinf(number))
        return number > 0 ? "+infinity" : "-infinity";
    return fmt::format("{}", number); // the shortest text that reads back as the same number
}

/// Appends one value after the other; stops at the first that cannot be written.
class Writer {
  public:
    bool write(const PropertyListValue& value, std::size_t level) {
        if (level > kMaximumNesting)
            return fail("it is nested too deeply");
        indent(level);
        return std::visit([&](const auto& stored) { return writeStored(stored, level); }, value.storage());
    }

    std::string text;
    std::string fault;

  private:
    bool fail(const std::string& reason) {
        fault = reason;
        return false;
    }

    void indent(std::size_t level) { text.append(level - 1, '\t'); }

    bool element(std::string_view name, std::string_view content) {
        text += fmt::format("<{0}>{1}</{0}>\n", name, content);
        return true;
    }

    bool textElement(std::string_view name, const std::string& content) {
        if (!isXmlText(content))
            return fail("a text in it holds characters that XML cannot carry");
        return element(name, escapedForXml(content));
    }

    bool writeStored(const std::string& stored, std::size_t) { return textElement("string", stored); }
    bool writeStored(std::int64_t stored, std::size_t) { return element("integer", std::to_string(stored)); }
    bool writeStored(double stored, std::size_t) { return element("real", realText(stored)); }

    bool writeStored(bool stored, std::size_t) {
        text += stored ? "<true/>\n" : "<false/>\n";
        return true;
    }

    bool writeStored(const PropertyListData& stored, std::size_t) {
        const std::unique_ptr<gchar, decltype(&g_free)> encoded(
            g_base64_encode(stored.bytes.data(), stored.bytes.size()), &g_free);
        return element("data", encoded.get());
    }

    bool writeStored(const PropertyListDate& stored, std::size_t) {
        const auto date = xmlDate(stored);
        return date ? element("date", *date) : fail("a date in it is out of range");
    }

    bool writeStored(const PropertyListArray& stored, std::size_t level) {
        text += "<array>\n";
        for (const PropertyListValue& value : stored) {
            if (!write(value, level + 1))
                return false;
        }
        indent(level);
        text += "</array>\n";
        return true;
    }

    bool writeStored(const PropertyListDictionary& stored, std::size_t level) {
        text += "<dict>\n";
        for (const auto& [key, value] : stored) {
            indent(level + 1);
            if (!textElement("key", key) || !write(value, level + 1))
                return false;
        }
        indent(level);
        text += "</dict>\n";
        return true;
    }
};

} // namespace

Result<std::string> writeXmlPropertyList(const PropertyListValue& value) {
    Writer writer;
    writer.text = kHead;
    if (!writer.write(value, 1))
        return Error{"NSCocoaErrorDomain",
                     kWriteError,
                     "The property list cannot be written: " + writer.fault + ".",
                     {}};
    writer.text += kTail;
    return std::move(writer.text);
}

} // namespace lumora::platform::linux_backend
