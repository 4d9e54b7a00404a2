// The base of everything shown on the canvas: a positioned object that builds its own path and leaves painting, picking
// and announcing changes to this class. Picking is a by-product of painting, so a hit test can never disagree with the
// picture.
#pragma once

#include <gdk/gdk.h>
#include <sigc++/sigc++.h>

#include <deque>
#include <memory>

#include "EGD/Color.h"

namespace EGD {

class EasyDrawingArea;

/// One straight translation, performed step by step, a step a frame.
class Animation {
public:
    /// @param dx,dy the whole displacement, in pixels of user space; not both zero
    /// @param speed the length of a step, in pixels a frame
    Animation(double dx, double dy, double speed);

    /// Yields the next step.
    /// @return false when the step is the last one: it is what remains, at most about a whole step.
    bool getAddXY(double& outX, double& outY);

private:
    double _dx;  // the displacement still to be performed
    double _dy;
    double _speed;
    double _sx;  // the step
    double _sy;
};

/// A drawing lives where its user made it and is shown by at most one area, which it leaves by itself when destroyed.
/// It is born visible and black, with nothing inside.
class Drawing {
public:
    using type_signal_updated = sigc::signal<void>;
    using type_signal_deleted = sigc::signal<void>;

    /// @param x,y the position, in the user space of the area or of the drawing that paints this one
    Drawing(double x, double y);
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;

    /// Emits signal_deleted, then leaves the area.
    virtual ~Drawing();

    /// True when the last draw found the area's pick point inside the painted interior or on the stroked outline.
    virtual bool isPicked();

    /// Called by the area for a press or a release on this drawing.
    virtual void buttonPressed(GdkEventButton* event);
    virtual void buttonReleased(GdkEventButton* event);

    /// The colour in which the path is stroked, whatever the name suggests; components from 0 to 255.
    Drawing* setColorFill(short r, short g, short b, short a);

    /// The colour in which the path is filled; components from 0 to 255.
    Drawing* setColorIn(short r, short g, short b, short a);

    /// The width of the outline, in user-space pixels.
    Drawing* setWidthLine(double w);

    void setPos(double x, double y);
    void setPosX(double x);
    void setPosY(double y);
    void move(double dx, double dy);
    void addPosX(double d);
    void addPosY(double d);
    double getPosX() const { return _posX; }
    double getPosY() const { return _posY; }

    /// Requests no redraw by itself.
    void setVisible(bool v) { _visible = v; }

    /// The area that shows the drawing, not owned; set by EasyDrawingArea::add alone.
    void setArea(EasyDrawingArea* area) { area_ = area; }
    EasyDrawingArea* getArea() const { return area_; }

    /// Queues a translation by (dx, dy) pixels at `speed` pixels a frame; an empty one is ignored.
    void addTranslation(double dx, double dy, double speed);
    void clearAllAnimations() { vAnimation_.reset(); }

    /// Performs one step of the first queued translation.
    void nextFrame();

    /// Emitted whenever the place or the look of the drawing changes.
    type_signal_updated signal_updated() { return _signal_updated; }

    /// Emitted once, when the drawing is being destroyed.
    type_signal_deleted signal_deleted() { return _signal_deleted; }

    /// Paints the drawing on `cr` and finds out whether `area`'s pick point lies on it.
    /// @return true: the drawing wants to stay on the canvas.
    bool draw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr);

private:
    /// Builds the path of the drawing around the origin. The result is not used.
    virtual bool vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) = 0;

public:
    /// Forgets the last pick, with that of every part: what is not drawn again is not picked.
    virtual void unpick() { _picked = false; }

private:
    void paintInterior(const EasyDrawingArea& area, const Cairo::RefPtr<Cairo::Context>& cr);
    void paintOutline(const EasyDrawingArea& area, const Cairo::RefPtr<Cairo::Context>& cr);

protected:
    type_signal_updated _signal_updated;
    type_signal_deleted _signal_deleted;

private:
    Color _colorFill{0, 0, 0, 255};
    Color _colorIn{0, 0, 0, 0};
    double _widthLine = 3.0;
    EasyDrawingArea* area_ = nullptr;
    std::unique_ptr<std::deque<Animation>> vAnimation_;  // null when there is none: an empty deque takes 600 bytes
    double _posX;
    double _posY;
    bool _visible = true;
    bool _picked = false;
};

}  // namespace EGD
