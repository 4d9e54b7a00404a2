// The four dialogs through which every part of the program talks to the user.
#include <gtkmm/stock.h>

#include "MainWindow.h"

namespace {

using testing::ElementsAre;

/// What a message dialog shows, markup read.
struct Message {
    std::string primary;
    std::string secondary;
    bool hasSecondary;
    Gtk::MessageType type;
    std::vector<std::string> buttons;
};

Message readMessage(Gtk::Dialog& dialog) {
    auto& message = dynamic_cast<Gtk::MessageDialog&>(dialog);
    const auto texts = message.get_message_area()->get_children();
    const auto& primary = dynamic_cast<Gtk::Label&>(*texts.at(0));
    const auto& secondary = dynamic_cast<Gtk::Label&>(*texts.at(1));
    Message read{primary.get_text(),
                 secondary.get_text(),
                 secondary.get_visible(),
                 message.property_message_type().get_value(),
                 {}};
    for (Gtk::Widget* button : dialog.get_action_area()->get_children()) {
        read.buttons.push_back(dynamic_cast<Gtk::Button&>(*button).get_label());
    }
    return read;
}

class Messages : public WithMainWindow {
protected:
    /// Reads the message, then answers with `then`. Asserts that the main window is the dialog's parent.
    Dialogs::Answer reading(const Dialogs::Answer& then) {
        return [this, then](Gtk::Dialog& dialog) {
            EXPECT_EQ(dialog.get_transient_for(), &main.toplevel());
            message = readMessage(dialog);
            return then(dialog);
        };
    }

    Message message;
};

TEST_F(Messages, AnErrorIsShownWithItsTextAsTitleTooAndIsTraced) {
    const Dialogs dialogs({reading(close())});
    window.error("Something failed.");
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"Something failed.", "Something failed."}));
    EXPECT_EQ(message.primary, "Something failed.");
    EXPECT_FALSE(message.hasSecondary);
    EXPECT_EQ(message.type, Gtk::MESSAGE_ERROR);
    EXPECT_THAT(message.buttons, ElementsAre("_Close"));
    EXPECT_EQ(traces.text(), "ERROR !!\n");
}

TEST_F(Messages, TheTextOfAnErrorIsNoMarkup) {
    const Dialogs dialogs({reading(close())});
    window.error("<b>a & b</b>");
    EXPECT_EQ(message.primary, "<b>a & b</b>");
}

TEST_F(Messages, AnErrorIsTracedBeforeItIsShown) {
    std::string tracedBefore;
    const Dialogs dialogs({[&](Gtk::Dialog& dialog) {
        tracedBefore = traces.text();
        return closeWindow(dialog);
    }});
    window.error("x");
    EXPECT_EQ(tracedBefore, "ERROR !!\n");
}

TEST_F(Messages, AnInformationShowsBothTexts) {
    const Dialogs dialogs({reading(accept())});
    window.info("The answer", "is this");
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"Information", "The answer"}));
    EXPECT_EQ(message.primary, "The answer");
    EXPECT_TRUE(message.hasSecondary);
    EXPECT_EQ(message.secondary, "is this");
    EXPECT_EQ(message.type, Gtk::MESSAGE_INFO);
    EXPECT_THAT(message.buttons, ElementsAre("_OK"));
    EXPECT_EQ(traces.text(), "");
}

TEST_F(Messages, AnInformationWithAnEmptySecondTextShowsThePrimaryTextAlone) {
    const Dialogs dialogs({reading(accept())});
    window.info("The answer", "");
    EXPECT_EQ(message.primary, "The answer");
    EXPECT_FALSE(message.hasSecondary);
    EXPECT_EQ(message.secondary, "");
}

TEST_F(Messages, AShortInformationLeavesRoomForItsTitle) {
    int width = 0;
    const Dialogs dialogs({[&](Gtk::Dialog& dialog) {
        width = dialog.get_allocated_width();
        return closeWindow(dialog);
    }});
    window.info("()", "");
    EXPECT_GE(width, 240);
}

TEST_F(Messages, BothTextsOfAnInformationAreMarkup) {
    const Dialogs dialogs({reading(accept())});
    window.info("<b>a</b> &lt; b", "c &amp; <i>d</i>");
    EXPECT_EQ(message.primary, "a < b");
    EXPECT_EQ(message.secondary, "c & d");
}

TEST_F(Messages, AQuestionShowsItsTextAsTitleToo) {
    const Dialogs dialogs({reading(yes())});
    window.question("Sure ?", "Really ?");
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"Sure ?", "Sure ?"}));
    EXPECT_EQ(message.primary, "Sure ?");
    EXPECT_TRUE(message.hasSecondary);
    EXPECT_EQ(message.secondary, "Really ?");
    EXPECT_EQ(message.type, Gtk::MESSAGE_QUESTION);
    EXPECT_THAT(message.buttons, ElementsAre("_No", "_Yes"));
    EXPECT_EQ(traces.text(), "");
}

TEST_F(Messages, AQuestionWithAnEmptySecondTextShowsThePrimaryTextAlone) {
    const Dialogs dialogs({reading(yes())});
    window.question("Sure ?", "");
    EXPECT_FALSE(message.hasSecondary);
}

