#pragma once

#include "platform/property_list.h"

#include <optional>
#include <string>

namespace lumora {

class LogHandler;

/// Class operations around configuration, server resolution, folders and the staged update. Each group lives in the
/// source file named after it: preferences.cpp, server_resolution.cpp, custom_domain.cpp, support_folders.cpp,
/// app_path.cpp, and selfupdate/staged_update.cpp.
class Utils {
  public:
    // --- preferences and launch arguments -----------------------------------------------------------------------

    /// The value under the key along the whole search list, as text; numbers in decimal.
    static std::optional<std::string> preferenceForKey(const std::string& key);

    /// Writes one value to the user and the all-users level, without flushing. Absent values are not written.
    static void syncPreferenceToAllLevels(const std::optional<std::string>& key,
                                          const std::optional<std::string>& value);

    /// Copies the four configuration keys to both levels and flushes them.
    static void syncConfigToAllLevels();

    /// The start-up read of preferences and launch arguments into the session record. Main thread; blocks on the
    /// custom-domain request when there is a token.
    static void parseCommandLineArgs();

    // --- server resolution --------------------------------------------------------------------------------------

    /// The web server of a data-centre key; a key outside the table is a developer's machine name.
    static std::string findWebserverNameWithDCName(const std::optional<std::string>& dcName);

    /// Asks the configured server for the customer's own domain and puts it in its place. Blocks the caller.
    static void getCustomDomain();

    // --- support folders and application path -------------------------------------------------------------------

    /// Makes the support folders and starts the log. The argument is not used: a new handler is made, which its own
    /// timer keeps alive.
    static void createLumoraDirectoriesWithLogHandler(LogHandler* logHandler);
    static void createOvraVarloNativeFolder();
    static void createOvraLumoraNativeFolder();

    /// Records where the running bundle lies.
    static void findCurrentAppPath();

    /// Records the running bundle's version; "0" when there is no bundle at the recorded path.
    static void getOvraLumoraAppVersion();

    // --- staged update ------------------------------------------------------------------------------------------

    /// Puts a bundle that was staged in this run in the place of the running one. Called once, right before exit.
    static void updateLumoraIfNeeded();
};

} // namespace lumora
