// New, Open, Save and Save as, through the file chooser.
#include <gtkmm/stock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "MainWindow.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto smallFile = "A(10, 20);\nB(30, 40);\nA -> B : 2x -> y ;A : x ;\n\n";

/// While it is full, no file can grow beyond a few bytes.
class FullDisk {
public:
    FullDisk() : _signal(std::signal(SIGXFSZ, SIG_IGN)) { getrlimit(RLIMIT_FSIZE, &_before); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        empty();
        std::signal(SIGXFSZ, _signal);
    }

    void fill() const {
        const rlimit few = {5, _before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &few);
    }

    void empty() const { setrlimit(RLIMIT_FSIZE, &_before); }

private:
    void (*_signal)(int);
    rlimit _before = {};
};

/// Starts with the model of `smallFile`, which has no file yet.
class Files : public WithMainWindow {
protected:
    Files() {
        main.load(smallFile);
        EXPECT_EQ(folder.path().string().find('.'), std::string::npos);  // the rule of extensions looks at whole paths
    }

    /// Saves the model as the file `name` of the folder; from then on it is the current file.
    std::string saveAs(const std::string& name) {
        const Dialogs dialogs({save(folder.path(), name, anyFiles)});
        window.button_savein_clicked();
        return folder / name;
    }

    /// Asserts that `path` is the current file, by the question that Save asks; it is not saved.
    void expectCurrent(const std::string& path) {
        const std::string before = folder.read(fs::path(path).filename());
        fs::remove(path);
        const Dialogs dialogs({});
        window.button_save_clicked();  // without a question, since the file is not there
        ASSERT_TRUE(fs::exists(path));
        std::ofstream(path, std::ios::binary) << before;
    }

    /// Asserts that there is no current file: Save asks for one.
    void expectNoCurrent() {
        const Dialogs dialogs({cancel()});
        window.button_save_clicked();
        EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen));
    }

    Folder folder;
};

// ---------------------------------------------------------------------------------------------------------------------
// New
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(Files, NewEmptiesTheModelWithoutAsking) {
    const Dialogs dialogs({});
    window.button_new_clicked();
    EXPECT_EQ(main.text(), "");
}

TEST_F(Files, NewForgetsTheCurrentFileSoThatSaveBehavesAsSaveAs) {
    saveAs("model.klv");
    window.button_new_clicked();
    expectNoCurrent();
    EXPECT_EQ(folder.read("model.klv"), smallFile);
}

TEST_F(Files, ClearIsTheSameAsNew) {
    saveAs("model.klv");
    window.clear();
    EXPECT_EQ(main.text(), "");
    expectNoCurrent();
}

// ---------------------------------------------------------------------------------------------------------------------
// Open
// ---------------------------------------------------------------------------------------------------------------------

/// What a file chooser offers.
struct Offer {
    Gtk::FileChooserAction action;
    std::vector<std::string> filters;
    std::string chosenFilter;
    std::vector<std::string> buttons;
    bool isTransient;
};

Dialogs::Answer reading(Offer& offer, Gtk::Window& parent) {
    return [&](Gtk::Dialog& dialog) {
        auto& chooser = dynamic_cast<Gtk::FileChooserDialog&>(dialog);
        offer.action = chooser.get_action();
        for (const auto& filter : chooser.list_filters()) offer.filters.push_back(filter->get_name());
        if (chooser.get_filter()) offer.chosenFilter = chooser.get_filter()->get_name();
        for (const int response : {Gtk::RESPONSE_CANCEL, Gtk::RESPONSE_OK}) {
            offer.buttons.push_back(dynamic_cast<Gtk::Button&>(*dialog.get_widget_for_response(response)).get_label());
        }
        offer.isTransient = dialog.get_transient_for() == &parent;
        return cancel()(dialog);
    };
}

