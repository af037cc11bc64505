#pragma once

namespace lumora {

/// Knows the installed agent, decides between installing and launching it, and writes the join-details file through
/// which the agent learns its session. Any thread.
class OvraAppUpgrader {
  public:
    [[nodiscard]] static OvraAppUpgrader& getInstance();
    static void resetForTesting();

    /// Reads the installed agent's version into the session record ("0" when there is none).
    void ovraAppVersionCheck();

    /// After a successful update check: installs a newer agent, or launches the one that stands there. The
    /// join-details file is written before the agent can start.
    void ovraAppUpdater();

    /// Replaces the join-details file by one for the current session.
    void modifyOvraJoinDetails();
};

} // namespace lumora
