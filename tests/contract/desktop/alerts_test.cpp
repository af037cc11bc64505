#include "alerts_fixture.h"

namespace lumora::contract {

class Alerts : public AlertsFixture<AlertsOnScreen> {
  protected:
    Alerts() : AlertsFixture(makeAlertsOnScreen()) {}
};

TEST_F(Alerts, showBothTextsAsTheyStand) {
    const Alert alert{"50 % <b>off</b>", "first line\n\n• second & last", AlertStyle::warning, {}};

    answerOf(alert, [this] {
        EXPECT_EQ(screen->texts(), (Texts{"50 % <b>off</b>", "first line\n\n• second & last"}));
        screen->press("OK");
    });
}

TEST_F(Alerts, answerWithTheNumberOfTheButton) {
    const Alert alert{"m", "i", AlertStyle::critical, {"Uninstall", "Cancel", "Help"}};

    EXPECT_EQ(answerOf(alert, [this] { screen->press("Uninstall"); }), 1000);
    EXPECT_EQ(answerOf(alert, [this] { screen->press("Cancel"); }), 1001);
    EXPECT_EQ(answerOf(alert, [this] { screen->press("Help"); }), 1002);
}

TEST_F(Alerts, withoutButtonsHaveASingleOk) {
    const auto pressOk = [this] {
        EXPECT_EQ(screen->buttons(), Texts{"OK"});
        screen->press("OK");
    };
    EXPECT_EQ(answerOf({"m", "i", AlertStyle::informational, {}}, pressOk), kAlertFirstButtonReturn);
}

TEST_F(Alerts, dismissedWithoutAnAnswerAnswerWithNoButtonsNumber) {
    const int answer =
        answerOf({"m", "i", AlertStyle::warning, {"One", "Two"}}, [this] { screen->dismiss(); });

    EXPECT_TRUE(answer < kAlertFirstButtonReturn || answer > kAlertFirstButtonReturn + 1) << answer;
}

TEST_F(Alerts, areModalAndGoneAfterwards) {
    answerOf({"m", "i", AlertStyle::warning, {}}, [this] {
        EXPECT_TRUE(screen->isModal());
        screen->press("OK");
    });

    EXPECT_FALSE(screen->isOneThere());
}

} // namespace lumora::contract
