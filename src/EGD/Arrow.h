// An arrow between two shapes: straight, curved when arrows run both ways, a loop when both ends are the same shape;
// with or without a label.
#pragma once

#include <string>

#include "EGD/Drawing.h"

namespace EGD {

class Arrowable;
class Text;

/// Computes its geometry anew from its ends at every paint; its own position stays (0, 0). While an end is missing,
/// nothing is drawn.
class Arrow : public Drawing {
public:
    /// Registers itself with both ends, which are not owned and may be the same shape or null.
    ///
    /// An arrow made with new is destroyed with the first of its ends. One that is held by value says so with
    /// holdByValue.
    Arrow(Arrowable* begin, Arrowable* end);
    ~Arrow() override;

    /// From now on an end that is destroyed only lets go of the arrow, whose owner frees it.
    void holdByValue() { _isHeldByValue = true; }

    /// Move the arrow's registration to another shape (not owned, or null). They request no redraw.
    void setBegin(Arrowable* a);
    void setEnd(Arrowable* a);
    Arrowable* getBegin() const { return _begin; }
    Arrowable* getEnd() const { return _end; }

    void setLabel(const std::string& s);
    void deleteLabel();

    /// True as well when the label is picked: it takes part of the arrow's path, see vDraw.
    bool isPicked() override;
    void unpick() override;

    /// Builds the path; the label, which is drawn on the way, takes what is built before it.
    bool vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;

private:
    friend class Arrowable;

    void drawBetween(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr);
    void drawLoop(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr);
    void drawLabelBeside(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr, double x, double y);
    void endDestroyed(const Arrowable* end);

    Arrowable* _begin;
    Arrowable* _end;
    Text* _pLabel = nullptr;
    bool _isHeldByValue = false;
};

}  // namespace EGD
