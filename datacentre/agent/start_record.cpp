#include "agent/start_record.h"

#include "agent/process_facts.h"
#include "server/timestamp.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace datacentre::agent {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

// Those that the application sets for its own window, and those that a desktop program lives by.
constexpr std::array kVariables = {"HOME",
                                   "PATH",
                                   "DISPLAY",
                                   "WAYLAND_DISPLAY",
                                   "XDG_RUNTIME_DIR",
                                   "DBUS_SESSION_BUS_ADDRESS",
                                   "GSK_RENDERER",
                                   "GDK_DEBUG",
                                   "GDK_BACKEND",
                                   "GDK_DISABLE",
                                   "GTK_THEME",
                                   "LIBGL_ALWAYS_SOFTWARE",
                                   "WEBKIT_DISABLE_COMPOSITING_MODE",
                                   "WEBKIT_DISABLE_DMABUF_RENDERER",
                                   "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS",
                                   "LD_LIBRARY_PATH",
                                   "LD_PRELOAD",
                                   "OVRA_AGENT_RECORD_DIR",
                                   "OVRA_AGENT_HEADLESS"};

// The time in a form that file names bear: "20240506T070809.123Z".
std::string compactTimestamp() {
    std::string time = timestamp();
    std::erase_if(time, [](char c) { return c == '-' || c == ':'; });
    return time;
}

std::string base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto part = bytes.substr(i, 3);
        unsigned group = 0;
        for (std::size_t j = 0; j < 3; ++j)
            group = (group << 8) | (j < part.size() ? static_cast<unsigned char>(part[j]) : 0U);
        for (std::size_t j = 0; j < 4; ++j)
            text += j <= part.size() ? kDigits[(group >> (18 - 6 * j)) & 63U] : '=';
    }
    return text;
}

std::string octal(unsigned mode) { return fmt::format("{:04o}", mode); }

Json environment() {
    Json values = Json::object();
    for (const char* name : kVariables)
        if (const char* value = std::getenv(name))
            values[name] = value;
    return values;
}

Json describe(const JoinDetails& details) {
    Json pairs = Json::object();
    for (const auto& [key, value] : details.pairs)
        pairs[key] = value;
    return {{"path", details.file.string()},
            {"present", details.present},
            {"mode", octal(details.mode)},
            {"base64", base64(details.bytes)},
            {"text", details.bytes},
            {"marker", details.marker},
            {"pairs", pairs},
            {"well_formed", details.wellFormed}};
}

} // namespace

fs::path recordFolder(const fs::path& home) {
    const char* const chosen = std::getenv("OVRA_AGENT_RECORD_DIR");
    if (chosen != nullptr && *chosen != '\0')
        return chosen;
    return home / "Library/Logs/OvraTessel/Agent";
}

std::string describeStart(const std::vector<std::string>& arguments, const JoinDetails& details) {
    const Json record = {
        {"time", timestamp()},
        {"argv", arguments},
        {"executable", executablePath()},
        {"pid", getpid()},
        {"parent", getppid()},
        {"session", getsid(0)},
        {"process_group", getpgrp()},
        {"streams", {{"0", streamTarget(0)}, {"1", streamTarget(1)}, {"2", streamTarget(2)}}},
        {"environment", environment()},
        {"join_details", describe(details)}};
    // Bytes that are no UTF-8 stand exactly in the base 64 member.
    return record.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void writeRecord(const fs::path& folder, const std::string& record) {
    fs::create_directories(folder);
    const std::string name = fmt::format("agent-{}-{}.json", compactTimestamp(), getpid());
    const fs::path unfinished = folder / ("." + name + ".new");
    std::ofstream output(unfinished, std::ios::binary | std::ios::trunc);
    output << record;
    output.close();
    if (!output)
        throw std::runtime_error("cannot write " + unfinished.string());
    fs::rename(unfinished, folder / name);
}

} // namespace datacentre::agent