TEST_F(Files, OpenOffersKlvFilesAndAnyFiles) {
    Offer offer;
    const Dialogs dialogs({reading(offer, main.toplevel())});
    window.button_open_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen));
    EXPECT_EQ(offer.action, Gtk::FILE_CHOOSER_ACTION_OPEN);
    EXPECT_THAT(offer.filters, ElementsAre("KLV files", "Any files"));
    EXPECT_EQ(offer.chosenFilter, "KLV files");
    EXPECT_THAT(offer.buttons, ElementsAre("gtk-cancel", "gtk-open"));
    EXPECT_TRUE(offer.isTransient);
}

TEST_F(Files, TheFiltersOfOpenLetKlvFilesAndAllFilesThrough) {
    std::vector<bool> letThrough;
    const Dialogs dialogs({[&](Gtk::Dialog& dialog) {
        for (const auto& filter : dynamic_cast<Gtk::FileChooserDialog&>(dialog).list_filters()) {
            for (const char* name : {"model.klv", "model.txt", "model"}) {
                const auto known =
                    static_cast<GtkFileFilterFlags>(GTK_FILE_FILTER_FILENAME | GTK_FILE_FILTER_DISPLAY_NAME);
                const GtkFileFilterInfo file = {known, name, nullptr, name, nullptr};
                letThrough.push_back(gtk_file_filter_filter(filter->gobj(), &file) != FALSE);
            }
        }
        return cancel()(dialog);
    }});
    window.button_open_clicked();
    EXPECT_THAT(letThrough, ElementsAre(true, false, false, true, true, true));
}

TEST_F(Files, OpenReplacesTheModelByTheChosenFile) {
    const std::string path = folder.write("other.klv", "C(5, 6);\n\n");
    const Dialogs dialogs({open(path)});
    window.button_open_clicked();
    EXPECT_EQ(main.text(), "C(5, 6);\n\n");
    expectCurrent(path);
}

TEST_F(Files, OpenCancelledOrClosedChangesNothing) {
    const std::string path = saveAs("model.klv");
    const Dialogs dialogs({cancel(), closeWindow, pressKey(GDK_KEY_Escape)});
    for (int i = 0; i < 3; ++i) window.button_open_clicked();
    EXPECT_EQ(main.text(), smallFile);
    expectCurrent(path);
}

TEST_F(Files, OpenOfAFileThatHasGoneIsToldAndChangesNothing) {
    const std::string path = saveAs("model.klv");
    const std::string gone = folder.write("gone.klv", "C(5, 6);");
    const Dialogs dialogs({open(gone, after([&] { fs::remove(gone); }, accept())), close()});
    window.button_open_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, DialogSeen{"Load file error", "Load file error"}));
    EXPECT_EQ(main.text(), smallFile);
    expectCurrent(path);
}

TEST_F(Files, ParserLoadsAFileAndDoesNotMakeItTheCurrentOne) {
    EXPECT_TRUE(window.parser(folder.write("other.klv", "C(5, 6);")));
    EXPECT_EQ(main.text(), "C(5, 6);\n\n");
    expectNoCurrent();
}

TEST_F(Files, ParserTellsAFileThatCannotBeOpenedAndChangesNothing) {
    for (const std::string& path : {folder / "missing.klv", folder.path().string(), folder.write("a", "") + "/b"}) {
        SCOPED_TRACE(path);
        const Dialogs dialogs({close()});
        EXPECT_FALSE(window.parser(path));
        EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"Load file error", "Load file error"}));
        EXPECT_EQ(main.text(), smallFile);
    }
    EXPECT_EQ(traces.count("ERROR !!"), 3);
}

TEST_F(Files, OpeningAMalformedFileEndsTheProgramWithItsLine) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the display may be used by one process alone
    const std::string path = folder.write("bad.klv", "A(1, 2);\nB(\n");
    EXPECT_EXIT(window.parser(path), testing::ExitedWithCode(255), testing::Eq("line 3: syntax error\n"));
}

