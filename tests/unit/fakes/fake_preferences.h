#pragma once

#include "platform/preferences.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace lumora::fakes {

/// Layered preferences in memory. `arguments` win over `managed`, `user` and `system`, in this order.
class FakePreferences final : public platform::Preferences {
  public:
    using Level = std::map<std::string, platform::PropertyListValue>;
    Level arguments, managed, user, system;

    /// Every write and flush in order: "set KEY", "synchronize", "setValue DOMAIN user KEY", "flush DOMAIN system".
    std::vector<std::string> journal;
    bool throwOnRead = false; ///< lets a test reach an operation's exception guard
    std::function<void()> onSynchronize = [] {};

    std::optional<platform::PropertyListValue> objectForKey(const std::string& key) override {
        if (throwOnRead)
            throw std::runtime_error("defaults unavailable");
        for (const auto* level : {&arguments, &managed, &user, &system})
            if (const auto found = level->find(key); found != level->end())
                return found->second;
        return std::nullopt;
    }

    void setObject(const std::string& key, const platform::PropertyListValue& value) override {
        journal.push_back("set " + key);
        user.insert_or_assign(key, value);
    }

    void synchronize() override {
        journal.push_back("synchronize");
        onSynchronize();
    }

    void setValue(const std::string& key, const platform::PropertyListValue& value, const std::string& domain,
                  platform::PreferenceLevel level) override {
        journal.push_back("setValue " + domain + " " + nameOf(level) + " " + key);
        (level == platform::PreferenceLevel::currentUserAnyHost ? user : system).insert_or_assign(key, value);
    }

    bool synchronize(const std::string& domain, platform::PreferenceLevel level) override {
        journal.push_back("flush " + domain + " " + nameOf(level));
        return true;
    }

  private:
    static std::string nameOf(platform::PreferenceLevel level) {
        return level == platform::PreferenceLevel::currentUserAnyHost ? "user" : "system";
    }
};

} // namespace lumora::fakes
