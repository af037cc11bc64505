// hdiutil: mounts and detaches the application's disk images where the system has no such tool.
//
//   hdiutil mount IMAGE          prints one line whose last tab-separated field is the mount point
//   hdiutil detach MOUNTPOINT
//   hdiutil info                 prints such a line for every volume that the user has mounted
//
// Volumes live in /Volumes, which has to exist and be writable. There is deliberately no way to name another folder:
// whoever runs this must not be able to make it remove things elsewhere. Exit status: 0 done, 1 failed with the reason
// in one line on standard error, 64 not understood.

#include "platform/linux/hdiutil/disk_images.h"
#include "platform/linux/hdiutil/failure.h"

#include <fmt/format.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace {

using lumora::platform::Error;
using lumora::platform::linux_backend::Attachment;
using lumora::platform::linux_backend::DiskImages;
using lumora::platform::linux_backend::printable;

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 64;

int fail(const Error& error) {
    fmt::print(stderr, "hdiutil: {}\n", error.localizedDescription);
    return kFailed;
}

int printAttachments(const std::vector<Attachment>& attachments) {
    std::string lines; // of valid UTF-8 alone: whoever reads them decodes all or nothing
    for (const Attachment& attachment : attachments)
        lines += fmt::format("{}\tISO9660\t{}\n", attachment.image, attachment.mountPoint.string());
    if (std::fputs(lines.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        return fail({"NSPOSIXErrorDomain", errno, "cannot write to standard output", std::nullopt});
    return kDone;
}

int mount(const std::string& image) {
    const auto mounted = DiskImages().mount(image);
    return mounted ? printAttachments({mounted.value()}) : fail(mounted.error());
}

int detach(const std::string& mountPoint) {
    const auto detached = DiskImages().detach(mountPoint);
    return detached ? kDone : fail(detached.error());
}

int info(const std::string& /*nothing*/) {
    const auto attachments = DiskImages().attachments();
    return attachments ? printAttachments(attachments.value()) : fail(attachments.error());
}

struct Verb {
    std::string_view name;
    std::string_view argument; ///< what the usage calls it; empty if the verb takes none
    int (*run)(const std::string&);
};

constexpr Verb kVerbs[] = {{"mount", "IMAGE", mount}, {"detach", "MOUNTPOINT", detach}, {"info", "", info}};

int usage(const std::string& complaint) {
    std::string text = "hdiutil: " + printable(complaint) + "; usage:";
    for (const Verb& verb : kVerbs) {
        text += fmt::format("{} hdiutil {}{}{}", &verb == kVerbs ? "" : ",", verb.name,
                            verb.argument.empty() ? "" : " ", verb.argument);
    }
    fmt::print(stderr, "{}\n", text);
    return kUsage;
}

int run(const std::vector<std::string>& arguments) {
    if (arguments.empty())
        return usage("nothing to do");
    for (const std::string& argument : arguments)
        if (argument.starts_with('-'))
            return usage("option " + argument + " is not known");
    for (const Verb& verb : kVerbs) {
        if (arguments.front() == verb.name) {
            const std::size_t wanted = verb.argument.empty() ? 1 : 2;
            return arguments.size() == wanted
                       ? verb.run(arguments.back())
                       : usage(fmt::format("wrong number of arguments for {}", verb.name));
        }
    }
    return usage("verb " + arguments.front() + " is not known");
}

} // namespace

int main(int argc, char* argv[]) {
    // The image reader turns names that are stored as UTF-16 into this encoding.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& failure) {
        return fail({"LumoraDiskImageErrorDomain", 0, failure.what(), std::nullopt});
    }
}
