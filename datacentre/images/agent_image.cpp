#include "images/image_maker.h"
#include "images/images.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace datacentre {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kProgram = 0755;
constexpr unsigned kReadable = 0644;
constexpr unsigned kPrivate = 0600;
constexpr unsigned kReadOnly = 0444;

constexpr std::array<std::string_view, 5> kCompanions = {
    "OvraCrashDetector", "TesselUserHandler", "OTPreLogin", "OvraPingAgent", "RemoteScriptLauncher"};

struct SmallFile {
    const char* path;
    unsigned mode;
    const char* content;
};

// Modes and a name beyond ASCII that a copy must keep.
constexpr SmallFile kTools[] = {
    {"tools_mac/collect_report.sh", kProgram,
     "#!/bin/sh\n# Collects what support asks for.\nuname -a\nuptime\n"},
    {"tools_mac/repair.conf", kReadable, "retries=3\ninterval=5\n"},
    {"tools_mac/credentials.template", kPrivate, "user=\nsecret=\n"},
    {"tools_mac/LICENCE", kReadOnly, "For use with the agent only.\n"},
    {"tools_mac/Anleitung für Ihr Gerät – 日本語.txt", kReadable, "Fragen Sie Ihre Technikerin.\n"},
};

constexpr SmallFile kBundleFiles[] = {
    {"Contents/PkgInfo", kReadable, "APPL????"},
    {"Contents/Resources/en.lproj/InfoPlist.strings", kReadable, "CFBundleDisplayName = \"Ovra\";\n"},
    {"Contents/Resources/Ovra.svg", kReadable,
     "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 64 64\"><rect width=\"64\" height=\"64\" "
     "rx=\"15\" "
     "fill=\"#0b6e6a\"/><circle cx=\"32\" cy=\"32\" r=\"15\" fill=\"none\" stroke=\"#fff\" "
     "stroke-width=\"6\"/></svg>\n"},
    {"Contents/Frameworks/OvraLink.framework/Versions/A/OvraLink", kProgram, "#!/bin/sh\nexit 0\n"},
    {"Contents/Frameworks/OvraLink.framework/Versions/A/Resources/Info.plist", kReadable,
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
     "<key>CFBundleIdentifier</key><string>com.ovra.tessel.OvraLink</string></dict></plist>\n"},
};

struct Link {
    const char* path;
    const char* target;
};

constexpr Link kLinks[] = {
    {"Contents/Frameworks/OvraLink.framework/Versions/Current", "A"},
    {"Contents/Frameworks/OvraLink.framework/OvraLink", "Versions/Current/OvraLink"},
    {"Contents/Frameworks/OvraLink.framework/Resources", "Versions/Current/Resources"},
};

std::string infoPlist(const std::string& version) {
    return fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>CFBundleExecutable</key>
    <string>Ovra</string>
    <key>CFBundleIdentifier</key>
    <string>com.ovra.tessel.Ovra</string>
    <key>CFBundleName</key>
    <string>Ovra</string>
    <key>CFBundlePackageType</key>
    <string>APPL</string>
    <key>CFBundleShortVersionString</key>
    <string>{}</string>
    <key>NSHighResolutionCapable</key>
    <true/>
    <key>NSPrincipalClass</key>
    <string>NSApplication</string>
</dict>
</plist>
)",
                       version);
}

void writeBundle(const fs::path& bundle, const fs::path& agentProgram, const std::string& version) {
    for (const auto& file : kBundleFiles)
        writeFile(bundle / file.path, file.content, file.mode);
    for (const auto& link : kLinks)
        fs::create_symlink(link.target, bundle / link.path);
    writeFile(bundle / "Contents/Info.plist", infoPlist(version), kReadable);

    const fs::path executable = bundle / "Contents/MacOS/Ovra";
    fs::create_directories(executable.parent_path());
    fs::copy_file(agentProgram, executable);
    fs::permissions(executable, fs::perms(kProgram));
}

} // namespace

void makeAgentImage(const fs::path& image, const fs::path& agentProgram, const std::string& version) {
    if (!fs::is_regular_file(agentProgram))
        throw std::runtime_error(fmt::format("there is no agent program at {}", agentProgram.string()));

    const ScratchFolder scratch;
    const fs::path volume = scratch.path() / "volume";
    writeBundle(volume / "Ovra.app", agentProgram, version);
    for (const auto name : kCompanions)
        writeFile(volume / name, fmt::format("#!/bin/sh\necho \"{} {}\"\n", name, version), kProgram);
    for (const auto& file : kTools)
        writeFile(volume / file.path, file.content, file.mode);
    makeImage(volume, "Ovra", image);
}

} // namespace datacentre
