// What a user does with mouse and keyboard: events as the toolkit receives them, sent through its own dispatcher, so
// that grabs, propagation and every handler take part.
#pragma once

#include <gdk/gdk.h>
#include <gtkmm/main.h>
#include <gtkmm/widget.h>

#include <utility>

/// Lets the toolkit do what it has to do now.
inline void settle() {
    while (Gtk::Main::events_pending()) Gtk::Main::iteration(false);
}

/// An event of `type` on the widget's window, which must be realised.
inline GdkEvent* newEvent(Gtk::Widget& widget, GdkEventType type) {
    GdkEvent* const event = gdk_event_new(type);
    event->any.window = GDK_WINDOW(g_object_ref(widget.get_window()->gobj()));
    GdkSeat* const seat = gdk_display_get_default_seat(gdk_display_get_default());
    const bool isKey = type == GDK_KEY_PRESS || type == GDK_KEY_RELEASE;
    gdk_event_set_device(event, isKey ? gdk_seat_get_keyboard(seat) : gdk_seat_get_pointer(seat));
    return event;
}

inline void dispatch(GdkEvent* event) {
    gtk_main_do_event(event);
    gdk_event_free(event);
}

/// The pointer over one widget, in the widget's coordinates. Buttons are pressed and released where it stands.
class Mouse {
public:
    /// @param widget not owned, realised
    explicit Mouse(Gtk::Widget& widget) : _widget(widget) {}

    void moveTo(double x, double y) {
        _x = x;
        _y = y;
        GdkEvent* const event = newEvent(_widget, GDK_MOTION_NOTIFY);
        event->motion.x = x;
        event->motion.y = y;
        dispatch(event);
    }

    void press(guint button = 1) { send(GDK_BUTTON_PRESS, button); }
    void release(guint button = 1) { send(GDK_BUTTON_RELEASE, button); }

    void send(GdkEventType type, guint button) {
        GdkEvent* const event = newEvent(_widget, type);
        event->button.x = _x;
        event->button.y = _y;
        event->button.button = button;
        dispatch(event);
    }

    void pressAt(double x, double y, guint button = 1) {
        moveTo(x, y);
        press(button);
    }

    void clickAt(double x, double y, guint button = 1) {
        pressAt(x, y, button);
        release(button);
    }

    /// All five events that a double click sends.
    void doubleClickAt(double x, double y, guint button = 1) {
        clickAt(x, y, button);
        press(button);
        send(GDK_2BUTTON_PRESS, button);
        release(button);
    }

    void drag(std::pair<double, double> from, std::pair<double, double> to) {
        pressAt(from.first, from.second);
        moveTo((from.first + to.first) / 2, (from.second + to.second) / 2);
        moveTo(to.first, to.second);
        release();
    }

private:
    Gtk::Widget& _widget;
    double _x = 0;
    double _y = 0;
};

/// Presses and releases the key with the symbol `keyval` in a toplevel window.
inline void typeKey(Gtk::Widget& window, guint keyval, guint modifiers = 0) {
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gdk_display_get_default()), keyval, &keys, &count);
    for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
        GdkEvent* const event = newEvent(window, type);
        event->key.keyval = keyval;
        event->key.state = modifiers;
        if (count > 0) event->key.hardware_keycode = static_cast<guint16>(keys[0].keycode);
        dispatch(event);
    }
    g_free(keys);
}
