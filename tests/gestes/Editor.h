// The editor's real window, to which events are sent, beside the reference, to which they are told. After each of them
// both must agree, the parts of the program must agree with each other, and what would be saved must read back the
// same.
#pragma once

#include <gtkmm/menuitem.h>
#include <gtkmm/radiotoolbutton.h>

#include <string>
#include <vector>

#include "Event.h"
#include "Inside.h"
#include "Reference.h"
#include "Window.h"
#include "common/Dialogs.h"
#include "common/Folder.h"
#include "common/MemoryFile.h"
#include "common/Network.h"

/// The toolkit must have been started. Works in the folder it is given, as its working directory; its failures are
/// those of the running test.
class Editor {
public:
    explicit Editor(const Folder& folder);

    void apply(const Event& event);

    const Reference& reference() const { return _reference; }

private:
    void send(const Event& event);
    void sendButton(const Event& event, GdkEventType type);
    void sendMotion(const Event& event);
    void startAnew(int how);
    void save(const Event& event);
    void paint();

    std::vector<Dialogs::Answer> answersTo(const std::vector<Exchange>& exchanges);
    void answer(Gtk::Dialog& dialog, const Exchange& exchange);
    Picked pickedAt(const Event& event) const;

    void expectAgreement();
    void expectSameText();
    void expectWritten() const;

    Gtk::Widget& area() const { return *_inside.drawing->getArea(); }
    Gtk::ToolButton& button(const std::string& name) const;
    Gtk::MenuItem& item(const std::string& name) const;

    std::vector<std::string> _files;
    Reference _reference;
    Window _window;
    Inside _inside;
    std::string _text;  // what would have been saved before the event
    Network _copy;
    MemoryFile _memory;
};
