#include "bridge/bridge_test.h"

#include <future>

namespace lumora {
namespace {

class SharedMessageHandler : public CoreTest {};

TEST_F(SharedMessageHandler, isOneInstanceWithoutADelegate) {
    auto& handler = NativeMessageHandler::shared();

    EXPECT_EQ(&handler, &NativeMessageHandler::shared());
    EXPECT_EQ(handler.nativeMessageHandlerDelegate(), nullptr);
}

TEST_F(SharedMessageHandler, twoConcurrentFirstCallsMakeOneInstance) {
    std::promise<void> start;
    const auto gate = start.get_future().share();
    const auto firstCall = [gate] {
        gate.wait();
        return &NativeMessageHandler::shared();
    };
    auto one = std::async(std::launch::async, firstCall);
    auto other = std::async(std::launch::async, firstCall);
    start.set_value();

    EXPECT_EQ(one.get(), other.get());
    EXPECT_EQ(loop.serialQueueLabels.size(), 1U);
}

TEST_F(SharedMessageHandler, makesItsQueueAndLeavesItIdle) {
    auto& handler = NativeMessageHandler::shared();
    handler.handleMessageFromWebView({"sendJoinDetailsToNative", R"({"sessionKey":123456789,"email":"c"})"});

    EXPECT_EQ(loop.serialQueueLabels,
              std::vector<std::string>{"com.ovra.tessel.lumora.applicationDownloadAndInitiatingQueue"});
    EXPECT_EQ(loop.serialQueueWork, 0);
}

TEST_F(SharedMessageHandler, keepsTheDelegateItIsMadeWith) {
    RecordingDelegate page;
    NativeMessageHandler handler(&page);

    handler.handleMessageFromWebView({"getSystemOs", std::nullopt});

    EXPECT_EQ(handler.nativeMessageHandlerDelegate(), &page);
    EXPECT_EQ(page.journal.size(), 1U);
}

} // namespace
} // namespace lumora
