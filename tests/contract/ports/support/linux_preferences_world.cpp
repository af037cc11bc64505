#include "platform/linux/ports/linux_preferences.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "support/preferences_world.h"
#include "support/temporary_folder.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>

namespace lumora::contract {

namespace fs = std::filesystem;
using platform::PropertyListDictionary;
using platform::linux_backend::LinuxPreferences;

namespace {

constexpr const char* kFolderVariable = "LUMORA_CONTRACT_PREFERENCES";
constexpr uid_t kOrdinaryUser = 65534;
constexpr fs::perms kOwnFolder{0755};
constexpr fs::perms kOthersFolder{0555}; // as it is to all but the superuser

std::string fileIn(const std::string& folder, const std::string& domain) {
    return folder + "/" + domain + ".plist";
}

} // namespace

struct PreferencesWorld::State {
    void store(const std::string& folder, const PropertyListDictionary& values) {
        writeFile(fileIn(folder, kDomain), lists.serializeXml(values).value());
    }

    std::optional<TemporaryFolder> own; ///< absent in another process
    platform::linux_backend::PreferenceFolders folders;
    platform::linux_backend::LinuxPropertyLists lists;
};

PreferencesWorld::PreferencesWorld() : state_(std::make_unique<State>()) {
    const char* given = std::getenv(kFolderVariable);
    const fs::path folder = given != nullptr ? fs::path(given) : state_->own.emplace().path();
    state_->folders.managed = folder / "managed";
    state_->folders.user = folder / "user";
    state_->folders.system = folder / "system";
    if (given != nullptr)
        return;
    ::setenv(kFolderVariable, folder.c_str(), 1);
    fs::permissions(folder, fs::perms(0755));
    fs::create_directory(state_->folders.system);
    fs::permissions(state_->folders.system, kOthersFolder);
    fs::create_directory(state_->folders.user);
    fs::permissions(state_->folders.user, fs::perms(0777)); // whoever the ordinary user is
}

PreferencesWorld::~PreferencesWorld() {
    if (!state_->own)
        return;
    fs::permissions(state_->folders.system, kOwnFolder); // to be removed
    ::unsetenv(kFolderVariable);
}

std::unique_ptr<platform::Preferences>
PreferencesWorld::open(const std::vector<std::string>& launchArguments) {
    return std::make_unique<LinuxPreferences>(launchArguments, state_->folders, state_->lists, kDomain);
}

void PreferencesWorld::store(const PropertyListDictionary& values) {
    state_->store(state_->folders.user, values);
}

PropertyListDictionary PreferencesWorld::stored(const std::string& domain) {
    const auto list = state_->lists.parse(contentsOf(fileIn(state_->folders.user, domain)));
    const auto* dictionary = list ? list.value().as<PropertyListDictionary>() : nullptr;
    return dictionary == nullptr ? PropertyListDictionary{} : *dictionary;
}

bool PreferencesWorld::storeForAllUsers(const PropertyListDictionary& values) {
    fs::permissions(state_->folders.system, kOwnFolder);
    state_->store(state_->folders.system, values);
    fs::permissions(state_->folders.system, kOthersFolder);
    return true;
}

std::string PreferencesWorld::fileOfAllUsers() const { return fileIn(state_->folders.system, kDomain); }

bool PreferencesWorld::becomeOrdinaryUser() {
    return ::geteuid() != 0 || (::setgid(kOrdinaryUser) == 0 && ::setuid(kOrdinaryUser) == 0);
}

} // namespace lumora::contract
