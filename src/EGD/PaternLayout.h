// A frame around one central widget, with a band on each side for further widgets.
#pragma once

#include <gtkmm/box.h>

namespace EGD {

/// Only the central widget grows with the layout; empty bands take no room.
class PaternLayout : public Gtk::HBox {
public:
    /// @param w the central widget, not owned; it is given a size of at least 200 x 150 pixels
    explicit PaternLayout(Gtk::Widget& w);

    /// Widgets (not owned) line up in the order in which they are added.
    void addTop(Gtk::Widget& w);
    void addBottom(Gtk::Widget& w);
    void addLeft(Gtk::Widget& w);
    void addRight(Gtk::Widget& w);

private:
    Gtk::VBox center_;
    Gtk::HBox top_;
    Gtk::HBox bottom_;
    Gtk::VBox left_;
    Gtk::VBox right_;
};

}  // namespace EGD
