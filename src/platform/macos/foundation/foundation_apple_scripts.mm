#include "platform/macos/foundation/foundation_apple_scripts.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/macos/foundation/property_list_values.h"

namespace lumora::platform::macos_backend {

namespace {

class FoundationAppleScript final : public AppleScript {
  public:
    explicit FoundationAppleScript(NSAppleScript* script) : script_(script) {}

    std::optional<AppleScriptError> execute() override {
        return atPort([&]() -> std::optional<AppleScriptError> {
            NSDictionary<NSString*, id>* error = nil;
            [script_ executeAndReturnError:&error];
            if (error == nil)
                return std::nullopt;
            const auto number = valueFrom<std::int64_t>([error objectForKey:NSAppleScriptErrorNumber]);
            return AppleScriptError{static_cast<int>(number.value_or(0)),
                                    valueFrom<std::string>([error objectForKey:NSAppleScriptErrorMessage])};
        });
    }

  private:
    NSAppleScript* script_;
};

} // namespace

std::unique_ptr<AppleScript> FoundationAppleScripts::makeScript(const std::string& source) {
    return atPort([&]() -> std::unique_ptr<AppleScript> {
        NSAppleScript* script = [[NSAppleScript alloc] initWithSource:nsString(source)];
        if (script == nil)
            return nullptr;
        return std::make_unique<FoundationAppleScript>(script);
    });
}

} // namespace lumora::platform::macos_backend
