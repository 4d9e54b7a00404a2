// The window from its description: what it takes from it, how it is wired, how it runs and ends.
#include <gtkmm/aboutdialog.h>

#include <cstdlib>
#include <iostream>

#include "MainWindow.h"
#include "common/MinimalDescription.h"

namespace {

using testing::ElementsAre;

// ---------------------------------------------------------------------------------------------------------------------
// Descriptions
// ---------------------------------------------------------------------------------------------------------------------

TEST(WindowDescription, ThatIsMissingThrows) { EXPECT_THROW(Window("missing.glade"), Glib::Error); }

TEST(WindowDescription, ThatIsNoMarkupThrows) {
    const Folder folder;
    EXPECT_THROW(Window(folder.write("bad.glade", "no markup")), Glib::Error);
    EXPECT_THROW(Window(folder.write("bad.glade", "<interface><object class=\"NoSuchClass\" id=\"x\"/></interface>")),
                 Glib::Error);
}

/// Asserts that the program, were it started with this description, would end with a message about `widget`.
void expectComplaint(const std::string& description, const std::string& widget) {
    const Folder folder;
    const std::string path = folder.write("IHM.glade", description);
    const auto start = [&path] {
        try {
            Window window(path);
        } catch (const std::runtime_error& failure) {
            std::cerr << failure.what();
            std::_Exit(1);
        }
    };
    EXPECT_EXIT(start(), testing::ExitedWithCode(1), testing::EndsWith("IHM.glade has no widget " + widget));
}

TEST(WindowDescription, ThatLacksAWidgetIsComplainedAbout) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the display may be used by one process alone
    for (const std::string name :
         {"window1", "drawingarea1", "toolButtonArc", "toolNew", "menu_savein", "menu_bound"}) {
        expectComplaint(replaced(minimalDescription, "id=\"" + name + "\"", "id=\"renamed\""), name);
    }
}

TEST(WindowDescription, ThatHasAWidgetOfAnotherClassIsComplainedAbout) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    expectComplaint(replaced(minimalDescription, "GtkImageMenuItem\" id=\"menu_new\"", "GtkMenuItem\" id=\"menu_new\""),
                    "menu_new");
}

TEST(WindowDescription, NeedsNoOtherWidgetsThanThoseThatAreLookedUp) {
    const Folder folder;
    Traces traces;
    MainWindow main(folder.write("IHM.glade", minimalDescription));
    main.click("toolButtonNoeud");
    main.mouse->clickAt(100, 100);
    main.mouse->clickAt(300, 100);
    main.click("toolButtonArc");
    main.mouse->drag({100, 100}, {300, 100});
    const Dialogs dialogs({enter("a -> b")});
    main.mouse->clickAt(200, 100);
    EXPECT_EQ(main.text(), "q1(100, 100);\nq2(300, 100);\nq1 -> q2 : a -> b ;\n\n");
    main.choose("menu_new");
    EXPECT_EQ(main.text(), "");
}

TEST(WindowDescription, MayBeUsedForTwoWindowsInOneProgram) {
    Traces traces;
    MainWindow first;
    MainWindow second;
    first.load("A(10, 20);");
    second.load("B(30, 40);");
    EXPECT_EQ(first.text(), "A(10, 20);\n\n");
    EXPECT_EQ(second.text(), "B(30, 40);\n\n");
    const Dialogs dialogs({close(), close()});
    first.window.error("first");
    second.window.error("second");
}

// ---------------------------------------------------------------------------------------------------------------------
// Wiring
// ---------------------------------------------------------------------------------------------------------------------

class Wiring : public WithMainWindow {
protected:
    Wiring() { main.load("A(10, 20);"); }

    /// Uses the item, and asserts that it opens a file chooser with that action.
    void expectChooser(Gtk::FileChooserAction action, const std::function<void()>& use) {
        const Dialogs dialogs({[action](Gtk::Dialog& dialog) {
            EXPECT_EQ(dynamic_cast<Gtk::FileChooserDialog&>(dialog).get_action(), action);
            return cancel()(dialog);
        }});
        use();
    }

    /// Uses the item, and asserts that it shows that information.
    void expectInformation(const std::string& item, const std::string& text) {
        const Dialogs dialogs({accept()});
        main.choose(item);
        EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"Information", text}));
    }
};

