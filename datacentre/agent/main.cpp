// The stand-in for the agent. It is started as Ovra.app/Contents/MacOS/Ovra -timestamps {...}, reads the join details that the
// application has left, records this start for the tests and shows the session's window.

#include "agent/agent_window.h"
#include "agent/join_details.h"
#include "agent/start_record.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace {

std::filesystem::path homeFolder() {
    const char* const home = std::getenv("HOME");
    if (home != nullptr && *home != '\0')
        return home;
    const passwd* const entry = getpwuid(getuid());
    return entry == nullptr ? "/" : entry->pw_dir;
}

} // namespace

int main(int argc, char** argv) {
    namespace agent = datacentre::agent;
    try {
        const auto home = homeFolder();
        const auto details = agent::readJoinDetails(agent::joinDetailsFile(home));
        agent::writeRecord(agent::recordFolder(home),
                           agent::describeStart(std::vector<std::string>(argv, argv + argc), details));
        if (std::getenv("OVRA_AGENT_HEADLESS") == nullptr)
            agent::showAgentWindow(details);
        else
            agent::standWithoutWindow();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ovra-agent: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
