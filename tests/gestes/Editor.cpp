#include "Editor.h"

#include <cairomm/context.h>
#include <cairomm/surface.h>
#include <gtkmm/filechooser.h>
#include <gtkmm/main.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "common/Mouse.h"

namespace {

constexpr const char* names[] = {"given.klv", "one.klv", "two.klv", "absent/model.klv"};

std::vector<std::string> filesIn(const Folder& folder) {
    std::vector<std::string> files;
    for (const char* name : names) files.push_back(folder / name);
    return files;
}

/// The order of a node's arcs in a file is nobody's business: one declaration a line, sorted within the node's line.
std::string normalised(const std::string& text) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::multiset<std::string> declarations;
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, ';');) declarations.insert(part);
        for (const std::string& declaration : declarations) result += declaration + ";\n";
        result += "\n";
    }
    return result;
}

/// The widget that the window's description calls `name`, also inside menus.
Gtk::Widget* find(Gtk::Container& container, const std::string& name) {
    for (Gtk::Widget* widget : widgetsIn(container)) {
        const char* const called = gtk_buildable_get_name(GTK_BUILDABLE(widget->gobj()));
        if (called != nullptr && called == name) return widget;
        auto* const item = dynamic_cast<Gtk::MenuItem*>(widget);
        if (item == nullptr || !item->has_submenu()) continue;
        if (Gtk::Widget* const found = find(*item->get_submenu(), name)) return found;
    }
    return nullptr;
}