// ---------------------------------------------------------------------------------------------------------------------
// Save as
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(Files, SaveAsOffersKlvFilesAndAnyFiles) {
    Offer offer;
    const Dialogs dialogs({reading(offer, main.toplevel())});
    window.button_savein_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen));
    EXPECT_EQ(offer.action, Gtk::FILE_CHOOSER_ACTION_SAVE);
    EXPECT_THAT(offer.filters, ElementsAre("KLV files", "Any files"));
    EXPECT_EQ(offer.chosenFilter, "KLV files");
    EXPECT_THAT(offer.buttons, ElementsAre("gtk-cancel", "gtk-save-as"));
    EXPECT_TRUE(offer.isTransient);
}

TEST_F(Files, SaveAsWritesTheModelsTextAsItStands) {
    saveAs("model.klv");
    EXPECT_EQ(folder.read("model.klv"), smallFile);
}

TEST_F(Files, SaveAsOfAnEmptyModelWritesAnEmptyFile) {
    window.button_new_clicked();
    saveAs("empty.klv");
    EXPECT_EQ(folder.read("empty.klv"), "");
}

TEST_F(Files, SaveAsMakesTheFileTheCurrentOne) { expectCurrent(saveAs("model.klv")); }

TEST_F(Files, SaveAsANameWithoutADotGetsTheExtensionOfKlvFiles) {
    const Dialogs dialogs({save(folder.path(), "model")});
    window.button_savein_clicked();
    EXPECT_EQ(folder.read("model.klv"), smallFile);
    EXPECT_FALSE(folder.has("model"));
    expectCurrent(folder / "model.klv");
}

TEST_F(Files, SaveAsANameWithADotGetsNoExtension) {
    const Dialogs dialogs({save(folder.path(), "my.model")});
    window.button_savein_clicked();
    EXPECT_EQ(folder.read("my.model"), smallFile);
    EXPECT_FALSE(folder.has("my.model.klv"));
}

TEST_F(Files, SaveAsInAFolderWithADotGetsNoExtension) {
    fs::create_directory(folder / "a.b");
    const Dialogs dialogs({save(folder / "a.b", "model")});
    window.button_savein_clicked();
    EXPECT_EQ(folder.read("a.b/model"), smallFile);
    EXPECT_FALSE(folder.has("a.b/model.klv"));
}

TEST_F(Files, SaveAsWithAnyFilesTakesTheNameAsItIsTyped) {
    const Dialogs dialogs({save(folder.path(), "model", anyFiles)});
    window.button_savein_clicked();
    EXPECT_EQ(folder.read("model"), smallFile);
    EXPECT_FALSE(folder.has("model.klv"));
}

TEST_F(Files, SaveAsTheExtensionIsAddedBeforeTheFileIsLookedFor) {
    folder.write("model.klv", "old");
    const Dialogs dialogs({save(folder.path(), "model"), yes()});
    window.button_savein_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, replaceSeen));
    EXPECT_EQ(folder.read("model.klv"), smallFile);
}

TEST_F(Files, SaveAsCancelledOrClosedSavesNothing) {
    {
        const Dialogs dialogs({cancel(), closeWindow, pressKey(GDK_KEY_Escape)});
        for (int i = 0; i < 3; ++i) window.button_savein_clicked();
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
    expectNoCurrent();
}

TEST_F(Files, SaveAsCancelledKeepsTheCurrentFile) {
    const std::string path = saveAs("model.klv");
    {
        const Dialogs dialogs({cancel()});
        window.button_savein_clicked();
    }
    expectCurrent(path);
}

TEST_F(Files, SaveAsOverAFileAsksAndYesReplacesIt) {
    folder.write("model.klv", "old text that is much longer than the new one is, so that a rest of it would be seen\n");
    const Dialogs dialogs({save(folder.path(), "model.klv"), yes()});
    window.button_savein_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, replaceSeen));
    EXPECT_EQ(folder.read("model.klv"), smallFile);
}

