// A circle or a part of one: the shape of a node.
#pragma once

#include "EGD/Arrowable.h"

namespace EGD {

class Arc : public Arrowable {
public:
    /// Drawn around (x, y) from `angle2` to `angle1`, clockwise on screen; a full circle is Arc(x, y, r, 360, 0).
    /// @param r radius in user-space pixels
    /// @param angle1,angle2 degrees from the x axis
    Arc(double x, double y, double r, double angle1, double angle2);

    /// Requests no redraw.
    Arc* setR(double r);

    double getR(double angle) const override;

    /// The bounding box relative to the position.
    virtual void getZone(double& x1, double& y1, double& x2, double& y2) const;

    /// Builds the path.
    bool vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;

private:
    double r_;
    double angle1_;  // radians
    double angle2_;
};

}  // namespace EGD
