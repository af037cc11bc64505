#pragma once

#include "platform/file_manager.h"

#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace lumora::fakes {

/// A file system in memory, exactly as case-sensitive as its keys. Doubled and trailing slashes are folded, as a real
/// one does. Any single operation can be made to fail for a path.
class FakeFileManager final : public platform::FileManager {
  public:
    struct File {
        std::string contents;
        platform::FileAttributes attributes;
    };

    std::string home = "/Users/casey";

    // --- what a test arranges and looks at ---
    void putFile(const std::string& path, std::string contents) {
        files_[fold(path)] = {std::move(contents), {}};
    }
    void putFolder(const std::string& path) { folders_.insert(fold(path)); }
    void failCreateFolder(const std::string& path) { unmakeable_.insert(fold(path)); }
    void failRemove(const std::string& path) { unremovable_.insert(fold(path)); }
    void failCreateFile(const std::string& path) { uncreatable_.insert(fold(path)); }
    void failWrite(const std::string& path) { unwritable_.insert(fold(path)); }
    [[nodiscard]] const File* file(const std::string& path) const {
        const auto found = files_.find(fold(path));
        return found == files_.end() ? nullptr : &found->second;
    }
    [[nodiscard]] bool folderExists(const std::string& path) const { return folders_.contains(fold(path)); }
    /// Every changing call in order: "remove /a", "copy /a -> /b", "create /a", "mkdir /a", "overwrite /a", "truncate /a".
    std::vector<std::string> journal;
    /// The folders that are held just now.
    std::multiset<std::string> held;
    /// Called for a folder whose turn to be held has come: what others did meanwhile.
    std::function<void(const std::string& path)> onHold = [](const std::string&) {};
    /// The folders that were held while a copy to this destination was made.
    std::map<std::string, std::multiset<std::string>> heldDuringCopyTo;

    // --- the port ---
    std::string homeDirectory() override { return home; }
    std::string libraryDirectory() override { return home + "/Library"; }

    bool fileExists(const std::string& path) override {
        return files_.contains(fold(path)) || folders_.contains(fold(path));
    }

    platform::Result<void> createDirectoryWithIntermediates(const std::string& path) override {
        journal.push_back("mkdir " + path);
        if (unmakeable_.contains(fold(path)) || files_.contains(fold(path)))
            return failure("The folder could not be created.");
        for (std::string parent = fold(path); parent.size() > 1; parent = parent.substr(0, parent.rfind('/')))
            folders_.insert(parent);
        return {};
    }

    platform::Result<void> copyItem(const std::string& source, const std::string& destination) override {
        const auto from = fold(source);
        const auto to = fold(destination);
        if (!fileExists(from) || fileExists(to) || uncreatable_.contains(to))
            return failure("The item could not be copied.");
        journal.push_back("copy " + source + " -> " + destination);
        heldDuringCopyTo[destination] = held;
        if (const auto found = files_.find(from); found != files_.end())
            files_[to] = File(found->second);
        if (folders_.contains(from)) {
            folders_.insert(to);
            const std::string prefix = from + "/";
            const auto files = files_;
            for (const auto& [path, file] : files)
                if (path.starts_with(prefix))
                    files_[to + "/" + path.substr(prefix.size())] = file;
            const auto folders = folders_;
            for (const auto& path : folders)
                if (path.starts_with(prefix))
                    folders_.insert(to + "/" + path.substr(prefix.size()));
        }
        return {};
    }

    platform::Result<void> removeItem(const std::string& path) override {
        const auto target = fold(path);
        if (!fileExists(target) || unremovable_.contains(target))
            return failure("The item could not be removed.");
        journal.push_back("remove " + path);
        const std::string prefix = target + "/";
        std::erase_if(files_,
                      [&](const auto& e) { return e.first == target || e.first.starts_with(prefix); });
        std::erase_if(folders_, [&](const auto& e) { return e == target || e.starts_with(prefix); });
        return {};
    }

    platform::Result<void> createFile(const std::string& path, std::string_view contents,
                                      const platform::FileAttributes& attributes) override {
        if (uncreatable_.contains(fold(path)) || folders_.contains(fold(path)))
            return failure("The file could not be created.");
        journal.push_back("create " + path);
        files_[fold(path)] = {std::string(contents), attributes};
        return {};
    }

    platform::Result<std::string> readFile(const std::string& path) override {
        if (const auto* found = file(path))
            return found->contents;
        return failure("The file could not be read.");
    }

    platform::Result<void> overwriteFile(const std::string& path, std::string_view contents) override {
        const auto found = files_.find(fold(path));
        if (found == files_.end() || unwritable_.contains(fold(path)))
            return failure("The file could not be written.");
        journal.push_back("overwrite " + path);
        found->second.contents = std::string(contents);
        return {};
    }

    platform::Result<std::uint64_t> fileSize(const std::string& path) override {
        if (const auto* found = file(path))
            return static_cast<std::uint64_t>(found->contents.size());
        return failure("No such file.");
    }

    platform::Result<void> truncateFile(const std::string& path) override {
        journal.push_back("truncate " + path);
        return overwriteFile(path, "");
    }

    std::shared_ptr<void> holdFolder(const std::string& path) override {
        onHold(path);
        const auto one = held.insert(path);
        return {nullptr, [this, one](void*) { held.erase(one); }};
    }

  private:
    static platform::Error failure(std::string text) {
        return {"NSCocoaErrorDomain", 513, std::move(text), {}};
    }

    static std::string fold(const std::string& path) {
        std::string folded;
        for (const char character : path)
            if (character != '/' || folded.empty() || folded.back() != '/')
                folded += character;
        if (folded.size() > 1 && folded.back() == '/')
            folded.pop_back();
        return folded;
    }

    std::map<std::string, File> files_;
    std::set<std::string> folders_;
    std::set<std::string> unmakeable_, unremovable_, uncreatable_, unwritable_;
};

} // namespace lumora::fakes
