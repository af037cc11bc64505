#pragma once

#include "platform/property_list.h"

#include <sys/stat.h>

#include <mutex>
#include <optional>
#include <string>

namespace lumora::platform::linux_backend {

/// One level of one domain: a property list whose root is a dictionary. Any thread.
///
/// Several threads and processes share the file: every write takes a lock, reads what stands, changes its own keys and
/// renames a finished file into place, and every read sees what others have written since. A file that is malformed,
/// forbidden or too large counts as empty; it is moved aside, not lost, when it must be written over. One that merely cannot
/// be read now, for want of descriptors, say, stays: it counts as what it last held, and a write waits for a later flush.
class PreferenceFile {
  public:
    /// @param mode  the file's permissions, whatever the umask
    PreferenceFile(std::string path, mode_t mode, PropertyListSerialization& propertyLists);

    [[nodiscard]] std::optional<PropertyListValue> value(const std::string& key);

    /// Seen by this process at once, by others after the next flush.
    void set(const std::string& key, const PropertyListValue& value);

    /// Brings what was set to the disk. False when it cannot be written; it then stays set in this process and the
    /// next flush tries again. So does alone what has no XML form, or would make the file too large to be read again.
    bool flush();

  private:
    /// Tells one state of the file from another without reading it.
    struct Stamp {
        bool exists = false;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
        timespec changed{};

        [[nodiscard]] bool operator==(const Stamp& other) const;
    };

    enum class State { sound, damaged, unreadableNow };

    struct Contents {
        PropertyListDictionary dictionary;
        State state = State::sound;
    };

    [[nodiscard]] Stamp stampNow() const;
    [[nodiscard]] Contents load() const;
    [[nodiscard]] const PropertyListDictionary& current();
    [[nodiscard]] bool moveDamagedFileAside() const;
    [[nodiscard]] bool write(const std::string& bytes) const;
    [[nodiscard]] std::optional<std::string> bytesOf(const PropertyListDictionary& dictionary) const;
    [[nodiscard]] bool mergeInto(PropertyListDictionary& dictionary) const;

    const std::string path_;
    const mode_t mode_;
    PropertyListSerialization& propertyLists_;
    std::mutex mutex_;
    std::optional<Stamp> stamp_; ///< of what `cached_` was read from; absent: read again
    PropertyListDictionary cached_;
    PropertyListDictionary pending_;
};

} // namespace lumora::platform::linux_backend
