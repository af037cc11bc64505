#include "platform/macos/foundation/foundation_tasks.h"

#include "platform/macos/foundation/objc_exceptions.h"
#include "platform/posix/posix_error.h"

#include <cerrno>
#include <future>

namespace lumora::platform::macos_backend {

namespace {

Result<TaskResult> runToItsEnd(const std::string& executable, const std::vector<std::string>& arguments,
                               TaskOutput output) {
    NSPipe* pipe = output == TaskOutput::capture ? [NSPipe pipe] : nil;
    NSTask* task = [[NSTask alloc] init];
    task.executableURL = [NSURL fileURLWithPath:nsString(executable)];
    task.arguments = listOf(arguments);
    task.standardInput = NSFileHandle.fileHandleWithNullDevice;
    task.standardError = NSFileHandle.fileHandleWithNullDevice;
    if (pipe != nil)
        task.standardOutput = pipe;
    else
        task.standardOutput = NSFileHandle.fileHandleWithNullDevice;
    NSError* error = nil;
    if (![task launchAndReturnError:&error])
        return errorOf(error);
    // First read, then waited: a full pipe would keep the tool from ending.
    NSData* text = [pipe.fileHandleForReading readDataToEndOfFile];
    [task waitUntilExit];
    return TaskResult{task.terminationStatus, bytesOf(text)};
}

} // namespace

Result<TaskResult> FoundationTasks::run(const std::string& executable,
                                        const std::vector<std::string>& arguments, TaskOutput output) {
    if (!arriveWhole(arguments))
        return posix_backend::posixError(EINVAL, executable);
    // On a thread of its own: the wait lets the run loop of its thread go on, and on the main one all that is
    // queued.
    return std::async(std::launch::async,
                      [&] { return atPort([&] { return runToItsEnd(executable, arguments, output); }); })
        .get();
}

} // namespace lumora::platform::macos_backend
