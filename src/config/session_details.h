#pragma once

#include "config/atomic_field.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumora::platform {
class FileManager;
}

namespace lumora {

/// The one process-wide record of what this run knows: where to talk to, what the update checks said, which session
/// is being joined. It has no behaviour; every field starts empty (absent, false, 0) and nothing is persisted.
/// Each accessor is atomic on its own, from any thread; nothing spans several fields.
class SessionDetails {
  public:
    using Text = std::optional<std::string>; ///< absent and empty are different things

    /// The single instance, made on first use with the shared file manager in it.
    [[nodiscard]] static SessionDetails& getInstance();

    /// Lets a test begin with a fresh record.
    static void resetForTesting();

    /// Key of the session being joined.
    [[nodiscard]] Text sessionKey() const { return sessionKey_.get(); }
    void setSessionKey(Text value) { sessionKey_.set(std::move(value)); }

    /// Customer name; the e-mail address when joined from the join page.
    [[nodiscard]] Text name() const { return name_.get(); }
    void setName(Text value) { name_.set(std::move(value)); }

    /// Host name, no scheme: the server behind every address.
    [[nodiscard]] Text webServerName() const { return webServerName_.get(); }
    void setWebServerName(Text value) { webServerName_.set(std::move(value)); }

    /// Data-centre key.
    [[nodiscard]] Text dcName() const { return dcName_.get(); }
    void setDcName(Text value) { dcName_.set(std::move(value)); }

    /// Data-centre key exactly as the preferences have it.
    [[nodiscard]] Text plistDcName() const { return plistDcName_.get(); }
    void setPlistDcName(Text value) { plistDcName_.set(std::move(value)); }

    /// The server of the preferences' data centre.
    [[nodiscard]] Text plistWebServerName() const { return plistWebServerName_.get(); }
    void setPlistWebServerName(Text value) { plistWebServerName_.set(std::move(value)); }

    /// Version of the installed agent, "0" when there is none.
    [[nodiscard]] Text localOvraAppVersion() const { return localOvraAppVersion_.get(); }
    void setLocalOvraAppVersion(Text value) { localOvraAppVersion_.set(std::move(value)); }

    /// Own version, "0" when unknown.
    [[nodiscard]] Text localOvraLumoraAppVersion() const { return localOvraLumoraAppVersion_.get(); }
    void setLocalOvraLumoraAppVersion(Text value) { localOvraLumoraAppVersion_.set(std::move(value)); }

    /// Path of the running bundle.
    [[nodiscard]] Text lumoraAppPath() const { return lumoraAppPath_.get(); }
    void setLumoraAppPath(Text value) { lumoraAppPath_.set(std::move(value)); }

    /// Kept in the record; nothing uses it.
    [[nodiscard]] bool* isvalidSessionKey() const { return isvalidSessionKey_.get(); }
    void setIsvalidSessionKey(bool* value) { isvalidSessionKey_.set(value); }

    /// Kept in the record; nothing uses it.
    [[nodiscard]] bool* isInvokeFromInstaller() const { return isInvokeFromInstaller_.get(); }
    void setIsInvokeFromInstaller(bool* value) { isInvokeFromInstaller_.set(value); }

    /// "true" or "false": text, because it is copied into the join-details file.
    [[nodiscard]] Text customDomainEnabled() const { return customDomainEnabled_.get(); }
    void setCustomDomainEnabled(Text value) { customDomainEnabled_.set(std::move(value)); }

    /// The server as configured, before a custom domain took its place.
    [[nodiscard]] Text staticWebServerName() const { return staticWebServerName_.get(); }
    void setStaticWebServerName(Text value) { staticWebServerName_.set(std::move(value)); }

    /// Digest of the raise-a-request page.
    [[nodiscard]] Text sessionDigest() const { return sessionDigest_.get(); }
    void setSessionDigest(Text value) { sessionDigest_.set(std::move(value)); }

    /// Token handed over by the installer.
    [[nodiscard]] Text lumoraToken() const { return lumoraToken_.get(); }
    void setLumoraToken(Text value) { lumoraToken_.set(std::move(value)); }

    /// Path of the join page on the server.
    [[nodiscard]] Text pathForLumora() const { return pathForLumora_.get(); }
    void setPathForLumora(Text value) { pathForLumora_.set(std::move(value)); }

    /// The shared file-system service.
    [[nodiscard]] platform::FileManager* defaultOvraDirectoryManager() const {
        return defaultOvraDirectoryManager_.get();
    }
    void setDefaultOvraDirectoryManager(platform::FileManager* value) {
        defaultOvraDirectoryManager_.set(value);
    }