TEST_F(Wiring, TheToolNewStartsANewModel) {
    main.click("toolNew");
    EXPECT_EQ(main.text(), "");
}

TEST_F(Wiring, TheToolOpenOpens) {
    expectChooser(Gtk::FILE_CHOOSER_ACTION_OPEN, [this] { main.click("toolOpen"); });
}

TEST_F(Wiring, TheToolSaveSaves) {
    expectChooser(Gtk::FILE_CHOOSER_ACTION_SAVE, [this] { main.click("toolSave"); });
}

TEST_F(Wiring, TheMenuItemNewStartsANewModel) {
    main.choose("menu_new");
    EXPECT_EQ(main.text(), "");
}

TEST_F(Wiring, TheMenuItemOpenOpens) {
    expectChooser(Gtk::FILE_CHOOSER_ACTION_OPEN, [this] { main.choose("menu_open"); });
}

TEST_F(Wiring, TheMenuItemSaveSaves) {
    expectChooser(Gtk::FILE_CHOOSER_ACTION_SAVE, [this] { main.choose("menu_save"); });
}

TEST_F(Wiring, TheMenuItemsSaveAndSaveAsDifferOnceThereIsAFile) {
    const Folder folder;
    const Dialogs dialogs({save(folder.path(), "model.klv"), yes(), cancel()});
    main.choose("menu_savein");
    main.choose("menu_save");
    main.choose("menu_savein");
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, replaceSeen, chooserSeen));
}

TEST_F(Wiring, TheToolSaveAndTheMenuItemSaveAreTheSame) {
    const Folder folder;
    const Dialogs dialogs({save(folder.path(), "model.klv"), yes(), yes()});
    main.click("toolSave");
    main.click("toolSave");
    main.choose("menu_save");
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, replaceSeen, replaceSeen));
}

TEST_F(Wiring, TheMenuItemAboutTellsWhatTheProgramIs) {
    std::string program;
    const Dialogs dialogs({[&](Gtk::Dialog& dialog) {
        program = dynamic_cast<Gtk::AboutDialog&>(dialog).get_program_name();
        return closeWindow(dialog);
    }});
    main.choose("menu_about");
    EXPECT_EQ(program, "KLV editor");
}

TEST_F(Wiring, TheTitleNamesTheCurrentFile) {
    const Folder folder;
    EXPECT_EQ(main.toplevel().get_title(), "KLV editor");
    {
        const Dialogs dialogs({save(folder.path(), "model")});
        main.choose("menu_savein");
    }
    EXPECT_EQ(main.toplevel().get_title(), "model.klv - KLV editor");
    main.choose("menu_new");
    EXPECT_EQ(main.toplevel().get_title(), "KLV editor");
}

// ---------------------------------------------------------------------------------------------------------------------
// Running
// ---------------------------------------------------------------------------------------------------------------------

class Running : public WithMainWindow {
protected:
    /// Runs the window and does `action` as soon as it runs.
    void runAnd(const std::function<void()>& action) {
        Glib::signal_idle().connect_once([&] {
            isRunning = true;
            EXPECT_TRUE(main.toplevel().get_visible());
            action();
        });
        window.run();
    }

    bool isRunning = false;
};

TEST_F(Running, EndsWhenTheWindowIsClosed) {
    runAnd([this] { dispatch(newEvent(main.toplevel(), GDK_DELETE)); });
    EXPECT_TRUE(isRunning);
    EXPECT_FALSE(main.toplevel().get_visible());
}

TEST_F(Running, EndsWhenQuitIsCalled) {
    runAnd([this] { window.quit(); });
    EXPECT_TRUE(isRunning);
}

TEST_F(Running, EndsWhenTheMenuItemQuitIsChosen) {
    runAnd([this] { main.choose("menu_quit"); });
    EXPECT_TRUE(isRunning);
}

TEST_F(Running, ClosingTheWindowWritesNoTrace) {
    main.load("A(10, 20); A -> B : x -> y; A : 2x;");
    const std::string before = traces.text();
    runAnd([this] { dispatch(newEvent(main.toplevel(), GDK_DELETE)); });
    EXPECT_EQ(traces.text(), before);
}

}  // namespace
