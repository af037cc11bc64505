#include "support/property_lists.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <cmath>

namespace lumora {

namespace {

constexpr int kWriteInvalid = 3852;              // NSPropertyListWriteInvalidError
constexpr double kYear1 = -63'113'904'000.0;     // 0001-01-01T00:00:00Z in seconds since the reference date
constexpr double kYear10000 = 252'423'993'600.0; // 10000-01-01T00:00:00Z

bool isXmlCharacter(utf8proc_int32_t character) {
    if (character < 0x20)
        return character == '\t' || character == '\n' || character == '\r';
    return character != 0xFFFE && character != 0xFFFF;
}

/// Looks for the first fault; null when there is none.
struct FaultFinder {
    std::size_t level = 1;

    const char* operator()(const std::string& text) const {
        return isXmlText(text) ? nullptr : "a text in it holds characters that XML cannot carry";
    }
    const char* operator()(platform::PropertyListDate date) const {
        const double second = std::floor(date.secondsSinceReferenceDate); // a not-a-number fails too
        return second >= kYear1 && second < kYear10000 ? nullptr : "a date in it is out of range";
    }
    const char* operator()(const platform::PropertyListArray& array) const {
        for (const platform::PropertyListValue& value : array) {
            if (const char* fault = inner(value))
                return fault;
        }
        return nullptr;
    }
    const char* operator()(const platform::PropertyListDictionary& dictionary) const {
        for (const auto& [key, value] : dictionary) {
            const char* fault = (*this)(key);
            if (fault == nullptr)
                fault = inner(value);
            if (fault != nullptr)
                return fault;
        }
        return nullptr;
    }
    template <class Plain>
    const char* operator()(const Plain&) const {
        return nullptr;
    }

    [[nodiscard]] const char* inner(const platform::PropertyListValue& value) const {
        return level == kMaximumNesting ? "it is nested too deeply"
                                        : std::visit(FaultFinder{level + 1}, value.storage());
    }
};

} // namespace

bool isXmlText(std::string_view text) {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    auto left = static_cast<utf8proc_ssize_t>(text.size());
    while (left > 0) {
        utf8proc_int32_t character = 0;
        const utf8proc_ssize_t length = utf8proc_iterate(bytes, left, &character);
        if (length <= 0 || !isXmlCharacter(character))
            return false;
        bytes += length;
        left -= length;
    }
    return true;
}

std::optional<platform::Error> faultAsXml(const platform::PropertyListValue& value) {
    const char* fault = std::visit(FaultFinder{}, value.storage());
    if (fault == nullptr)
        return std::nullopt;
    return platform::Error{"NSCocoaErrorDomain",
                           kWriteInvalid,
                           fmt::format("The property list cannot be written: {}.", fault),
                           {}};
}

} // namespace lumora