    /// Own support folder, with a trailing slash.
    [[nodiscard]] Text ovraLumoraNativeFolder() const { return ovraLumoraNativeFolder_.get(); }
    void setOvraLumoraNativeFolder(Text value) { ovraLumoraNativeFolder_.set(std::move(value)); }

    /// Address of the own update image.
    [[nodiscard]] Text lumoraDownloadUrl() const { return lumoraDownloadUrl_.get(); }
    void setLumoraDownloadUrl(Text value) { lumoraDownloadUrl_.set(std::move(value)); }

    /// The server has a newer version of this program.
    [[nodiscard]] bool lumoraUpdateNeeded() const { return lumoraUpdateNeeded_.get(); }
    void setLumoraUpdateNeeded(bool value) { lumoraUpdateNeeded_.set(value); }

    /// A staged bundle waits to replace the running one.
    [[nodiscard]] bool isAppReplaceFlag() const { return isAppReplaceFlag_.get(); }
    void setIsAppReplaceFlag(bool value) { isAppReplaceFlag_.set(value); }

    /// The server has a newer agent.
    [[nodiscard]] bool isUpdateNeeded() const { return isUpdateNeeded_.get(); }
    void setIsUpdateNeeded(bool value) { isUpdateNeeded_.set(value); }

    /// Kept in the record; nothing uses it.
    [[nodiscard]] std::int32_t retryCounter() const { return retryCounter_.get(); }
    void setRetryCounter(std::int32_t value) { retryCounter_.set(value); }

    /// Kept in the record; nothing uses it.
    [[nodiscard]] Text awsUrl() const { return awsUrl_.get(); }
    void setAwsUrl(Text value) { awsUrl_.set(std::move(value)); }

    /// Kept in the record; nothing uses it.
    [[nodiscard]] Text awsServer() const { return awsServer_.get(); }
    void setAwsServer(Text value) { awsServer_.set(std::move(value)); }

    /// Kept in the record; nothing uses it.
    [[nodiscard]] bool isAwsAvailable() const { return isAwsAvailable_.get(); }
    void setIsAwsAvailable(bool value) { isAwsAvailable_.set(value); }

    /// Primary address of the agent image.
    [[nodiscard]] Text cdnUrl() const { return cdnUrl_.get(); }
    void setCdnUrl(Text value) { cdnUrl_.set(std::move(value)); }

    /// Secondary address of the agent image.
    [[nodiscard]] Text fallbackUrl() const { return fallbackUrl_.get(); }
    void setFallbackUrl(Text value) { fallbackUrl_.set(std::move(value)); }

    /// A non-empty cdnUrl was received.
    [[nodiscard]] bool isCdnAvailable() const { return isCdnAvailable_.get(); }
    void setIsCdnAvailable(bool value) { isCdnAvailable_.set(value); }

  private:
    AtomicField<Text> sessionKey_;
    AtomicField<Text> name_;
    AtomicField<Text> webServerName_;
    AtomicField<Text> dcName_;
    AtomicField<Text> plistDcName_;
    AtomicField<Text> plistWebServerName_;
    AtomicField<Text> localOvraAppVersion_;
    AtomicField<Text> localOvraLumoraAppVersion_;
    AtomicField<Text> lumoraAppPath_;
    AtomicField<bool*> isvalidSessionKey_;
    AtomicField<bool*> isInvokeFromInstaller_;
    AtomicField<Text> customDomainEnabled_;
    AtomicField<Text> staticWebServerName_;
    AtomicField<Text> sessionDigest_;
    AtomicField<Text> lumoraToken_;
    AtomicField<Text> pathForLumora_;
    AtomicField<platform::FileManager*> defaultOvraDirectoryManager_;
    AtomicField<Text> ovraLumoraNativeFolder_;
    AtomicField<Text> lumoraDownloadUrl_;
    AtomicField<bool> lumoraUpdateNeeded_;
    AtomicField<bool> isAppReplaceFlag_;
    AtomicField<bool> isUpdateNeeded_;
    AtomicField<std::int32_t> retryCounter_;
    AtomicField<Text> awsUrl_;
    AtomicField<Text> awsServer_;
    AtomicField<bool> isAwsAvailable_;
    AtomicField<Text> cdnUrl_;
    AtomicField<Text> fallbackUrl_;
    AtomicField<bool> isCdnAvailable_;
};

} // namespace lumora
