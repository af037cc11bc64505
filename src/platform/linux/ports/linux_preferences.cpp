#include "platform/linux/ports/linux_preferences.h"

#include "platform/linux/ports/launch_arguments.h"

namespace lumora::platform::linux_backend {

namespace {

constexpr mode_t kUserFileMode = 0600; // proxy passwords are among the values
constexpr mode_t kSystemFileMode = 0644;

std::string fileIn(const std::string& folder, const std::string& domain) {
    return folder + "/" + domain + ".plist";
}

} // namespace

PreferenceFolders PreferenceFolders::forHome(const std::string& home) {
    PreferenceFolders folders;
    folders.user = home + "/Library/Preferences";
    return folders;
}

LinuxPreferences::LinuxPreferences(const std::vector<std::string>& launchArguments, PreferenceFolders folders,
                                   PropertyListSerialization& propertyLists, std::string domain)
    : arguments_(preferencesFromArguments(launchArguments)), folders_(std::move(folders)),
      propertyLists_(propertyLists), domain_(std::move(domain)),
      managed_(fileIn(folders_.managed, domain_), kSystemFileMode, propertyLists) {}

PreferenceFile* LinuxPreferences::fileOf(const std::string& domain, PreferenceLevel level) {
    if (domain.empty() || domain.find_first_of(std::string("/\0", 2)) != std::string::npos)
        return nullptr;
    const bool isUsers = level == PreferenceLevel::currentUserAnyHost;
    const std::lock_guard lock(mutex_);
    std::unique_ptr<PreferenceFile>& file = files_[{domain, level}];
    if (!file)
        file = std::make_unique<PreferenceFile>(fileIn(isUsers ? folders_.user : folders_.system, domain),
                                                isUsers ? kUserFileMode : kSystemFileMode, propertyLists_);
    return file.get();
}

std::optional<PropertyListValue> LinuxPreferences::objectForKey(const std::string& key) {
    if (const auto argument = arguments_.find(key); argument != arguments_.end())
        return argument->second;
    if (auto value = managed_.value(key))
        return value;
    for (const PreferenceLevel level :
         {PreferenceLevel::currentUserAnyHost, PreferenceLevel::anyUserAnyHost}) {
        PreferenceFile* file = fileOf(domain_, level);
        if (auto value = file != nullptr ? file->value(key) : std::nullopt)
            return value;
    }
    return std::nullopt;
}

void LinuxPreferences::setObject(const std::string& key, const PropertyListValue& value) {
    setValue(key, value, domain_, PreferenceLevel::currentUserAnyHost);
}

void LinuxPreferences::synchronize() { synchronize(domain_, PreferenceLevel::currentUserAnyHost); }

void LinuxPreferences::setValue(const std::string& key, const PropertyListValue& value,
                                const std::string& domain, PreferenceLevel level) {
    if (PreferenceFile* file = fileOf(domain, level))
        file->set(key, value);
}

bool LinuxPreferences::synchronize(const std::string& domain, PreferenceLevel level) {
    PreferenceFile* file = fileOf(domain, level);
    return file != nullptr && file->flush();
}

} // namespace lumora::platform::linux_backend
