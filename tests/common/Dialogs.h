// A user who answers dialogs. Code under test opens them and waits in a main loop of its own; the answers come from
// there.
#pragma once

#include <glibmm/main.h>
#include <gtest/gtest.h>
#include <gtkmm/button.h>
#include <gtkmm/container.h>
#include <gtkmm/dialog.h>
#include <gtkmm/entry.h>
#include <gtkmm/filechooserdialog.h>
#include <gtkmm/label.h>
#include <gtkmm/messagedialog.h>

#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Mouse.h"

/// Every widget inside `container`, however deep, but for what widgets keep to themselves.
inline std::vector<Gtk::Widget*> widgetsIn(Gtk::Container& container) {
    std::vector<Gtk::Widget*> widgets;
    for (Gtk::Widget* child : container.get_children()) {
        widgets.push_back(child);
        auto* const inner = dynamic_cast<Gtk::Container*>(child);
        if (inner == nullptr) continue;
        const auto deeper = widgetsIn(*inner);
        widgets.insert(widgets.end(), deeper.begin(), deeper.end());
    }
    return widgets;
}

/// The first widget of that class; null when there is none.
template <class Widget>
Widget* firstIn(Gtk::Container& container) {
    for (Gtk::Widget* widget : widgetsIn(container)) {
        if (auto* const found = dynamic_cast<Widget*>(widget)) return found;
    }
    return nullptr;
}

/// What the user reads; of a file chooser, the title.
struct DialogSeen {
    std::string title;
    std::string text;
    std::string entry = {};
    friend bool operator==(const DialogSeen&, const DialogSeen&) = default;
    friend std::ostream& operator<<(std::ostream& out, const DialogSeen& seen) {
        return out << "[" << seen.title << "] " << seen.text << " (" << seen.entry << ")";
    }
};

inline DialogSeen look(Gtk::Dialog& dialog) {
    DialogSeen seen{dialog.get_title(), "", ""};
    if (dynamic_cast<Gtk::FileChooserDialog*>(&dialog) != nullptr) return seen;
    if (auto* const message = dynamic_cast<Gtk::MessageDialog*>(&dialog)) {
        seen.text = message->property_text().get_value();
        return seen;
    }
    if (auto* const label = firstIn<Gtk::Label>(*dialog.get_content_area())) seen.text = label->get_text();
    if (auto* const entry = firstIn<Gtk::Entry>(*dialog.get_content_area())) seen.entry = entry->get_text();
    return seen;
}

/// Gives one answer to each dialog that opens while it lives, in turn. A dialog that was not foreseen, one that does
/// not close on its answer, and an answer that no dialog asked for fail the test.
class Dialogs {
public:
    /// Does something with the dialog that is open.
    /// @return false to be asked again later, when the dialog is not ready yet
    using Answer = std::function<bool(Gtk::Dialog&)>;

    Dialogs(std::initializer_list<Answer> answers) : Dialogs(std::vector<Answer>(answers)) {}

    explicit Dialogs(std::vector<Answer> answers) : _answers(std::move(answers)) {
        _timer = Glib::signal_timeout().connect(sigc::mem_fun(*this, &Dialogs::lookForDialog), 1);
    }
    Dialogs(const Dialogs&) = delete;
    Dialogs& operator=(const Dialogs&) = delete;
    ~Dialogs() {
        _timer.disconnect();
        forget();
        EXPECT_EQ(_seen.size(), _answers.size()) << "dialogs";
    }

    const std::vector<DialogSeen>& seen() const { return _seen; }

private:
    enum State { waitingForDialog, answering, waitingForResponse, waitingForEnd };

    static constexpr std::chrono::seconds patience{20};

    bool lookForDialog() {
        auto* const dialog = dynamic_cast<Gtk::Dialog*>(Glib::wrap(gtk_grab_get_current()));
        if (_state == waitingForEnd && dialog != _dialog) _state = waitingForDialog;
        if (dialog == nullptr || !dialog->get_mapped() || _state == waitingForEnd) return true;
        if (_state == waitingForDialog) begin(*dialog);
        if (_seen.size() > _answers.size()) {
            ADD_FAILURE() << "unforeseen dialog " << _seen.back();
            dialog->response(Gtk::RESPONSE_DELETE_EVENT);
        } else if (std::chrono::steady_clock::now() - _begin > patience) {
            ADD_FAILURE() << "no answer to " << _seen.back();
            dialog->response(Gtk::RESPONSE_DELETE_EVENT);
        } else if (_state == answering) {
            const Answer answer = _answers[_seen.size() - 1];
            _state = waitingForResponse;
            if (!answer(*dialog)) _state = answering;
        }
        return true;
    }

    void begin(Gtk::Dialog& dialog) {
        forget();
        _dialog = &dialog;
        _state = answering;
        _begin = std::chrono::steady_clock::now();
        _seen.push_back(look(dialog));
        _response = dialog.signal_response().connect([this](int) { _state = waitingForEnd; });
        _unmap = dialog.signal_unmap().connect([this] { _state = waitingForDialog; });
    }

    void forget() {
        _response.disconnect();
        _unmap.disconnect();
    }

    std::vector<Answer> _answers;
    std::vector<DialogSeen> _seen;
    sigc::connection _timer;
    sigc::connection _response;
    sigc::connection _unmap;
    Gtk::Dialog* _dialog = nullptr;  // the last one; may be gone
    State _state = waitingForDialog;
    std::chrono::steady_clock::time_point _begin;
};

// ---------------------------------------------------------------------------------------------------------------------
// Answers
// ---------------------------------------------------------------------------------------------------------------------

/// Presses the button that stands for `response`.
inline Dialogs::Answer press(int response) {
    return [response](Gtk::Dialog& dialog) {
        auto* const button = dynamic_cast<Gtk::Button*>(dialog.get_widget_for_response(response));
        if (button == nullptr) {
            ADD_FAILURE() << "no button for the response " << response;
            dialog.response(Gtk::RESPONSE_DELETE_EVENT);
        } else {
            button->clicked();
        }
        return true;
    };
}

inline Dialogs::Answer accept() { return press(Gtk::RESPONSE_OK); }
inline Dialogs::Answer cancel() { return press(Gtk::RESPONSE_CANCEL); }

/// Closes the dialog's window, as a window manager does.
inline bool closeWindow(Gtk::Dialog& dialog) {
    dispatch(newEvent(dialog, GDK_DELETE));
    return true;
}

inline Dialogs::Answer pressKey(guint keyval) {
    return [keyval](Gtk::Dialog& dialog) {
        typeKey(dialog, keyval);
        return true;
    };
}

/// Replaces the text of the entry, then answers with `then`.
inline Dialogs::Answer enter(const std::string& text, const Dialogs::Answer& then = accept()) {
    return [text, then](Gtk::Dialog& dialog) {
        auto* const entry = firstIn<Gtk::Entry>(*dialog.get_content_area());
        if (entry == nullptr) {
            ADD_FAILURE() << "no entry for " << text;
        } else {
            entry->set_text(text);
        }
        return then(dialog);
    };
}
