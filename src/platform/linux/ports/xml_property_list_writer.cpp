#include "platform/linux/ports/xml_property_list_writer.h"

#include "platform/linux/ports/property_list_date.h"
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

std::string realText(double number) {
    if (std::isnan(number))
        return "nan";
    if (std::isinf(number))
        return number > 0 ? "+infinity" : "-infinity";
    return fmt::format("{}", number); // the shortest text that reads back as the same number
}

/// Appends one value after the other.
class Writer {
  public:
    void write(const PropertyListValue& value, std::size_t level) {
        indent(level);
        std::visit([&](const auto& stored) { writeStored(stored, level); }, value.storage());
    }

    std::string text;

  private:
    void indent(std::size_t level) { text.append(level - 1, '\t'); }

    void element(std::string_view name, std::string_view content) {
        text += fmt::format("<{0}>{1}</{0}>\n", name, content);
    }

    void writeStored(const std::string& stored, std::size_t) { element("string", escapedForXml(stored)); }
    void writeStored(std::int64_t stored, std::size_t) { element("integer", std::to_string(stored)); }
    void writeStored(double stored, std::size_t) { element("real", realText(stored)); }
    void writeStored(bool stored, std::size_t) { text += stored ? "<true/>\n" : "<false/>\n"; }
    void writeStored(const PropertyListDate& stored, std::size_t) { element("date", xmlDate(stored)); }

    void writeStored(const PropertyListData& stored, std::size_t) {
        const std::unique_ptr<gchar, decltype(&g_free)> encoded(
            g_base64_encode(stored.bytes.data(), stored.bytes.size()), &g_free);
        element("data", encoded.get());
    }

    void writeStored(const PropertyListArray& stored, std::size_t level) {
        text += "<array>\n";
        for (const PropertyListValue& value : stored)
            write(value, level + 1);
        indent(level);
        text += "</array>\n";
    }

    void writeStored(const PropertyListDictionary& stored, std::size_t level) {
        text += "<dict>\n";
        for (const auto& [key, value] : stored) {
            indent(level + 1);
            element("key", escapedForXml(key));
            write(value, level + 1);
        }
        indent(level);
        text += "</dict>\n";
    }
};

} // namespace

std::string xmlPropertyList(const PropertyListValue& value) {
    Writer writer;
    writer.text = kHead;
    writer.write(value, 1);
    writer.text += kTail;
    return std::move(writer.text);
}

} // namespace lumora::platform::linux_backend
