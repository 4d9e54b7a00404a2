#include "EGD/Rectangle.h"

namespace EGD {

Rectangle::Rectangle(double x, double y, double width, double height, bool filled)
    : Drawing(x, y), width_(width), height_(height), filled_(filled) {}

void Rectangle::setWidth(double width) {
    width_ = width;
    _signal_updated.emit();
}

void Rectangle::setHeight(double height) {
    height_ = height;
    _signal_updated.emit();
}

Rectangle* Rectangle::setFilled(bool filled) {
    filled_ = filled;
    return this;
}

bool Rectangle::vDraw(EasyDrawingArea*, const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->move_to(0, 0);
    cr->line_to(0, height_);
    cr->line_to(width_, height_);
    cr->line_to(width_, 0);
    cr->line_to(0, 0);
    return true;
}

}  // namespace EGD
