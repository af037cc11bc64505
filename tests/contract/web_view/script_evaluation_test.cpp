#include "view_test.h"

namespace lumora::contract {

class ScriptEvaluation : public ViewTest {
  protected:
    void SetUp() override {
        server.page("/page", "<title>page</title>");
        show(server.url("/page"));
    }

    /// What the completion gets.
    std::optional<Error> outcomeOf(const std::string& script) {
        bool ended = false;
        std::optional<Error> outcome;
        view.evaluateJavaScript(script, [&](std::optional<Error> error) {
            outcome = std::move(error);
            ended = true;
        });
        EXPECT_TRUE(runUntil([&] { return ended; })) << script;
        return outcome;
    }
};

TEST_F(ScriptEvaluation, aScriptThatRunsHasNoError) {
    EXPECT_FALSE(outcomeOf("document.title = 'set'").has_value());
    EXPECT_TRUE(waitForTitle("set"));
}

TEST_F(ScriptEvaluation, aScriptWithoutAValueHasNoError) { EXPECT_FALSE(outcomeOf("void 0").has_value()); }

TEST_F(ScriptEvaluation, anExceptionIsAnErrorWithItsText) {
    const std::optional<Error> error = outcomeOf("throw new Error('broken on purpose')");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->domain, "WKErrorDomain");
    EXPECT_NE(error->localizedDescription.find("broken on purpose"), std::string::npos);
}

TEST_F(ScriptEvaluation, aMissingFunctionIsAnError) {
    EXPECT_TRUE(outcomeOf("window.receiveNothing(\"x\");").has_value());
}

TEST_F(ScriptEvaluation, aScriptThatDoesNotParseIsAnError) {
    EXPECT_TRUE(outcomeOf("window.receive(\"a\"b\");").has_value());
}

TEST_F(ScriptEvaluation, textBeyondAsciiReachesThePage) {
    EXPECT_FALSE(outcomeOf("document.title = 'Grüße 日本'").has_value());
    EXPECT_TRUE(waitForTitle("Grüße 日本"));
}

TEST_F(ScriptEvaluation, longScriptsAreTakenWhole) {
    EXPECT_FALSE(
        outcomeOf("document.title = String('" + std::string(1U << 20U, 'x') + "'.length)").has_value());
    EXPECT_TRUE(waitForTitle("1048576"));
}

} // namespace lumora::contract
