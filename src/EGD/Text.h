// A label of one line, laid out with Pango.
#pragma once

#include <pangomm/layout.h>

#include <string>

#include "EGD/Arrowable.h"

namespace EGD {

/// Painted in the source that is current when it is drawn, always in bold Monospace. The text leaves no path behind, so
/// it is never picked by itself. Arrows treat it as a disc of radius 10.
class Text : public Arrowable {
public:
    /// @param size the font size in pixels
    /// @param family kept, but not consulted
    Text(std::string s, double x, double y, int size, std::string family);

    /// Requests no redraw.
    void setText(std::string s);

    double getR(double angle) const override;

    /// Whether the position is the middle of the text (the default) or its left, respectively top, border.
    virtual void setHorizontalCenter(bool centered);
    virtual void setVerticalCenter(bool centered);

    /// Paints the glyphs.
    bool vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;

private:
    bool mayReach(const Cairo::RefPtr<Cairo::Context>& cr) const;
    const Glib::RefPtr<Pango::Layout>& layoutFor(EasyDrawingArea* area);

    std::string _s;
    int _size;
    std::string _family;
    bool _horizontalCenter = true;
    bool _verticalCenter = true;

    // Laying out costs more than all the rest of a paint, so the layout is kept. It follows changes of the area's fonts
    // by itself.
    Glib::RefPtr<Pango::Layout> _layout;
    EasyDrawingArea* _layoutArea = nullptr;
};

}  // namespace EGD
