#include "platform/linux/hdiutil/entry_attributes.h"

#include "platform/linux/hdiutil/failure.h"

#include <archive_entry.h>

namespace lumora::platform::linux_backend {
namespace {

constexpr mode_t kKeptModeBits = S_IRWXU | S_IRWXG | S_IRWXO;

} // namespace

EntryAttributes EntryAttributes::of(archive_entry* entry) {
    EntryAttributes attributes;
    attributes.mode = archive_entry_perm(entry) & kKeptModeBits;
    auto& [accessed, modified] = attributes.times;
    if (archive_entry_mtime_is_set(entry) != 0)
        modified = {archive_entry_mtime(entry), archive_entry_mtime_nsec(entry)};
    accessed = modified;
    if (archive_entry_atime_is_set(entry) != 0)
        accessed = {archive_entry_atime(entry), archive_entry_atime_nsec(entry)};
    return attributes;
}

void EntryAttributes::apply(int descriptor, std::string_view path) const {
    if (::futimens(descriptor, times.data()) != 0 || ::fchmod(descriptor, mode) != 0)
        throwErrno("cannot set the attributes of " + printable(path));
}

} // namespace lumora::platform::linux_backend
