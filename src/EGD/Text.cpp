#include "EGD/Text.h"

#include <utility>

#include "EGD/EasyDrawingArea.h"

namespace EGD {

Text::Text(std::string s, double x, double y, int size, std::string family)
    : Arrowable(x, y), _s(std::move(s)), _size(size), _family(std::move(family)) {}

void Text::setText(std::string s) {
    _s = std::move(s);
    _layout.reset();
}

double Text::getR(double) const { return 10.0; }

void Text::setHorizontalCenter(bool centered) { _horizontalCenter = centered; }

void Text::setVerticalCenter(bool centered) { _verticalCenter = centered; }

bool Text::vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    if (!mayReach(cr)) return true;

    const auto& layout = layoutFor(area);
    int width = 0;
    int height = 0;
    layout->get_pixel_size(width, height);
    cr->move_to(_horizontalCenter ? -width / 2.0 : 0.0, _verticalCenter ? -height / 2.0 : 0.0);
    layout->show_in_cairo_context(cr);
    return true;
}

/// False when no glyph can fall inside the clip, as when picking: then there is nothing to lay out. Two ems a byte are
/// more than any glyph takes.
bool Text::mayReach(const Cairo::RefPtr<Cairo::Context>& cr) const {
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    cr->get_clip_extents(left, top, right, bottom);
    if (left >= right || top >= bottom) return false;
    const double reach = 2.0 * _size * static_cast<double>(_s.size() + 1);
    return left <= reach && right >= -reach && top <= reach && bottom >= -reach;
}

const Glib::RefPtr<Pango::Layout>& Text::layoutFor(EasyDrawingArea* area) {
    if (!_layout || _layoutArea != area) {
        Pango::FontDescription font;
        font.set_family("Monospace");
        font.set_weight(Pango::WEIGHT_BOLD);
        font.set_absolute_size(_size * Pango::SCALE);
        _layout = area->create_pango_layout(_s);
        _layout->set_font_description(font);
        _layoutArea = area;
    }
    return _layout;
}

}  // namespace EGD
