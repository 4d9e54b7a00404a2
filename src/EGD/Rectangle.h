// A rectangle with a corner at its position.
#pragma once

#include "EGD/Drawing.h"

namespace EGD {

class Rectangle : public Drawing {
public:
    /// Sizes in user-space pixels. Whether the interior is painted depends on the interior colour alone, not on
    /// `filled`.
    Rectangle(double x, double y, double width, double height, bool filled);

    virtual void setWidth(double width);
    virtual void setHeight(double height);

    /// Requests no redraw.
    Rectangle* setFilled(bool filled);

    /// The area, in square pixels of user space.
    double getSurface() const { return width_ * height_; }

    /// Builds the path: four sides from the position back to it, not closed.
    bool vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;

private:
    double width_;
    double height_;
    bool filled_;
    [[maybe_unused]] bool inv2x_ = false;
    [[maybe_unused]] bool inv2y_ = false;
};

}  // namespace EGD
