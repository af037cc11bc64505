#include "view_test.h"

namespace lumora::contract {

class ScriptMessagesOfAPage : public ViewTest {
  protected:
    void SetUp() override {
        view.addScriptMessageHandler("bridge");
        server.page("/page", "<title>page</title>");
        show(server.url("/page"));
    }

    /// Posts the value of an expression and returns what arrives.
    ScriptMessage posted(const std::string& expression) {
        delegate.messages.clear();
        run("webkit.messageHandlers.bridge.postMessage(" + expression + ")");
        EXPECT_TRUE(runUntil([this] { return !delegate.messages.empty(); })) << expression;
        return delegate.messages.empty() ? ScriptMessage{} : delegate.messages.front();
    }
};

TEST_F(ScriptMessagesOfAPage, stringsArriveUnderTheirName) {
    const ScriptMessage message = posted("'hello'");
    EXPECT_EQ(message.name, "bridge");
    EXPECT_EQ(message.stringBody, "hello");
}

TEST_F(ScriptMessagesOfAPage, theEmptyStringIsAString) { EXPECT_EQ(posted("''").stringBody, ""); }

TEST_F(ScriptMessagesOfAPage, onlyStringsHaveAStringBody) {
    for (const char* other : {"42", "1.5", "true", "false", "null", "undefined", "{a: 'text'}", "['text']",
                              "new Date(0)", "new ArrayBuffer(4)"})
        EXPECT_EQ(posted(other).stringBody, std::nullopt) << other;
}

TEST_F(ScriptMessagesOfAPage, embeddedNulsAreKept) {
    EXPECT_EQ(posted("'a\\u0000b\\u0000'").stringBody, std::string("a\0b\0", 4));
}

TEST_F(ScriptMessagesOfAPage, textBeyondAsciiArrivesAsUtf8) {
    EXPECT_EQ(posted("'Grüße, 日本, 👩‍👩‍👧'").stringBody,
              "Grüße, 日本, 👩‍👩‍👧");
}

TEST_F(ScriptMessagesOfAPage, everythingThatTextMayHoldArrives) {
    std::string expected;
    for (int character = 0; character < 0x80; ++character)
        expected += static_cast<char>(character);
    EXPECT_EQ(posted("Array.from({length: 128}, (_, i) => String.fromCharCode(i)).join('')").stringBody,
              expected);
    EXPECT_EQ(posted("'\\\\u0041 \\u2028\\ufeff\\uffff \\ud83d\\ude00'").stringBody,
              "\\u0041 \u2028\uFEFF\uFFFF \U0001F600");
}

TEST_F(ScriptMessagesOfAPage, halfASurrogatePairEndsNoText) {
    EXPECT_EQ(posted("'ab\\ud83dcd'").stringBody, "ab\xED\xA0\xBD"
                                                  "cd");
    EXPECT_EQ(posted("'\\ude00\\ud83d'").stringBody, "\xED\xB8\x80\xED\xA0\xBD");
}

TEST_F(ScriptMessagesOfAPage, aMebibyteArrivesWhole) {
    const ScriptMessage message = posted("'abcdefgh'.repeat(131072)");
    ASSERT_TRUE(message.stringBody.has_value());
    EXPECT_EQ(message.stringBody->size(), 1U << 20U);
    EXPECT_TRUE(message.stringBody->ends_with("abcdefgh"));
}

TEST_F(ScriptMessagesOfAPage, messagesKeepTheirOrder) {
    delegate.messages.clear();
    run("for (let i = 0; i < 100; ++i) webkit.messageHandlers.bridge.postMessage(String(i))");
    ASSERT_TRUE(runUntil([this] { return delegate.messages.size() == 100; }));
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(delegate.messages[i].stringBody, std::to_string(i));
}

TEST_F(ScriptMessagesOfAPage, framesOfThePageMayPostToo) {
    server.page("/frame", "<script>webkit.messageHandlers.bridge.postMessage('from the frame')</script>");
    run("document.body.innerHTML = '<iframe src=\"" + server.url("/frame", "127.0.0.1") + "\"></iframe>'");
    ASSERT_TRUE(runUntil([this] { return !delegate.messages.empty(); }));
    EXPECT_EQ(delegate.messages.front().stringBody, "from the frame");
}

TEST_F(ScriptMessagesOfAPage, aNameThatIsNotRegisteredDoesNotExist) {
    EXPECT_EQ(valueOf("typeof webkit.messageHandlers.other"), "undefined");
}

TEST_F(ScriptMessagesOfAPage, aRemovedNameReceivesNothingMore) {
    view.removeScriptMessageHandler("bridge");
    EXPECT_EQ(valueOf("typeof webkit.messageHandlers.bridge"), "undefined");
}

TEST_F(ScriptMessagesOfAPage, removingANameThatWasNeverAddedChangesNothing) {
    view.removeScriptMessageHandler("neverAdded");
    EXPECT_EQ(posted("'still here'").stringBody, "still here");
}

TEST_F(ScriptMessagesOfAPage, namesOutliveAReload) {
    server.page("/second", "<title>second</title>");
    show(server.url("/second"));
    EXPECT_EQ(posted("'again'").stringBody, "again");
}

} // namespace lumora::contract
