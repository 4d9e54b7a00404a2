// A colour of the drawing library.
#pragma once

#include <cairomm/context.h>

namespace EGD {

/// Red, green, blue and alpha, each from 0.0 to 1.0. Given as integers on a scale from 0 to 255; values outside it are
/// not clamped.
class Color {
public:
    Color(int red, int green, int blue, int alpha);

    void set(int red, int green, int blue, int alpha);

    /// Makes the colour the source of `cr`.
    void draw(const Cairo::RefPtr<Cairo::Context>& cr) const;

    /// False for a fully transparent colour, which is "off": what it would paint is skipped, and cannot be picked.
    bool isVisible() const { return a > 0.0; }

private:
    double r;
    double g;
    double b;
    double a;
};

}  // namespace EGD