TEST_F(Files, SaveAsOverAFileAnsweredWithNoShowsTheChooserAgain) {
    folder.write("model.klv", "old");
    const Dialogs dialogs({save(folder.path(), "model.klv"), no(), save(folder.path(), "other.klv")});
    window.button_savein_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, replaceSeen, chooserSeen));
    EXPECT_EQ(folder.read("model.klv"), "old");
    EXPECT_EQ(folder.read("other.klv"), smallFile);
    expectCurrent(folder / "other.klv");
}

TEST_F(Files, SaveAsAnsweredWithNoAndThenCancelledSavesNothing) {
    folder.write("model.klv", "old");
    const Dialogs dialogs({save(folder.path(), "model.klv"), no(), cancel()});
    window.button_savein_clicked();
    EXPECT_EQ(folder.read("model.klv"), "old");
}

TEST_F(Files, SaveAsThatCannotBeWrittenIsToldAndShowsTheChooserAgain) {
    FullDisk disk;
    {
        const Dialogs dialogs({save(folder.path(), "model.klv"), after([&] { disk.empty(); }, close()), cancel()});
        disk.fill();
        window.button_savein_clicked();
        EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, writeErrorSeen, chooserSeen));
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
    expectNoCurrent();
}

TEST_F(Files, SaveAsOverAFileThatCannotBeWrittenLeavesItWholeAndMayGoElsewhere) {
    folder.write("model.klv", "old");
    FullDisk disk;
    const Dialogs dialogs({save(folder.path(), "model.klv"), after([&] { disk.fill(); }, yes()),
                           after([&] { disk.empty(); }, close()), save(folder.path(), "other.klv")});
    window.button_savein_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(chooserSeen, replaceSeen, writeErrorSeen, chooserSeen));
    EXPECT_EQ(folder.read("model.klv"), "old");
    EXPECT_EQ(folder.read("other.klv"), smallFile);
}

// ---------------------------------------------------------------------------------------------------------------------
// Save
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(Files, SaveWithoutACurrentFileBehavesAsSaveAs) {
    const Dialogs dialogs({save(folder.path(), "model")});
    window.button_save_clicked();
    EXPECT_EQ(folder.read("model.klv"), smallFile);
    expectCurrent(folder / "model.klv");
}

TEST_F(Files, SaveAsksEveryTimeAndYesWritesTheFile) {
    saveAs("model.klv");
    const Dialogs dialogs({yes(), yes()});
    main.load("C(5, 6);");
    window.button_save_clicked();
    EXPECT_EQ(folder.read("model.klv"), "C(5, 6);\n\n");
    window.button_save_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(replaceSeen, replaceSeen));
}

TEST_F(Files, SaveAnsweredWithNoOrClosedIsToldAndLeavesTheFile) {
    const std::string path = saveAs("model.klv");
    main.load("C(5, 6);");
    {
        const Dialogs dialogs({no(), close(), closeWindow, close()});
        window.button_save_clicked();
        window.button_save_clicked();
        EXPECT_THAT(dialogs.seen(), ElementsAre(replaceSeen, saveErrorSeen, replaceSeen, saveErrorSeen));
    }
    EXPECT_EQ(folder.read("model.klv"), smallFile);
    expectCurrent(path);
}

TEST_F(Files, SaveOfAFileThatHasGoneWritesItWithoutAQuestion) {
    const std::string path = saveAs("model.klv");
    fs::remove(path);
    const Dialogs dialogs({});
    window.button_save_clicked();
    EXPECT_EQ(folder.read("model.klv"), smallFile);
}

TEST_F(Files, SaveIntoAFolderThatHasGoneIsToldTwice) {
    fs::create_directory(folder / "sub");
    {
        const Dialogs dialogs({save(folder / "sub", "model.klv")});
        window.button_savein_clicked();
    }
    fs::remove_all(folder / "sub");
    const Dialogs dialogs({close(), close()});
    window.button_save_clicked();
    EXPECT_THAT(dialogs.seen(), ElementsAre(writeErrorSeen, saveErrorSeen));
}

