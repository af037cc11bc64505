#include "authority/authority.h"
#include "command_line.h"
#include "images/images.h"
#include "serve_command.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace datacentre {

namespace {

constexpr int kUsageStatus = 2;

constexpr const char* kUsage = R"(usage:
  lumora-datacentre authority --data DIR --host NAME [--host NAME ...]
  lumora-datacentre image agent --output FILE --agent PROGRAM [--version V]
  lumora-datacentre image application --output FILE --bundle BUNDLE [--version V]
  lumora-datacentre serve --data DIR --listen ADDR:PORT [--control ADDR:PORT] [--images DIR] [--drive] [--page PATH]
)";

using Words = std::vector<std::string>;

Words from(const Words& words, std::size_t first) {
    return {words.begin() + static_cast<std::ptrdiff_t>(first), words.end()};
}

void authority(const Words& words) {
    const CommandLine line(words, {"data", "host"}, {});
    const auto hosts = line.all("host");
    if (hosts.empty())
        throw UsageError("--host is missing");
    const auto outcome = ensureAuthority(line.required("data"), hosts);
    fmt::print("{} {}\n", outcome == AuthorityOutcome::made ? "made" : "kept",
               AuthorityPaths(line.required("data")).authority.string());
}

void image(const Words& words) {
    const std::string kind = words.empty() ? "" : words.front();
    if (kind != "agent" && kind != "application")
        throw UsageError("an image is \"agent\" or \"application\"");
    const CommandLine line(from(words, 1), {"output", "version", kind == "agent" ? "agent" : "bundle"}, {});
    const auto version = line.optional("version");
    if (version && version->find_first_of("<>&") != std::string::npos)
        throw UsageError("a version holds no markup");
    const auto output = line.required("output");
    if (kind == "agent")
        makeAgentImage(output, line.required("agent"), version.value_or(kDefaultAgentVersion));
    else
        makeApplicationImage(output, line.required("bundle"), version);
    fmt::print("made {}\n", output);
}

void dispatch(const Words& words) {
    const std::string command = words.empty() ? "" : words.front();
    if (command == "authority")
        authority(from(words, 1));
    else if (command == "image")
        image(from(words, 1));
    else if (command == "serve")
        serve(CommandLine(from(words, 1), {"data", "listen", "control", "images", "page"}, {"drive"}));
    else
        throw UsageError("a command is missing");
}

} // namespace

} // namespace datacentre

int main(int argc, char** argv) {
    try {
        datacentre::dispatch({argv + 1, argv + argc});
        return EXIT_SUCCESS;
    } catch (const datacentre::UsageError& error) {
        fmt::print(stderr, "lumora-datacentre: {}\n{}", error.what(), datacentre::kUsage);
        return datacentre::kUsageStatus;
    } catch (const std::exception& error) {
        fmt::print(stderr, "lumora-datacentre: {}\n", error.what());
        return EXIT_FAILURE;
    }
}
