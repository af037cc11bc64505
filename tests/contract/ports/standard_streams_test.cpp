#include "platform/posix/posix_standard_streams.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

namespace lumora::contract {
namespace {

using platform::posix_backend::PosixStandardStreams;

bool isFile(int number, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(number, &open) == 0 && ::stat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
           open.st_dev == named.st_dev;
}

class StandardStreamsContract : public testing::Test {
  protected:
    TemporaryFolder folder_;
    const std::string log_ = folder_ / "live.log";
};

TEST_F(StandardStreamsContract, reopeningAppendsBothStreamsInTheOrderOfTheirWrites) {
    writeFile(log_, "before\n");

    EXPECT_EQ("", inChild([&]() -> std::string {
                  PosixStandardStreams streams;
                  streams.reopenAll(log_);
                  streams.writeError("one\n");
                  streams.writeOutput("two\n");
                  streams.writeError(std::string_view("thr\0ee\n", 7));
                  return "";
              }));

    EXPECT_EQ(std::string("before\none\ntwo\nthr\0ee\n", 22), contentsOf(log_));
}

TEST_F(StandardStreamsContract, allThreeStreamsKeepTheirNumbersAndAppend) {
    EXPECT_EQ("", inChild([&]() -> std::string {
                  PosixStandardStreams streams;
                  for (int pass = 0; pass < 3; ++pass)
                      streams.reopenAll(log_);
                  for (int number = 0; number <= 2; ++number) {
                      if (!isFile(number, log_))
                          return fmt::format("{} is another file", number);
                      if ((::fcntl(number, F_GETFL) & (O_APPEND | O_ACCMODE)) != (O_APPEND | O_RDWR))
                          return fmt::format("{} has other flags", number);
                  }
                  if (::fileno(stdin) != 0 || ::fileno(stdout) != 1 || ::fileno(stderr) != 2)
                      return "the C library's streams have other numbers";
                  std::fputs("from the C library\n", stdout);
                  return contentsOf(log_) == "from the C library\n" ? "" : "standard output is buffered";
              }));
}

TEST_F(StandardStreamsContract, missingStreamsAtTheStartAreHeldByTheNullDevice) {
    EXPECT_EQ("", inChild([&]() -> std::string {
                  ::close(0);
                  ::close(1);
                  ::close(2);
                  PosixStandardStreams streams;
                  streams.writeError("nowhere\n");
                  if (const int next = ::open(log_.c_str(), O_RDWR | O_CREAT, 0600); next <= 2)
                      return fmt::format("a new file got number {}", next);
                  return contentsOf(log_).empty() ? "" : "text reached a file that is no log";
              }));
}

TEST_F(StandardStreamsContract, afterAFailedReopenOutputIsLostUntilALaterOneSucceeds) {
    const std::string log = folder_ / "missing/live.log";

    EXPECT_EQ("", inChild([&]() -> std::string {
                  PosixStandardStreams streams;
                  streams.reopenAll(log_);
                  streams.reopenAll(log);
                  streams.writeError("lost\n");
                  streams.writeOutput("lost\n");
                  for (int number = 0; number <= 2; ++number) {
                      if (!isFile(number, "/dev/null"))
                          return fmt::format("{} is not held", number);
                  }
                  std::filesystem::create_directory(folder_ / "missing");
                  streams.reopenAll(log);
                  streams.writeError("found\n");
                  return isFile(1, log) && isFile(2, log) ? "" : "the streams have other numbers";
              }));

    EXPECT_EQ("", contentsOf(log_));
    EXPECT_EQ("found\n", contentsOf(log));
}

TEST_F(StandardStreamsContract, withoutFreeDescriptorsTheNumbersAreHeldAndComeBack) {
    EXPECT_EQ("", inChild([&]() -> std::string {
                  PosixStandardStreams streams;
                  streams.reopenAll(log_);
                  const rlimit limit{64, 1024};
                  ::setrlimit(RLIMIT_NOFILE, &limit);
                  std::vector<int> used;
                  for (int number = ::open("/dev/null", O_RDONLY); number >= 0;
                       number = ::open("/dev/null", O_RDONLY))
                      used.push_back(number);

                  streams.reopenAll(log_);
                  streams.writeError("lost\n");
                  for (int number = 0; number <= 2; ++number) {
                      if (!isFile(number, "/dev/null"))
                          return fmt::format("{} is not held", number);
                  }

                  ::close(used.back()); // one free number is enough
                  streams.reopenAll(log_);
                  streams.writeError("found\n");
                  streams.writeOutput("too\n");
                  return isFile(1, log_) && isFile(2, log_) ? "" : "the numbers did not come back";
              }));

    EXPECT_EQ("found\ntoo\n", contentsOf(log_));
}

TEST_F(StandardStreamsContract, socketsOpenedDuringReopeningNeverReceiveLogText) {
    const std::string missing = folder_ / "missing/live.log";

    EXPECT_EQ("", inChild([&]() -> std::string {
                  PosixStandardStreams streams;
                  std::atomic<bool> stop = false;
                  std::atomic<int> opened = 0;
                  std::string fault;
                  std::thread network([&] {
                      while (!stop && fault.empty()) {
                          std::array<int, 2> ends{};
                          if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
                              continue;
                          ++opened;
                          char byte = 0;
                          if (ends[0] <= 2 || ends[1] <= 2)
                              fault = "a socket got the number of a stream";
                          else if (::recv(ends[0], &byte, 1, MSG_DONTWAIT) > 0 ||
                                   ::recv(ends[1], &byte, 1, MSG_DONTWAIT) > 0)
                              fault = "a socket received log text";
                          ::close(ends[0]);
                          ::close(ends[1]);
                      }
                  });
                  for (int pass = 0; pass < 2000 || (opened < 2000 && fault.empty()); ++pass) {
                      streams.reopenAll(pass % 2 == 0 ? missing : log_);
                      streams.writeError("text\n");
                      streams.writeOutput("text\n");
                  }
                  stop = true;
                  network.join();
                  return fault;
              }));
}

TEST_F(StandardStreamsContract, writersAndReopeningAndRotationLoseAndTearNoLine) {
    constexpr int kThreads = 8;
    constexpr int kLines = 4000;
    constexpr std::uintmax_t kLimit = 65536;

    const std::string report = inChild([&]() -> std::string {
        PosixStandardStreams streams;
        streams.reopenAll(log_);
        std::atomic<int> running = kThreads;
        std::atomic<int> backups = 0;
        std::vector<std::thread> writers;
        for (int thread = 0; thread < kThreads; ++thread) {
            writers.emplace_back([&, thread] {
                for (int line = 0; line < kLines; ++line) {
                    // Writers that never rest can keep the rotating thread from the lock to their end.
                    while (line == kLines / 2 && backups == 0)
                        std::this_thread::sleep_for(std::chrono::milliseconds(1));
                    const std::string text = fmt::format(
                        "{} {} {}\n", thread, line, std::string(static_cast<std::size_t>(line % 97), 'x'));
                    if (line % 2 == 0)
                        streams.writeError(text);
                    else
                        streams.writeOutput(text);
                }
                --running;
            });
        }
        while (running > 0) {
            streams.withWritersHeld([&] {
                streams.reopenAll(log_);
                if (std::filesystem::file_size(log_) < kLimit)
                    return;
                std::filesystem::copy_file(log_, fmt::format("{}.{}", log_, backups++));
                std::filesystem::resize_file(log_, 0);
            });
        }
        for (std::thread& writer : writers)
            writer.join();
        return "";
    });
    ASSERT_EQ("", report);

    std::map<int, int> next;
    int lines = 0;
    const auto readLines = [&](const std::string& path) {
        std::istringstream text(contentsOf(path));
        std::string line;
        while (std::getline(text, line)) {
            int thread = -1;
            int number = -1;
            ASSERT_EQ(2, std::sscanf(line.c_str(), "%d %d", &thread, &number)) << line;
            ASSERT_EQ(fmt::format("{} {} {}", thread, number,
                                  std::string(static_cast<std::size_t>(number % 97), 'x')),
                      line);
            ASSERT_EQ(next[thread]++, number) << "thread " << thread;
            ++lines;
        }
    };
    for (int backup = 0; std::filesystem::exists(fmt::format("{}.{}", log_, backup)); ++backup)
        readLines(fmt::format("{}.{}", log_, backup));
    readLines(log_);
    EXPECT_EQ(kThreads * kLines, lines);
}

TEST_F(StandardStreamsContract, aMessageCutByAFullDiskCutsNoLaterOne) {
    EXPECT_EQ("", inChild([&]() -> std::string {
                  PosixStandardStreams streams;
                  streams.reopenAll(log_);
                  std::signal(SIGXFSZ, SIG_IGN); // the limit stands for the disk's end
                  rlimit limit{};
                  ::getrlimit(RLIMIT_FSIZE, &limit);
                  const rlimit full{10, limit.rlim_max};
                  ::setrlimit(RLIMIT_FSIZE, &full);
                  streams.writeError("one\n");
                  streams.writeError("two is cut\n");
                  streams.writeOutput("lost\n");
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  streams.writeOutput("three\n");
                  streams.writeError("four\n");
                  return "";
              }));

    EXPECT_EQ("one\ntwo is\nthree\nfour\n", contentsOf(log_));
}

TEST_F(StandardStreamsContract, aFullNonBlockingPipeDelaysTheWriterAndLosesNothing) {
    std::array<int, 2> ends{};
    ASSERT_EQ(0, ::pipe(ends.data()));
    for (const int end : ends)
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    const std::string text(1 << 20, 'y');
    std::size_t received = 0;
    std::thread reader([&] {
        std::array<char, 4096> chunk{};
        while (received < text.size()) {
            if (const ssize_t count = ::read(ends[0], chunk.data(), chunk.size()); count > 0)
                received += static_cast<std::size_t>(count);
            else if (count == 0)
                return;
        }
    });

    const std::string report = inChild([&]() -> std::string {
        ::dup2(ends[1], 2);
        PosixStandardStreams().writeError(text);
        return "";
    });
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);

    EXPECT_EQ("", report);
    EXPECT_EQ(text.size(), received);
}

} // namespace
} // namespace lumora::contract