/// An analyser that answers at once, and always the same.
void writeAnalyser(const Folder& folder) {
    std::filesystem::create_directories(folder.path() / "tina" / "bin");
    const std::string path =
        folder.write("tina/bin/tina", "#!/bin/sh\ncat > /dev/null\necho bounded\necho '0 : ma*2 mb r_m*3'\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

DialogSeen expected(const Exchange& exchange) { return {exchange.title, exchange.text, exchange.entry}; }

void choose(Gtk::FileChooser& chooser, const std::filesystem::path& path) {
    if (chooser.get_action() == Gtk::FILE_CHOOSER_ACTION_OPEN) {
        chooser.set_filename(path.string());
    } else {
        chooser.set_current_folder(path.parent_path().string());
        chooser.set_current_name(path.filename().string());
    }
}

bool isMousePress(const Event& event) {
    return event.kind == Event::press || event.kind == Event::doublePress || event.kind == Event::triplePress;
}

}  // namespace

Editor::Editor(const Folder& folder)
    : _files(filesIn(folder)), _reference(_files), _window(KLV_SOURCE_DIR "/IHM.glade"), _inside(_window) {
    folder.write(names[0], givenFile);
    writeAnalyser(folder);
    std::filesystem::current_path(folder.path());
    _inside.window->show();
    while (!area().get_mapped() || Gtk::Main::events_pending()) Gtk::Main::iteration();
}

Gtk::ToolButton& Editor::button(const std::string& name) const {
    return dynamic_cast<Gtk::ToolButton&>(*find(*_inside.window, name));
}

Gtk::MenuItem& Editor::item(const std::string& name) const {
    return dynamic_cast<Gtk::MenuItem&>(*find(*_inside.window, name));
}

// ---------------------------------------------------------------------------------------------------------------------
// Sending
// ---------------------------------------------------------------------------------------------------------------------

void Editor::apply(const Event& event) {
    if (!_reference.allows(event)) return;
    if (event.kind == Event::motion) {
        send(event);
        _reference.apply(event, pickedAt(event));
    } else {
        const auto exchanges = _reference.apply(event, isMousePress(event) ? pickedAt(event) : Picked{});
        Dialogs dialogs(answersTo(exchanges));
        send(event);
        std::vector<DialogSeen> seen = dialogs.seen();
        for (std::size_t i = 0; i < std::min(seen.size(), exchanges.size()); ++i) {
            if (!exchanges[i].chosen.empty()) seen[i].text = seen[i].entry = "";  // a file chooser has more than one
            EXPECT_EQ(seen[i], expected(exchanges[i]));
        }
        EXPECT_EQ(seen.size(), exchanges.size());
    }
    expectAgreement();
    expectWritten();
}

void Editor::send(const Event& event) {
    switch (event.kind) {
        case Event::press:
            sendButton(event, GDK_BUTTON_PRESS);
            break;
        case Event::doublePress:
            sendButton(event, GDK_2BUTTON_PRESS);
            break;
        case Event::triplePress:
            sendButton(event, GDK_3BUTTON_PRESS);
            break;
        case Event::release:
            sendButton(event, GDK_BUTTON_RELEASE);
            break;
        case Event::motion:
            sendMotion(event);
            break;
        case Event::key:
            typeKey(*_inside.window, static_cast<guint>(event.argument));
            break;
        case Event::mode: {
            const char* const buttons[] = {"toolButtonSelect", "toolButtonArc", "toolButtonNoeud"};
            dynamic_cast<Gtk::RadioToolButton&>(button(buttons[event.argument])).set_active(true);
            break;
        }
        case Event::clear:
            startAnew(event.argument);
            break;
        case Event::load:
            _window.parser(_files[static_cast<std::size_t>(event.argument)]);
            break;
        case Event::open:
            item("menu_open").activate();
            break;
        case Event::save:
            save(event);
            break;
        case Event::saveAs:
            item("menu_savein").activate();
            break;
        case Event::write:
            _window.saveIn(_files[static_cast<std::size_t>(event.argument)]);
            break;
        case Event::analyse: {
            const char* const items[] = {"menu_bound", "menu_pref_bound", "menu_bound_size", "menu_prefix_bound_size",
                                         "menu_modele_checking"};
            item(items[event.argument]).activate();
            break;
        }
        case Event::paint:
            paint();
            break;
        case Event::resize:
            _inside.window->resize(static_cast<int>(event.x), static_cast<int>(event.y));
            break;
    }
}

void Editor::sendButton(const Event& event, GdkEventType type) {
    GdkEvent* const sent = newEvent(area(), type);
    sent->button.x = event.x;
    sent->button.y = event.y;
    sent->button.button = static_cast<guint>(event.argument);
    dispatch(sent);
}

void Editor::sendMotion(const Event& event) {
    GdkEvent* const sent = newEvent(area(), GDK_MOTION_NOTIFY);
    sent->motion.x = event.x;
    sent->motion.y = event.y;
    dispatch(sent);
}

void Editor::startAnew(int how) {
    if (how == 0) {
        g_signal_emit_by_name(button("toolNew").gobj(), "clicked");
    } else if (how == 1) {
        item("menu_new").activate();
    } else {
        typeKey(*_inside.window, GDK_KEY_n, GDK_CONTROL_MASK);
    }
}

void Editor::save(const Event& event) {
    if (event.reply % 2 == 0) {
        g_signal_emit_by_name(button("toolSave").gobj(), "clicked");
    } else {
        item("menu_save").activate();
    }
}

/// Paints the window as it is on the screen, and lets the toolkit do what waits.
void Editor::paint() {
    area().queue_draw();
    gdk_window_process_updates(_inside.window->get_window()->gobj(), TRUE);
    for (int i = 0; i < 100 && Gtk::Main::events_pending(); ++i) Gtk::Main::iteration(false);
}

// ---------------------------------------------------------------------------------------------------------------------
// Dialogs
// ---------------------------------------------------------------------------------------------------------------------

std::vector<Dialogs::Answer> Editor::answersTo(const std::vector<Exchange>& exchanges) {
    std::vector<Dialogs::Answer> answers;
    for (const Exchange& exchange : exchanges) {
        answers.emplace_back([this, &exchange, isChosen = std::make_shared<bool>(false)](Gtk::Dialog& dialog) {
            auto* const chooser = dynamic_cast<Gtk::FileChooser*>(&dialog);
            if (chooser != nullptr && exchange.response == Gtk::RESPONSE_OK) {
                if (!std::exchange(*isChosen, true)) choose(*chooser, exchange.chosen);
                if (chooser->get_filename() != exchange.chosen) return false;
            }
            answer(dialog, exchange);
            return true;
        });
    }
    return answers;
}

void Editor::answer(Gtk::Dialog& dialog, const Exchange& exchange) {
    // The window behind a dialog is painted now and then, and always shows the network as it is.
    area().queue_draw();
    gdk_window_process_updates(_inside.window->get_window()->gobj(), TRUE);
    if (exchange.isReset) startAnew(0);
    if (exchange.typed) firstIn<Gtk::Entry>(*dialog.get_content_area())->set_text(*exchange.typed);
    if (exchange.response == Gtk::RESPONSE_DELETE_EVENT) {
        closeWindow(dialog);
    } else {
        press(exchange.response)(dialog);
    }
}

/// By the drawing's account, which is held against the circles.
Picked Editor::pickedAt(const Event& event) const {
    const Picked picked = _inside.at(event.x, event.y);
    const State state = _inside.state();
    for (const auto& [name, node] : state.content.nodes) {
        const double distance = std::hypot(event.x - node.x, event.y - node.y);
        const bool isHidden = state.isSnapped && name == state.temporary;
        const bool isEmpty = name == state.temporary;  // its rim alone can be pressed
        const bool isPicked = picked.nodes.contains(name);
        const bool isOn = distance < 18 && !isHidden && !isEmpty;
        const bool isOff = isHidden || (distance > 22 && !node.marking);
        EXPECT_FALSE((isOn && !isPicked) || (isOff && isPicked)) << name;
    }
    _inside.at(-1000, -1000);  // leaves nothing to the event that it has not found out itself
    return picked;
}

// ---------------------------------------------------------------------------------------------------------------------
// Agreement
// ---------------------------------------------------------------------------------------------------------------------

void Editor::expectAgreement() {
    try {
        _inside.check();
    } catch (const std::runtime_error& fault) {
        ADD_FAILURE() << "it is not so that " << fault.what();
    }
    EXPECT_EQ(_inside.state(), _reference.state());
    expectSameText();
}

void Editor::expectSameText() {
    const std::string text = _inside.controleur->toString();
    if (text == _text) return;
    _text = text;
    EXPECT_EQ(normalised(text), normalised(_reference.text()));
    const auto saved = _reference.saved();
    if (!saved || testing::Test::HasFailure()) return;
    EXPECT_TRUE(_copy.controleur.parser(_memory.write(text)));
    EXPECT_EQ(contentOf(_copy), *saved) << text;
}

void Editor::expectWritten() const {
    const auto file = _reference.justWritten();
    if (!file) return;
    std::ifstream in(_files[static_cast<std::size_t>(*file)], std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(normalised(text), normalised(_reference.text()));
}
