#include "EGD/PaternLayout.h"

namespace EGD {

PaternLayout::PaternLayout(Gtk::Widget& w)
    : Gtk::HBox(false, 0), center_(false, 0), top_(false, 0), bottom_(false, 0), left_(false, 0), right_(false, 0) {
    pack_start(left_, false, true, 0);
    pack_start(center_, true, true, 0);
    pack_start(right_, false, true, 0);

    center_.pack_start(top_, false, true, 0);
    center_.pack_start(w, true, true, 0);
    center_.pack_start(bottom_, false, true, 0);

    w.set_size_request(200, 150);
    show_all_children(true);
}

void PaternLayout::addTop(Gtk::Widget& w) { top_.add(w); }

void PaternLayout::addBottom(Gtk::Widget& w) { bottom_.add(w); }

void PaternLayout::addLeft(Gtk::Widget& w) { left_.add(w); }

void PaternLayout::addRight(Gtk::Widget& w) { right_.add(w); }

}  // namespace EGD
