#include "platform/linux/ports/linux_bundles.h"

#include "platform/linux/ports/linux_file_manager.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

// A program outside any bundle counts the folder it lies in as its bundle.
std::string bundleOf(const std::filesystem::path& executable) {
    const std::filesystem::path folder = executable.parent_path();
    const std::filesystem::path bundle = folder.parent_path().parent_path();
    if (folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents" &&
        bundle.extension() == ".app")
        return bundle.string();
    return folder.string();
}

} // namespace

std::string LinuxBundles::runningExecutable() {
    std::error_code unknown;
    return std::filesystem::read_symlink("/proc/self/exe", unknown).string();
}

LinuxBundles::LinuxBundles(const std::string& executable, HomeFolder home,
                           PropertyListSerialization& propertyLists)
    : mainBundle_(bundleOf(executable)), home_(std::move(home)), propertyLists_(propertyLists) {}

std::string LinuxBundles::mainBundlePath() { return mainBundle_; }

std::optional<std::string> LinuxBundles::mainBundleIdentifier() {
    const auto identifier = infoDictionaryValue(mainBundle_, "CFBundleIdentifier");
    if (!identifier)
        return std::nullopt;
    const auto* text = identifier->as<std::string>();
    return text == nullptr ? std::nullopt : std::optional(*text);
}

std::optional<std::string> LinuxBundles::pathForResource(const std::string& name, const std::string& type) {
    const std::string path = mainBundle_ + "/Contents/Resources/" + name + (type.empty() ? "" : "." + type);
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown))
        return std::nullopt;
    return path;
}

std::optional<PropertyListValue> LinuxBundles::infoDictionaryValue(const std::string& bundlePath,
                                                                   const std::string& key) {
    const auto bytes = LinuxFileManager(home_).readFile(bundlePath + "/Contents/Info.plist");
    if (!bytes)
        return std::nullopt;
    const auto list = propertyLists_.parse(bytes.value());
    const auto* dictionary = list ? list.value().as<PropertyListDictionary>() : nullptr;
    if (dictionary == nullptr)
        return std::nullopt;
    const auto entry = dictionary->find(key);
    return entry == dictionary->end() ? std::nullopt : std::optional(entry->second);
}

} // namespace lumora::platform::linux_backend
