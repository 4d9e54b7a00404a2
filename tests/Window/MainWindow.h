// The main window as a user has it: its widgets by the names in its description, its drawing area under the mouse, its
// model as the text that it saves.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkmm/filechooserdialog.h>
#include <gtkmm/menuitem.h>
#include <gtkmm/radiotoolbutton.h>
#include <gtkmm/toolbutton.h>
#include <gtkmm/window.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Window.h"
#include "common/Dialogs.h"
#include "common/Folder.h"
#include "common/Mouse.h"
#include "common/Toolkit.h"
#include "common/Traces.h"

inline constexpr auto realDescription = KLV_SOURCE_DIR "/IHM.glade";

/// `text` with the first `from` in it, which must be there, replaced.
inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    if (at == std::string::npos) throw std::runtime_error("nothing to replace: " + from);
    return text.replace(at, from.size(), to);
}

/// A `Window` on the screen.
class MainWindow {
public:
    explicit MainWindow(const std::string& description = realDescription)
        : _before(Gtk::Window::list_toplevels()), window(description) {
        for (Gtk::Window* found : Gtk::Window::list_toplevels()) {
            const bool isNew = std::find(_before.begin(), _before.end(), found) == _before.end();
            if (isNew && nameOf(*found) == "window1") _toplevel = found;
        }
        _toplevel->show();
        Gtk::Widget& area = widget<Gtk::Widget>("drawingarea1");
        while (!area.get_mapped() || Gtk::Main::events_pending()) Gtk::Main::iteration();
        mouse.emplace(area);
    }

    Gtk::Window& toplevel() { return *_toplevel; }

    /// The widget of that name, which must be there.
    template <class Widget>
    Widget& widget(const std::string& name) {
        auto* const found = dynamic_cast<Widget*>(find(*_toplevel, name));
        if (found == nullptr) throw std::runtime_error("no widget " + name);
        return *found;
    }

    /// Chooses an item of a menu.
    void choose(const std::string& item) { widget<Gtk::MenuItem>(item).activate(); }

    /// Clicks on a tool as a user does.
    void click(const std::string& tool) { firstIn<Gtk::Button>(widget<Gtk::ToolItem>(tool))->clicked(); }

    void load(const std::string& text) {
        const Folder folder;
        ASSERT_TRUE(window.parser(folder.write("model.klv", text)));
    }

    /// The model as it is saved.
    std::string text() {
        const Folder folder;
        EXPECT_TRUE(window.saveIn(folder / "copy.klv"));
        return folder.read("copy.klv");
    }

private:
    static std::string nameOf(Gtk::Widget& widget) {
        const char* const name = gtk_buildable_get_name(GTK_BUILDABLE(widget.gobj()));
        return name != nullptr ? name : "";
    }

    static Gtk::Widget* find(Gtk::Widget& widget, const std::string& name) {
        if (nameOf(widget) == name) return &widget;
        if (auto* const item = dynamic_cast<Gtk::MenuItem*>(&widget); item != nullptr && item->has_submenu()) {
            if (Gtk::Widget* const found = find(*item->get_submenu(), name)) return found;
        }
        auto* const container = dynamic_cast<Gtk::Container*>(&widget);
        if (container == nullptr) return nullptr;
        for (Gtk::Widget* child : container->get_children()) {
            if (Gtk::Widget* const found = find(*child, name)) return found;
        }
        return nullptr;
    }

    std::vector<Gtk::Window*> _before;
    Gtk::Window* _toplevel = nullptr;

public:
    Window window;
    std::optional<Mouse> mouse;  // over the drawing area
};

/// A test of a main window whose traces are kept.
class WithMainWindow : public testing::Test {
protected:
    Traces traces;
    MainWindow main;
    Window& window = main.window;
};

// ---------------------------------------------------------------------------------------------------------------------
// Answers to file choosers
// ---------------------------------------------------------------------------------------------------------------------

/// Prepares the chooser with `prepare`, waits until it has settled on `path`, and answers with `then`.
inline Dialogs::Answer chooseFile(const std::function<void(Gtk::FileChooserDialog&)>& prepare, const std::string& path,
                                  const Dialogs::Answer& then = accept()) {
    return [prepare, path, then, isPrepared = std::make_shared<bool>(false)](Gtk::Dialog& dialog) {
        auto* const chooser = dynamic_cast<Gtk::FileChooserDialog*>(&dialog);
        if (chooser == nullptr) {
            ADD_FAILURE() << "no file chooser for " << path;
            dialog.response(Gtk::RESPONSE_DELETE_EVENT);
            return true;
        }
        if (!*isPrepared) {
            prepare(*chooser);
            *isPrepared = true;
        }
        return chooser->get_filename() == path && then(dialog);
    };
}

/// Opens the file `path`, which exists.
inline Dialogs::Answer open(const std::string& path, const Dialogs::Answer& then = accept()) {
    return chooseFile([path](Gtk::FileChooserDialog& chooser) { chooser.set_filename(path); }, path, then);
}

enum Filter { klvFiles, anyFiles };

/// Enters `name` in the folder `folder`; again when the chooser, having read the folder, completes it to a file's name.
inline Dialogs::Answer save(const std::string& folder, const std::string& name, Filter filter = klvFiles) {
    const auto choose = chooseFile(
        [=](Gtk::FileChooserDialog& chooser) {
            chooser.set_filter(chooser.list_filters().at(filter));
            chooser.set_current_folder(folder);
        },
        folder + "/" + name);
    return [=](Gtk::Dialog& dialog) {
        auto* const chooser = dynamic_cast<Gtk::FileChooserDialog*>(&dialog);
        if (chooser != nullptr && chooser->get_current_name() != name) chooser->set_current_name(name);
        return choose(dialog);
    };
}

inline const DialogSeen chooserSeen{"Please choose a file", ""};
inline const DialogSeen replaceSeen{"Replace file ?", "Replace file ?"};
inline const DialogSeen writeErrorSeen{"Write data error.", "Write data error."};
inline const DialogSeen saveErrorSeen{"Save error.", "Save error."};

/// Does `action`, then answers with `then`.
inline Dialogs::Answer after(const std::function<void()>& action, const Dialogs::Answer& then) {
    return [=](Gtk::Dialog& dialog) {
        action();
        return then(dialog);
    };
}

inline Dialogs::Answer yes() { return press(Gtk::RESPONSE_YES); }
inline Dialogs::Answer no() { return press(Gtk::RESPONSE_NO); }
inline Dialogs::Answer close() { return press(Gtk::RESPONSE_CLOSE); }
