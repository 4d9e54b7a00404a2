#include "EGD/Color.h"

namespace EGD {

Color::Color(int red, int green, int blue, int alpha)
    : r(red / 255.0), g(green / 255.0), b(blue / 255.0), a(alpha / 255.0) {}

void Color::set(int red, int green, int blue, int alpha) { *this = Color(red, green, blue, alpha); }

void Color::draw(const Cairo::RefPtr<Cairo::Context>& cr) const { cr->set_source_rgba(r, g, b, a); }

}  // namespace EGD
