#include "EGD/Arc.h"

#include <numbers>

namespace EGD {

namespace {

double toRadians(double degrees) { return degrees * std::numbers::pi / 180.0; }

}  // namespace

Arc::Arc(double x, double y, double r, double angle1, double angle2)
    : Arrowable(x, y), r_(r), angle1_(toRadians(angle1)), angle2_(toRadians(angle2)) {}

Arc* Arc::setR(double r) {
    r_ = r;
    return this;
}

double Arc::getR(double) const { return r_; }

void Arc::getZone(double& x1, double& y1, double& x2, double& y2) const {
    x1 = y1 = -r_;
    x2 = y2 = r_;
}

bool Arc::vDraw(EasyDrawingArea*, const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->arc(0, 0, r_, angle2_, angle1_);
    return true;
}

}  // namespace EGD
