// A segment.
#pragma once

#include "EGD/Drawing.h"

namespace EGD {

class Line : public Drawing {
public:
    /// End points in the drawing's user space; the drawing itself stands at (0, 0).
    Line(int x1, int y1, int x2, int y2);

    /// Always false: a line is picked through its stroke, like any drawing.
    virtual bool isClicked(double x, double y) const;

    /// Builds the path.
    bool vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;

private:
    double x1_;
    double y1_;
    double x2_;
    double y2_;
};

}  // namespace EGD