TEST_F(Messages, TheTextsOfAQuestionAreNoMarkup) {
    const Dialogs dialogs({reading(yes())});
    window.question("<b>a</b> & b", "c & <i>d</i>");
    EXPECT_EQ(message.primary, "<b>a</b> & b");
    EXPECT_EQ(message.secondary, "c & <i>d</i>");
}

TEST_F(Messages, OnlyYesAnswersAQuestionWithYes) {
    const Dialogs dialogs({yes(), no(), closeWindow, pressKey(GDK_KEY_Escape)});
    EXPECT_TRUE(window.question("Sure ?", ""));
    EXPECT_FALSE(window.question("Sure ?", ""));
    EXPECT_FALSE(window.question("Sure ?", ""));
    EXPECT_FALSE(window.question("Sure ?", ""));
}

TEST_F(Messages, EveryMessageMayBeClosedByTheWindowManager) {
    const Dialogs dialogs({closeWindow, closeWindow});
    window.error("x");
    window.info("x", "");
}

// ---------------------------------------------------------------------------------------------------------------------
// The text prompt
// ---------------------------------------------------------------------------------------------------------------------

class Prompt : public WithMainWindow {
protected:
    std::string result = "untouched";
};

TEST_F(Prompt, ShowsItsLabelAndTheDefaultTextUnderAnEmptyTitle) {
    const Dialogs dialogs({cancel()});
    window.getMessage("Name :", result, "q1");
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Name :", "q1"}));
    EXPECT_EQ(traces.text(), "");
}

TEST_F(Prompt, HasTheMainWindowAsItsParent) {
    const Dialogs dialogs({[this](Gtk::Dialog& dialog) {
        EXPECT_EQ(dialog.get_transient_for(), &main.toplevel());
        return closeWindow(dialog);
    }});
    window.getMessage("Name :", result, "");
}

TEST_F(Prompt, StacksTheLabelOverTheEntryWithoutExtraSpacing) {
    const Dialogs dialogs({[](Gtk::Dialog& dialog) {
        Gtk::Box& content = *dialog.get_content_area();
        const auto parts = content.get_children();
        EXPECT_NE(dynamic_cast<Gtk::Label*>(parts.at(0)), nullptr);
        EXPECT_NE(dynamic_cast<Gtk::Entry*>(parts.at(1)), nullptr);
        for (Gtk::Widget* part : {parts.at(0), parts.at(1)}) {
            EXPECT_TRUE(content.child_property_expand(*part));
            EXPECT_TRUE(content.child_property_fill(*part));
            EXPECT_EQ(content.child_property_padding(*part), 0U);
        }
        return cancel()(dialog);
    }});
    window.getMessage("Name :", result, "");
}

TEST_F(Prompt, OffersCancelAndThenOk) {
    std::vector<std::string> buttons;
    const Dialogs dialogs({[&](Gtk::Dialog& dialog) {
        for (Gtk::Widget* child : dialog.get_action_area()->get_children()) {
            const auto& button = dynamic_cast<Gtk::Button&>(*child);
            EXPECT_TRUE(button.get_use_stock());
            buttons.push_back(button.get_label());
        }
        return cancel()(dialog);
    }});
    window.getMessage("Name :", result, "");
    EXPECT_THAT(buttons, ElementsAre("gtk-cancel", "gtk-ok"));
}

TEST_F(Prompt, AcceptedGivesTheText) {
    const Dialogs dialogs({enter("new"), accept(), enter("")});
    EXPECT_TRUE(window.getMessage("Name :", result, "old"));
    EXPECT_EQ(result, "new");
    EXPECT_TRUE(window.getMessage("Name :", result, "old"));
    EXPECT_EQ(result, "old");
    EXPECT_TRUE(window.getMessage("Name :", result, "old"));
    EXPECT_EQ(result, "");
}

TEST_F(Prompt, EnterInTheEntryIsTheSameAsOk) {
    const Dialogs dialogs({enter("new", pressKey(GDK_KEY_Return)), enter("newer", pressKey(GDK_KEY_KP_Enter))});
    EXPECT_TRUE(window.getMessage("Name :", result, "old"));
    EXPECT_EQ(result, "new");
    EXPECT_TRUE(window.getMessage("Name :", result, "old"));
    EXPECT_EQ(result, "newer");
}

TEST_F(Prompt, TheTextOutsideAsciiComesBackAsItWas) {
    const Dialogs dialogs({enter("\xC3\xA9\xE2\x86\x92 <&>")});
    EXPECT_TRUE(window.getMessage("<b>&", result, "old"));
    EXPECT_EQ(result, "\xC3\xA9\xE2\x86\x92 <&>");
}

TEST_F(Prompt, CancelledClosedOrEscapedLeavesTheResultUntouched) {
    const Dialogs dialogs({enter("new", cancel()), enter("new", closeWindow), enter("new", pressKey(GDK_KEY_Escape))});
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(window.getMessage("Name :", result, "old"));
        EXPECT_EQ(result, "untouched");
    }
}

}  // namespace
