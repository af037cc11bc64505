#include "agent/agent_paths.h"

#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/paths.h"

namespace lumora {

std::string agentFolder() {
    return platform::ports().fileManager->homeDirectory() + "/Library/Application Support/OvraVarloNative/";
}

std::string inAgentFolder(std::string_view name) { return appendPathComponent(agentFolder(), name); }

std::string installedAgentPath() { return inAgentFolder("Ovra.app"); }

std::string agentImagePath() { return inAgentFolder("OvraMac.dmg"); }

} // namespace lumora
