#pragma once

#include <memory>
#include <mutex>
#include <string>

namespace lumora {

/// The folder in which a newer bundle of this application waits for the exit; ends with a slash.
[[nodiscard]] std::string stagingFolder();

/// This application's downloaded disk image, in the same folder until its bundle is staged.
[[nodiscard]] std::string lumoraImagePath();

/// Held from the image's arrival in the folder to its removal. Two chains of one run share the image's path and the
/// volume: the end of one would take them from under the other, which has removed the staged bundle by then.
[[nodiscard]] std::mutex& imageMutex();

/// The bundle's name, staged and installed alike.
inline constexpr const char* kLumoraBundleName = "Ovra Tessel Lumora.app";

/// Held while the staged bundle is replaced and while it is put in place: a second chain may replace it just when the
/// last window closes, and the swap, which has removed the running bundle by then, must find the staged one whole. So
/// may the chain of a second process, of a user who has started the application twice.
class StagedBundleTurn {
  public:
    StagedBundleTurn();

  private:
    std::lock_guard<std::mutex> amongChains_;
    std::shared_ptr<void> amongProcesses_;
};

} // namespace lumora
