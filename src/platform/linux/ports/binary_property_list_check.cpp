#include "platform/linux/ports/binary_property_list_check.h"

#include "platform/linux/ports/property_list_limits.h"
#include "support/property_lists.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace lumora::platform::linux_backend {

namespace {

constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kTrailerOffsetSize = 6;
constexpr std::size_t kTrailerReferenceSize = 7;
constexpr std::size_t kTrailerObjectCount = 8;
constexpr std::size_t kTrailerTopObject = 16;
constexpr std::size_t kTrailerTable = 24;
constexpr unsigned kLengthFollows = 0xF;

// The upper half of an object's first byte.
enum Kind : unsigned {
    kSimple = 0,
    kInteger = 1,
    kReal = 2,
    kDate = 3,
    kData = 4,
    kAscii = 5,
    kUtf16 = 6,
    kArray = 0xA,
    kDictionary = 0xD
};

/// What an object unfolds to.
struct Extent {
    std::size_t weight = 0; ///< objects and payload bytes, shared ones counted at every use
    std::size_t height = 0; ///< levels below and including it
};

class Checker {
  public:
    explicit Checker(std::string_view bytes) : bytes_(bytes) {}

    bool run() {
        if (bytes_.size() < kBinaryPropertyListMagic.size() + kTrailerSize)
            return false;
        const std::size_t trailer = bytes_.size() - kTrailerSize;
        offsetSize_ = byteAt(trailer + kTrailerOffsetSize);
        referenceSize_ = byteAt(trailer + kTrailerReferenceSize);
        const std::uint64_t count = number(trailer + kTrailerObjectCount, 8);
        const std::uint64_t top = number(trailer + kTrailerTopObject, 8);
        const std::uint64_t table = number(trailer + kTrailerTable, 8);
        if (!isNumberSize(offsetSize_) || !isNumberSize(referenceSize_) || table > trailer || top >= count ||
            count > (trailer - table) / offsetSize_)
            return false;
        end_ = static_cast<std::size_t>(table);
        table_ = end_;
        states_.assign(static_cast<std::size_t>(count), State{});
        return measure(static_cast<std::size_t>(top), 1).has_value();
    }

  private:
    struct State {
        enum { unseen, open, done } progress = unseen;
        Extent extent;
    };

    static bool isNumberSize(std::size_t size) { return size == 1 || size == 2 || size == 4 || size == 8; }

    [[nodiscard]] unsigned byteAt(std::size_t offset) const {
        return static_cast<unsigned char>(bytes_[offset]);
    }

    [[nodiscard]] std::uint64_t number(std::size_t offset, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t index = 0; index < size; ++index)
            value = value << 8U | byteAt(offset + index);
        return value;
    }

    std::optional<Extent> measure(std::size_t object, std::size_t level) {
        if (object >= states_.size() || level > kMaximumNesting || states_[object].progress == State::open)
            return std::nullopt;
        if (states_[object].progress == State::done) {
            if (level + states_[object].extent.height - 1 > kMaximumNesting)
                return std::nullopt;
            return states_[object].extent;
        }
        states_[object].progress = State::open;
        const std::optional<Extent> extent =
            measureAt(number(table_ + object * offsetSize_, offsetSize_), level);
        if (!extent)
            return std::nullopt;
        states_[object] = {State::done, *extent};
        return extent;
    }

    std::optional<Extent> measureAt(std::uint64_t offset, std::size_t level) {
        if (offset < kBinaryPropertyListMagic.size() || offset >= end_)
            return std::nullopt;
        std::size_t position = static_cast<std::size_t>(offset);
        const unsigned kind = byteAt(position) >> 4U;
        std::uint64_t length = byteAt(position) & 0xFU;
        ++position;

        switch (kind) {
        case kSimple:
            return length == 8 || length == 9 ? std::optional(Extent{1, 1}) : std::nullopt; // false, true
        case kInteger:
            return length <= 4 ? leaf(position, 1ULL << length) : std::nullopt;
        case kReal:
            return length == 2 || length == 3 ? leaf(position, 1ULL << length) : std::nullopt;
        case kDate:
            return length == 3 ? leaf(position, 8) : std::nullopt;
        default:
            break;
        }

        if (length == kLengthFollows && !readLength(position, length))
            return std::nullopt;
        if (length > bytes_.size())
            return std::nullopt;
        switch (kind) {
        case kData:
            return leaf(position, length);
        case kAscii:
            return text(position, length, 1);
        case kUtf16:
            return text(position, length, 2);
        case kArray:
            return container(position, length, level);
        case kDictionary:
            return container(position, 2 * length, level);
        default:
            return std::nullopt;
        }
    }

    bool readLength(std::size_t& position, std::uint64_t& length) const {
        if (position >= end_ || byteAt(position) >> 4U != kInteger || (byteAt(position) & 0xFU) > 3)
            return false;
        const std::size_t size = std::size_t{1} << (byteAt(position) & 0xFU);
        ++position;
        if (size > end_ - position)
            return false;
        length = number(position, size);
        position += size;
        return true;
    }

    [[nodiscard]] std::optional<Extent> leaf(std::size_t position, std::uint64_t length) const {
        if (length > end_ - position)
            return std::nullopt;
        return Extent{1 + static_cast<std::size_t>(length), 1};
    }

    /// A NUL is no part of a text: the library would cut it there, or end the process.
    [[nodiscard]] std::optional<Extent> text(std::size_t position, std::uint64_t length,
                                             std::size_t unit) const {
        const auto extent = leaf(position, unit * length);
        for (std::size_t at = 0; extent && at < length; ++at) {
            if (number(position + at * unit, unit) == 0)
                return std::nullopt;
        }
        return extent;
    }

    std::optional<Extent> container(std::size_t position, std::uint64_t references, std::size_t level) {
        if (references > (end_ - position) / referenceSize_)
            return std::nullopt;
        Extent extent{1, 1};
        for (std::uint64_t index = 0; index < references; ++index, position += referenceSize_) {
            const auto child = measure(static_cast<std::size_t>(number(position, referenceSize_)), level + 1);
            if (!child)
                return std::nullopt;
            extent.weight += child->weight;
            extent.height = std::max(extent.height, child->height + 1);
            if (extent.weight > kMaximumPropertyListBytes)
                return std::nullopt;
        }
        return extent;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t table_ = 0;
    std::size_t end_ = 0; ///< where the objects end
    std::vector<State> states_;
};

} // namespace

bool isDecodableBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with(kBinaryPropertyListMagic) && Checker(bytes).run();
}

} // namespace lumora::platform::linux_backend
