#pragma once

#include "platform/posix/unique_fd.h"

#include <sys/types.h>

#include <string>

namespace lumora::platform::posix_backend {

/// A hidden entry beside a destination: something new that is made aside and then renamed into place, or something old
/// that is renamed aside and then removed. Either way nothing half is ever seen at the destination.
///
/// Its name is new at every use, in this process and beside others. What stands there is locked for as long as this
/// lives and removed at its end. A process that is killed leaves it; the same user's next sibling in the folder removes
/// it.
///
/// Results are errnos, 0 for success; descriptors belong to this and are -1 with errno set after a failure.
class TemporarySibling {
  public:
    explicit TemporarySibling(const std::string& destination);
    TemporarySibling(const TemporarySibling&) = delete;
    TemporarySibling& operator=(const TemporarySibling&) = delete;
    ~TemporarySibling();

    /// For messages, and for looking; changes with the next call that creates something.
    [[nodiscard]] const std::string& path() const { return path_; }

    // Something new, once.
    [[nodiscard]] int createFile(mode_t mode); ///< empty, for writing
    [[nodiscard]] int createFolder();          ///< empty, the user's only
    [[nodiscard]] int createLink(const std::string& target);

    /// Renames it to the destination, where nothing may stand.
    [[nodiscard]] int placeIfFree();
    /// Renames it to the destination, over a file that may stand there.
    [[nodiscard]] int place();

    /// Where, in a folder created here, somebody else makes the new thing whole who does it in one call of their own.
    [[nodiscard]] std::string inside() const { return path_ + "/new"; }
    /// Renames that to the destination, where nothing may stand.
    [[nodiscard]] int placeInsideIfFree();

    /// Renames the destination's entry here, out of sight.
    [[nodiscard]] int takeAway();
    /// Renames it back, unless another stands there by now.
    void giveBack();

  private:
    template <class Create>
    int createHeld(Create create);

    std::string folder_;
    std::string destination_;
    std::string path_;
    UniqueFd held_;
    bool stands_ = false;
};

} // namespace lumora::platform::posix_backend
