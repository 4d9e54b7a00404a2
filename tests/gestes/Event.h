// What can happen to the editor's window, as values: they can be generated, written down one a line, read back and left
// out one by one.
#pragma once

#include <istream>
#include <ostream>
#include <vector>

struct Event {
    enum Kind {
        press,
        doublePress,  // the extra event of a double click
        triplePress,
        release,
        motion,
        key,      // argument: the key's symbol
        mode,     // argument: the mode whose button is clicked
        clear,    // argument: how New is asked for
        load,     // argument: a file, as Open does without its chooser
        open,     // argument: a file
        save,     // argument: the file chosen when there is none yet
        saveAs,   // argument: a file
        write,    // argument: a file, as Save as does without its chooser
        analyse,  // argument: which
        paint,
        resize,  // to x times y pixels
    };
    static constexpr int kinds = resize + 1;

    Kind kind = paint;
    int argument = 0;  // of mouse events: the button
    double x = 0;      // pixels of the drawing area
    double y = 0;
    int reply = 0;         // what the user does in each dialog that opens, see Reference
    bool isReset = false;  // the model is emptied while the first of these dialogs is open

    friend bool operator==(const Event&, const Event&) = default;
};

/// "press 1 at 120.5 80 reply 3", with " reset" behind when it is.
std::ostream& operator<<(std::ostream& out, const Event& event);

/// Every event of a text with one a line.
/// @throws std::runtime_error at a line that is none
std::vector<Event> readEvents(std::istream& in);
