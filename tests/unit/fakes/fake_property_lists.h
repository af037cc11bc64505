#pragma once

#include "platform/property_list.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace lumora::fakes {

/// Hands out a token for each serialised value and takes the token back, so that tests compare values, not bytes.
/// The real format is checked on the real backend.
class FakePropertyLists final : public platform::PropertyListSerialization {
  public:
    bool failSerialize = false;
    std::function<void()> onSerialize = [] {};

    platform::Result<platform::PropertyListValue> parse(std::string_view bytes) override {
        const auto found = values_.find(std::string(bytes));
        if (found == values_.end())
            return platform::Error{"NSCocoaErrorDomain", 3840, "Not a property list.", {}};
        return found->second;
    }

    platform::Result<std::string> serializeXml(const platform::PropertyListValue& value) override {
        onSerialize();
        if (failSerialize)
            return platform::Error{"NSCocoaErrorDomain", 3851, "Not serialisable.", {}};
        return tokenFor(value);
    }

    std::string tokenFor(const platform::PropertyListValue& value) {
        std::string token = "plist #" + std::to_string(values_.size() + 1);
        values_.emplace(token, value);
        return token;
    }

  private:
    std::map<std::string, platform::PropertyListValue> values_;
};

} // namespace lumora::fakes
