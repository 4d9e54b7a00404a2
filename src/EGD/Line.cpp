#include "EGD/Line.h"

namespace EGD {

Line::Line(int x1, int y1, int x2, int y2) : Drawing(0.0, 0.0), x1_(x1), y1_(y1), x2_(x2), y2_(y2) {}

bool Line::isClicked(double, double) const { return false; }

bool Line::vDraw(EasyDrawingArea*, const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->move_to(x1_, y1_);
    cr->line_to(x2_, y2_);
    return true;
}

}  // namespace EGD
