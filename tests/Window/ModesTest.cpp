// The three mode buttons, seen by what the mouse does on the drawing area.
#include "MainWindow.h"
#include "common/MinimalDescription.h"

namespace {

/// What dragging a node down and clicking an empty place do.
std::string modeByItsEffect(MainWindow& main) {
    main.load("A(100, 100); B(300, 100);");
    main.mouse->drag({100, 100}, {100, 200});
    main.mouse->clickAt(400, 300);
    const std::string text = main.text();
    if (text == "A(100, 200);\nB(300, 100);\n\n\n") return "Select";
    if (text == "A(100, 100);\nB(300, 100);\nq1(100, 200);\nA -> q1;\n\n\n") return "Arc";
    if (text == "A(100, 200);\nB(300, 100);\nq1(400, 300);\n\n\n\n") return "Noeud";
    return text;
}

class ModeButtons : public WithMainWindow {
protected:
    ModeButtons() { main.load("A(100, 100); B(300, 100);"); }
};

TEST_F(ModeButtons, AtTheStartTheModeIsSelect) {
    EXPECT_TRUE(main.widget<Gtk::RadioToolButton>("toolButtonSelect").get_active());
    EXPECT_EQ(modeByItsEffect(main), "Select");
}

TEST_F(ModeButtons, EveryButtonChoosesItsModeWhateverTheModeBefore) {
    for (const std::string button : {"Arc", "Noeud", "Select", "Noeud", "Arc", "Select", "Arc"}) {
        SCOPED_TRACE(button);
        main.click("toolButton" + button);
        EXPECT_EQ(modeByItsEffect(main), button);
        EXPECT_TRUE(main.widget<Gtk::RadioToolButton>("toolButton" + button).get_active());
    }
}

TEST_F(ModeButtons, ClickingTheActiveButtonAgainChangesNothing) {
    main.click("toolButtonArc");
    main.click("toolButtonArc");
    EXPECT_EQ(modeByItsEffect(main), "Arc");
}

TEST(ModeButton, ThatIsOnlySwitchedOffDoesNotChooseItsMode) {
    // "toolButtonArc" shares its group with a button that stands for no mode.
    const std::string withOther = replaced(minimalDescription, "id=\"toolSave\"/></child>",
                                           "id=\"toolSave\"/></child>"
                                           "<child><object class=\"GtkRadioToolButton\" id=\"other\"/></child>");
    const Folder folder;
    Traces traces;
    MainWindow main(folder.write(
        "IHM.glade",
        replaced(withOther, "id=\"toolButtonArc\">\n                <property name=\"group\">toolButtonSelect",
                 "id=\"toolButtonArc\">\n                <property name=\"group\">other")));
    main.click("toolButtonArc");
    ASSERT_EQ(modeByItsEffect(main), "Arc");
    main.click("toolButtonNoeud");
    ASSERT_EQ(modeByItsEffect(main), "Noeud");
    main.click("other");
    EXPECT_FALSE(main.widget<Gtk::RadioToolButton>("toolButtonArc").get_active());
    EXPECT_EQ(modeByItsEffect(main), "Noeud");
}

TEST_F(ModeButtons, TheModeOutlivesNewAndOpen) {
    main.click("toolButtonNoeud");
    main.click("toolNew");
    EXPECT_EQ(modeByItsEffect(main), "Noeud");
}

TEST_F(ModeButtons, ChangingTheModeInTheMiddleOfAnArcDoesNotCancelIt) {
    main.click("toolButtonArc");
    main.mouse->pressAt(100, 100);
    main.mouse->moveTo(200, 200);
    main.click("toolButtonSelect");
    main.mouse->moveTo(300, 100);
    main.mouse->release();
    EXPECT_EQ(main.text(), "A(100, 100);\nB(300, 100);\nA -> B;\n\n");
}

TEST_F(ModeButtons, NewInTheMiddleOfADragLeavesNothingBehind) {
    for (const std::string button : {"Select", "Arc", "Noeud"}) {
        main.load("A(100, 100); B(300, 100);");
        main.click("toolButton" + button);
        main.mouse->pressAt(100, 100);
        main.mouse->moveTo(200, 200);
        main.mouse->moveTo(300, 100);
        main.click("toolNew");
        main.mouse->moveTo(210, 210);
        main.mouse->release();
        EXPECT_EQ(main.text(), "") << button;
    }
}

TEST_F(ModeButtons, OpeningAFileInTheMiddleOfADragLeavesNothingBehind) {
    for (const std::string button : {"Select", "Arc", "Noeud"}) {
        main.load("A(100, 100); B(300, 100);");
        main.click("toolButton" + button);
        main.mouse->pressAt(100, 100);
        main.mouse->moveTo(200, 200);
        main.load("C(300, 100);");
        main.mouse->moveTo(300, 100);
        main.mouse->release();
        EXPECT_EQ(main.text(), "C(300, 100);\n\n") << button;
    }
}

TEST_F(ModeButtons, NoKeyEditsTheModelInAnyMode) {
    for (const std::string button : {"Select", "Arc", "Noeud"}) {
        main.click("toolButton" + button);
        for (const guint keyval : {GDK_KEY_Delete, GDK_KEY_BackSpace, GDK_KEY_Escape, GDK_KEY_Return, GDK_KEY_space}) {
            typeKey(main.toplevel(), keyval);
        }
        EXPECT_EQ(main.text(), "A(100, 100);\nB(300, 100);\n\n\n") << button;
    }
}

TEST_F(ModeButtons, KeysGoOnToTheToolkit) {
    typeKey(main.toplevel(), GDK_KEY_n, GDK_CONTROL_MASK);
    EXPECT_EQ(main.text(), "");
}

}  // namespace
