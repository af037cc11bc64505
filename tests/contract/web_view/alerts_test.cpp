#include "platform/linux/gui/gtk_alerts.h"
#include "platform/linux/gui/modal_loop.h"
#include "view_test.h"

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace lumora::platform::linux_backend::testing {

namespace {

/// Every widget below one that satisfies the predicate, depth first.
template <class Predicate>
void collect(GtkWidget* widget, Predicate wanted, std::vector<GtkWidget*>& found) {
    if (wanted(widget))
        found.push_back(widget);
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
         child = gtk_widget_get_next_sibling(child))
        collect(child, wanted, found);
}

/// The dialog on the screen, or null.
GtkDialog* dialogOnScreen() {
    GListModel* windows = gtk_window_get_toplevels();
    for (guint i = 0; i < g_list_model_get_n_items(windows); ++i) {
        g_autoptr(GObject) window = G_OBJECT(g_list_model_get_item(windows, i));
        if (GTK_IS_DIALOG(window) && gtk_widget_get_mapped(GTK_WIDGET(window)) != FALSE)
            return GTK_DIALOG(window);
    }
    return nullptr;
}

} // namespace

class Alerts : public ::testing::Test {
  protected:
    using Texts = std::vector<std::string>;

    GlibMainLoop loop;
    GtkAlerts alerts{loop.tracking(), [] { return nullptr; }};

    /// Shows the alert and does the step as soon as it stands on the screen; the answer.
    int answerOf(const Alert& alert, std::function<void(GtkDialog*)> step) {
        const auto poll = loop.scheduleTimer(10ms, TimerMode::commonModes, [&] {
            GtkDialog* dialog = dialogOnScreen();
            if (dialog != nullptr && step)
                std::exchange(step, nullptr)(dialog);
        });
        return alerts.runModal(alert);
    }

    static Texts labels(GtkDialog* dialog) {
        std::vector<GtkWidget*> found;
        auto* area = gtk_message_dialog_get_message_area(GTK_MESSAGE_DIALOG(dialog));
        collect(
            area, [](GtkWidget* widget) { return GTK_IS_LABEL(widget) != FALSE; }, found);
        Texts texts;
        for (GtkWidget* label : found)
            texts.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
        return texts;
    }

    /// From left to right.
    static std::vector<GtkWidget*> buttons(GtkDialog* dialog) {
        std::vector<GtkWidget*> found;
        collect(
            GTK_WIDGET(dialog),
            [dialog](GtkWidget* widget) {
                return GTK_IS_BUTTON(widget) &&
                       gtk_dialog_get_response_for_widget(dialog, widget) != GTK_RESPONSE_NONE;
            },
            found);
        return found;
    }

    static Texts titles(GtkDialog* dialog) {
        Texts texts;
        for (GtkWidget* button : buttons(dialog))
            texts.emplace_back(gtk_button_get_label(GTK_BUTTON(button)));
        return texts;
    }

    static void click(GtkDialog* dialog, const std::string& title) {
        for (GtkWidget* button : buttons(dialog))
            if (gtk_button_get_label(GTK_BUTTON(button)) == title)
                g_signal_emit_by_name(button, "clicked");
    }
};

TEST_F(Alerts, showBothTextsAsTheyStand) {
    const Alert alert{"50 % <b>off</b>", "first line\n\n• second & last", AlertStyle::warning, {}};

    answerOf(alert, [](GtkDialog* dialog) {
        EXPECT_EQ(labels(dialog), (Texts{"50 % <b>off</b>", "first line\n\n• second & last"}));
        click(dialog, "OK");
    });
}

TEST_F(Alerts, answerWithTheNumberOfTheButton) {
    const Alert alert{"m", "i", AlertStyle::critical, {"Uninstall", "Cancel", "Help"}};

    EXPECT_EQ(answerOf(alert, [](GtkDialog* dialog) { click(dialog, "Uninstall"); }), 1000);
    EXPECT_EQ(answerOf(alert, [](GtkDialog* dialog) { click(dialog, "Cancel"); }), 1001);
    EXPECT_EQ(answerOf(alert, [](GtkDialog* dialog) { click(dialog, "Help"); }), 1002);
}

TEST_F(Alerts, withoutButtonsHaveASingleOk) {
    EXPECT_EQ(answerOf({"m", "i", AlertStyle::informational, {}},
                       [](GtkDialog* dialog) {
                           EXPECT_EQ(titles(dialog), Texts{"OK"});
                           click(dialog, "OK");
                       }),
              kAlertFirstButtonReturn);
}

TEST_F(Alerts, haveTheFirstButtonOnTheRightAndDestructiveWhenCritical) {
    answerOf({"m", "i", AlertStyle::critical, {"Uninstall", "Cancel"}}, [](GtkDialog* dialog) {
        EXPECT_EQ(titles(dialog), (Texts{"Cancel", "Uninstall"}));
        EXPECT_FALSE(gtk_widget_has_css_class(buttons(dialog)[0], "destructive-action"));
        EXPECT_TRUE(gtk_widget_has_css_class(buttons(dialog)[1], "destructive-action"));
        click(dialog, "Cancel");
    });
}

TEST_F(Alerts, closedWithoutAnAnswerAnswerWithNoButtonsNumber) {
    const int answer = answerOf({"m", "i", AlertStyle::warning, {"One", "Two"}},
                                [](GtkDialog* dialog) { gtk_window_close(GTK_WINDOW(dialog)); });

    EXPECT_TRUE(answer < kAlertFirstButtonReturn || answer > kAlertFirstButtonReturn + 1) << answer;
}

TEST_F(Alerts, areModalAndGoneAfterwards) {
    answerOf({"m", "i", AlertStyle::warning, {}}, [this](GtkDialog* dialog) {
        EXPECT_TRUE(loop.tracking().active());
        EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
        click(dialog, "OK");
    });

    EXPECT_FALSE(loop.tracking().active());
    EXPECT_EQ(dialogOnScreen(), nullptr);
}

TEST_F(Alerts, endWithTheApplicationAndNoneFollows) {
    const Alert alert{"m", "i", AlertStyle::warning, {"One"}};

    EXPECT_NE(answerOf(alert, [this](GtkDialog*) { loop.tracking().endModalSessions(); }), 1000);
    EXPECT_NE(alerts.runModal(alert), 1000); // would hang here for want of an answer
}

class ModalWaits : public ::testing::Test {
  protected:
    GlibMainLoop loop;
};

TEST_F(ModalWaits, lastUntilTheWorkIsDoneWhileTheMainThreadGoesOn) {
    std::atomic<bool> ticked = false;
    const auto timer = loop.scheduleTimer(10ms, TimerMode::commonModes, [&] { ticked = true; });
    std::thread::id worker;

    EXPECT_TRUE(waitForBackgroundWork(loop, loop.tracking(), [&] {
        worker = std::this_thread::get_id();
        while (!ticked)
            std::this_thread::yield();
    }));

    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_FALSE(loop.tracking().active());
}

TEST_F(ModalWaits, endWithTheApplicationBeforeTheWork) {
    std::atomic<bool> released = false;
    std::atomic<bool> done = false;
    loop.asyncOnMain([this] { loop.tracking().endModalSessions(); });

    EXPECT_FALSE(waitForBackgroundWork(loop, loop.tracking(), [&] {
        while (!released)
            std::this_thread::yield();
        done = true;
    }));

    released = true;
    EXPECT_TRUE(runUntil([&] { return done.load(); }));
    runFor(20ms); // the work's own word of its end finds nobody
}

} // namespace lumora::platform::linux_backend::testing
