#include "line_server.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace lumora::hand {

namespace {

const std::filesystem::path kPath =
    std::filesystem::temp_directory_path() / ("hand-test." + std::to_string(::getpid()));

struct AtTheEnd {
    ~AtTheEnd() { std::filesystem::remove(kPath); }
} const atTheEnd;

// Answers each line with itself in brackets; "silence" not at all. For all tests: it never ends.
void serveOnce() {
    static const bool begun = [] {
        std::ofstream(kPath) << "of a process that is gone";
        std::thread([] {
            serveLines(kPath, [](const std::string& line, const Answer& answer) {
                if (line != "silence")
                    answer("[" + line + "]");
            });
        }).detach();
        return true;
    }();
    ASSERT_TRUE(begun);
}

class Asker {
  public:
    Asker() : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        serveOnce();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, kPath.c_str(), kPath.string().size() + 1);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 &&
               std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ~Asker() { ::close(socket_); }
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;

    void say(const std::string& text) const {
        ASSERT_EQ(::send(socket_, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    }

    // All until the other side closes.
    std::string hear() const {
        std::string heard;
        char piece[4096];
        for (ssize_t count = 0; (count = ::recv(socket_, piece, sizeof(piece), 0)) > 0;)
            heard.append(piece, static_cast<std::size_t>(count));
        return heard;
    }

  private:
    int socket_;
};

std::string answerTo(const std::string& text) {
    const Asker asker;
    asker.say(text);
    return asker.hear();
}

} // namespace

TEST(LineServer, answersOneLineAConnection) {
    EXPECT_EQ(answerTo("one\n"), "[one]");
    EXPECT_EQ(answerTo("two\nthree\n"), "[two]");
}

TEST(LineServer, waitsForTheWholeLine) {
    const Asker asker;
    asker.say("be");
    asker.say("gin and end\n");
    EXPECT_EQ(asker.hear(), "[begin and end]");
}

TEST(LineServer, takesALineOfAnyLength) {
    const std::string line(1 << 20, 'x');
    const Asker asker;
    std::thread saying([&] { asker.say(line + "\n"); });
    EXPECT_EQ(asker.hear(), "[" + line + "]");
    saying.join();
}

TEST(LineServer, closesAConnectionThatGetsNoAnswer) { EXPECT_EQ(answerTo("silence\n"), ""); }

TEST(LineServer, outlivesAskersThatLeave) {
    for (int times = 0; times < 20; ++times)
        Asker().say("gone before the answer\n");
    Asker();
    EXPECT_EQ(answerTo("still there\n"), "[still there]");
}

TEST(LineServer, doesNotServeAtAPathThatNoSocketCanHave) {
    serveLines(std::string(200, 'x'), [](const std::string&, const Answer&) {}); // returns
}

} // namespace lumora::hand
