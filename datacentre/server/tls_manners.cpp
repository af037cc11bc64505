#include "server/tls_manners.h"

#include "authority/authority.h"

#include <fmt/format.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <stdexcept>

namespace datacentre {

namespace {

const std::set<std::string> kMembers = {"certificate", "max_version", "hang_handshake", "host"};

}

TlsManner TlsManner::fromJson(const Json& json) {
    static const std::map<std::string, int> kVersions = {
        {"1.1", TLS1_1_VERSION}, {"1.2", TLS1_2_VERSION}, {"1.3", TLS1_3_VERSION}};
    const JsonMembers members(json, kMembers);
    TlsManner manner;
    if (const auto name = members.text("certificate")) {
        if (std::find(kCertificateNames.begin(), kCertificateNames.end(), *name) == kCertificateNames.end())
            throw std::invalid_argument(fmt::format("there is no certificate \"{}\"", *name));
        manner.certificate = *name;
    }
    if (const auto version = members.text("max_version")) {
        const auto found = kVersions.find(*version);
        if (found == kVersions.end())
            throw std::invalid_argument("\"max_version\" is 1.1, 1.2 or 1.3");
        manner.maxVersion = found->second;
    }
    manner.hangHandshake = members.flag("hang_handshake");
    return manner;
}

void TlsManners::set(const Json& json) {
    TlsManner manner = TlsManner::fromJson(json);
    const std::string host = JsonMembers(json, kMembers).text("host").value_or("");
    const std::lock_guard lock(mutex_);
    if (host.empty())
        common_ = std::move(manner);
    else
        byServerName_[host] = std::move(manner);
}

void TlsManners::clear() {
    const std::lock_guard lock(mutex_);
    common_ = {};
    byServerName_.clear();
}

TlsManner TlsManners::of(const std::string& serverName) const {
    const std::lock_guard lock(mutex_);
    const auto found = byServerName_.find(serverName);
    return found == byServerName_.end() ? common_ : found->second;
}

} // namespace datacentre
