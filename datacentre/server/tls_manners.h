#pragma once

#include "server/json_members.h"

#include <map>
#include <mutex>
#include <string>

namespace datacentre {

/// How a new connection's handshake goes.
struct TlsManner {
    /// Throws std::invalid_argument. The member "host" is not part of a manner; TlsManners reads it.
    [[nodiscard]] static TlsManner fromJson(const Json& json);

    std::string certificate = "good"; // one of kCertificateNames
    int maxVersion = 0;               ///< OpenSSL's number, TLS1_1_VERSION and so on; 0 = no limit
    bool hangHandshake = false;       ///< the client's hello is never answered
};

/// The manners set at the moment: one for every host and others for single server names. Any thread.
class TlsManners {
  public:
    void set(const Json& json); ///< throws std::invalid_argument
    void clear();
    /// The manner for a connection that asks for `serverName` (empty when the client names none).
    [[nodiscard]] TlsManner of(const std::string& serverName) const;

  private:
    mutable std::mutex mutex_;
    TlsManner common_;
    std::map<std::string, TlsManner> byServerName_;
};

} // namespace datacentre
