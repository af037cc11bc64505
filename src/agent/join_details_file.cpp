// The join-details file: two lines through which the launched agent learns its session and its server.

#include "agent/agent_paths.h"
#include "agent/ovra_app_upgrader.h"
#include "config/session_details.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/rendering.h"

namespace lumora {

namespace {

constexpr const char* kModify = "-[OvraAppUpgrader modifyOvraJoinDetails]";

constexpr const char* kMarker = "OVRA_VARLO_IND";
constexpr unsigned kOwnerOnly = 0600; // the file carries the customer's token and e-mail address

/// Values go in as they are: the agent takes everything up to the next "&".
std::string joinDetails(const SessionDetails& session) {
    return fmt::format(
        "{}\n&key={}&webServerName={}&lumora_token={}&c_plugin=true&DC={}&email={}&is_custom_domain={}&",
        kMarker, render(session.sessionKey()), render(session.webServerName()), render(session.lumoraToken()),
        render(session.dcName()), render(session.name()), render(session.customDomainEnabled()));
}

void createFile(platform::FileManager& files, const std::string& path, const std::string& content) {
    const platform::FileAttributes attributes{.posixPermissions = kOwnerOnly, .completeProtection = true};
    if (files.createFile(path, content, attributes)) // the blank at the end is part of the line
        log("{} : New ovrajoindetails.conf file has been created by Lumora in folder {} ", kModify, path);
    else
        log("{} : Unable to create New ovrajoindetails.conf file by Lumora in folder {}", kModify, path);
}

/// Removes and makes anew: an old file's permissions and readers must not carry over to this session's details.
void replaceFile(platform::FileManager& files, const std::string& path, const SessionDetails& session) {
    log("{} : ovrajoindetails.conf file already Present in folder {}", kModify, path);
    const auto content = joinDetails(session);
    log("{} : Ovra Joindetails Content : Session key={} webServerName={} DC={} customDomain={}", kModify,
        render(session.sessionKey()), render(session.webServerName()), render(session.dcName()),
        render(session.customDomainEnabled()));
    if (!files.removeItem(path)) {
        log("{} : Unable to Remove old ovrajoindetails.conf file by Lumora in folder {}", kModify, path);
        return;
    }
    createFile(files, path, content);
}

void makeFirstFile(platform::FileManager& files, const std::string& path, const SessionDetails& session) {
    log("{} : ovrajoindetails.conf file Not Present in folder {}", kModify, path);
    const auto content = joinDetails(session);
    log("{} : Ovra Joindetails Content : Session key={} webServerName={} DC={}", kModify,
        render(session.sessionKey()), render(session.webServerName()), render(session.dcName()));
    createFile(files, path, content);
}

} // namespace

void OvraAppUpgrader::modifyOvraJoinDetails() {
    guarded(kModify, [] {
        log("{} : Modify joindetails called!", kModify);
        auto& files = *platform::ports().fileManager;
        const auto path = agentFolder() + "ovrajoindetails.conf";
        const auto& session = SessionDetails::getInstance();
        if (files.fileExists(path))
            replaceFile(files, path, session);
        else
            makeFirstFile(files, path, session);
    });
}

} // namespace lumora
