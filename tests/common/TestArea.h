// A drawing area that a test can paint, click and watch without a user.
#pragma once

#include <gtkmm/main.h>
#include <gtkmm/window.h>

#include "EGD/EasyDrawingArea.h"

/// Lets tests call the event handlers that the toolkit calls.
class TestArea : public EGD::EasyDrawingArea {
public:
    using EGD::EasyDrawingArea::EasyDrawingArea;
    using EGD::EasyDrawingArea::on_button_press_event;
    using EGD::EasyDrawingArea::on_button_release_event;
    using EGD::EasyDrawingArea::on_draw;
    using EGD::EasyDrawingArea::on_motion_notify_event;
};

inline GdkEventButton buttonEvent(double x, double y, GdkEventType type = GDK_BUTTON_PRESS, guint button = 1) {
    GdkEventButton event = {};
    event.type = type;
    event.x = x;
    event.y = y;
    event.button = button;
    return event;
}

inline GdkEventMotion motionEvent(double x, double y) {
    GdkEventMotion event = {};
    event.type = GDK_MOTION_NOTIFY;
    event.x = x;
    event.y = y;
    return event;
}

/// Sends a button event through the widget's signal, so that every handler connected to it gets its turn.
/// @return whether a handler took the event
inline bool sendButton(Gtk::Widget& widget, double x, double y, GdkEventType type = GDK_BUTTON_PRESS,
                       guint button = 1) {
    GdkEvent event = {};
    event.button = buttonEvent(x, y, type, button);
    gboolean taken = FALSE;
    const char* signal = type == GDK_BUTTON_RELEASE ? "button-release-event" : "button-press-event";
    g_signal_emit_by_name(widget.gobj(), signal, &event, &taken);
    return taken != FALSE;
}

inline bool sendMotion(Gtk::Widget& widget, double x, double y) {
    GdkEvent event = {};
    event.motion = motionEvent(x, y);
    gboolean taken = FALSE;
    g_signal_emit_by_name(widget.gobj(), "motion-notify-event", &event, &taken);
    return taken != FALSE;
}

/// Shows a widget (not owned) in a window of its own and tells which redraws are requested of it.
class OnScreen {
public:
    explicit OnScreen(Gtk::Widget& widget) : _window(Gtk::WINDOW_POPUP), _widget(widget) {
        _window.add(_widget);
        _window.set_default_size(200, 150);
        _window.show_all();
        while (Gtk::Main::events_pending()) Gtk::Main::iteration();
        takeRequestedRedraw();
    }

    ~OnScreen() { _window.remove(); }

    /// What part of the widget has been asked to be painted again since the last call.
    Cairo::RectangleInt takeRequestedRedraw() {
        Cairo::RectangleInt extents = {0, 0, 0, 0};
        cairo_region_t* region = gdk_window_get_update_area(_widget.get_window()->gobj());
        if (region == nullptr) return extents;
        cairo_region_get_extents(region, &extents);
        cairo_region_destroy(region);
        return extents;
    }

    /// True when the whole widget has been asked to be painted again since the last call.
    bool isRedrawRequested() {
        const Cairo::RectangleInt extents = takeRequestedRedraw();
        return extents.x == 0 && extents.y == 0 && extents.width == _widget.get_allocated_width() &&
               extents.height == _widget.get_allocated_height();
    }

private:
    Gtk::Window _window;
    Gtk::Widget& _widget;
};