TEST_F(Files, SaveThatCannotBeCompletedIsToldTwiceAndLeavesTheOldFileWhole) {
    const std::string path = saveAs("model.klv");
    main.load(std::string(smallFile) + "C(5, 6);");
    {
        FullDisk disk;
        const Dialogs dialogs({after([&] { disk.fill(); }, yes()), after([&] { disk.empty(); }, close()), close()});
        window.button_save_clicked();
        EXPECT_THAT(dialogs.seen(), ElementsAre(replaceSeen, writeErrorSeen, saveErrorSeen));
    }
    EXPECT_EQ(folder.read("model.klv"), smallFile);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
    expectCurrent(path);
}

// ---------------------------------------------------------------------------------------------------------------------
// Writing
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(Files, SaveInWritesANewFileWithoutAQuestion) {
    const Dialogs dialogs({});
    EXPECT_TRUE(window.saveIn(folder / "model.klv"));
    EXPECT_EQ(folder.read("model.klv"), smallFile);
}

TEST_F(Files, SaveInAsksBeforeItReplacesAFile) {
    folder.write("model.klv", "old");
    const Dialogs dialogs({no(), yes()});
    EXPECT_FALSE(window.saveIn(folder / "model.klv"));
    EXPECT_EQ(folder.read("model.klv"), "old");
    EXPECT_TRUE(window.saveIn(folder / "model.klv"));
    EXPECT_EQ(folder.read("model.klv"), smallFile);
    EXPECT_THAT(dialogs.seen(), ElementsAre(replaceSeen, replaceSeen));
    EXPECT_EQ(traces.count("ERROR !!"), 0);
}

TEST_F(Files, SaveInAFolderOrUnderAFileOrNowhereIsTold) {
    fs::create_directory(folder / "sub");
    {
        const Dialogs dialogs({yes(), close()});
        EXPECT_FALSE(window.saveIn(folder / "sub"));
        EXPECT_THAT(dialogs.seen(), ElementsAre(replaceSeen, writeErrorSeen));
    }
    for (const std::string& path : {folder / "missing/model.klv", folder.write("file", "") + "/model.klv"}) {
        const Dialogs dialogs({close()});
        EXPECT_FALSE(window.saveIn(path));
        EXPECT_THAT(dialogs.seen(), ElementsAre(writeErrorSeen));
    }
}

TEST_F(Files, SaveInKeepsThePermissionsOfTheFile) {
    const std::string path = folder.write("model.klv", "old");
    for (const auto mode : {0600, 0640, 0755}) {
        fs::permissions(path, static_cast<fs::perms>(mode));
        const Dialogs dialogs({yes()});
        EXPECT_TRUE(window.saveIn(path));
        EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(mode));
    }
}

TEST_F(Files, SaveInFollowsASymbolicLink) {
    folder.write("real.klv", "old");
    fs::create_symlink("real.klv", folder / "link.klv");
    const Dialogs dialogs({yes()});
    EXPECT_TRUE(window.saveIn(folder / "link.klv"));
    EXPECT_TRUE(fs::is_symlink(folder / "link.klv"));
    EXPECT_EQ(folder.read("real.klv"), smallFile);
}

TEST_F(Files, WhatIsSavedIsOpenedAgainAsItWas) {
    const std::string path = saveAs("model.klv");
    window.button_new_clicked();
    const Dialogs dialogs({open(path)});
    window.button_open_clicked();
    EXPECT_EQ(main.text(), smallFile);
}

TEST_F(Files, AFileNameMayHoldAnyCharacterOfTheFileSystem) {
    const std::string path = saveAs("a b \xC3\xA9 '\"$.klv");
    EXPECT_EQ(folder.read("a b \xC3\xA9 '\"$.klv"), smallFile);
    expectCurrent(path);
}

TEST_F(Files, APathThatIsNoUtf8IsSavedAndLoaded) {
    const std::string path = folder / "\xFF\xFE.klv";
    EXPECT_TRUE(window.saveIn(path));
    window.clear();
    EXPECT_TRUE(window.parser(path));
    EXPECT_EQ(main.text(), smallFile);
}

}  // namespace
