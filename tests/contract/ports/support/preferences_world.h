#pragma once

#include "platform/preferences.h"

#include <memory>
#include <string>
#include <vector>

namespace lumora::contract {

/// The preferences of a domain that is nobody's but the test's, gone at the end: folders of its own, or the domain of this
/// program's own bundle. A world made in another process of the suite is the same one. One implementation a backend.
class PreferencesWorld {
  public:
    static constexpr const char* kDomain = "com.ovra.tessel.contract.preferences";
    static constexpr const char* kOtherDomain = "com.ovra.tessel.contract.other";

    PreferencesWorld();
    ~PreferencesWorld();
    PreferencesWorld(const PreferencesWorld&) = delete;
    PreferencesWorld& operator=(const PreferencesWorld&) = delete;

    /// As an application finds them at its start.
    /// @param launchArguments  this process's own; a backend may know them by itself
    [[nodiscard]] std::unique_ptr<platform::Preferences>
    open(const std::vector<std::string>& launchArguments = {});

    /// Makes this all that the domain's user level holds.
    void store(const platform::PropertyListDictionary& values);

    /// All that the user level of a domain holds.
    [[nodiscard]] platform::PropertyListDictionary stored(const std::string& domain = kDomain);

    /// The same for the level of all users; false where that is a real machine's.
    [[nodiscard]] bool storeForAllUsers(const platform::PropertyListDictionary& values);

    /// Where the domain's values for all users would lie.
    [[nodiscard]] std::string fileOfAllUsers() const;

    /// Makes this process an ordinary user's who has preferences; false when it cannot be one.
    [[nodiscard]] bool becomeOrdinaryUser();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumora::contract
