// A label is drawn while the arrow's path is being built. The current path is not part of Cairo's saved state, so the
// label's stroke takes the shaft built so far, with the label's colour and width, and what is picked there counts for
// the label; the head, built afterwards, is the arrow's own. Arrow::isPicked asks both.
#include "EGD/Arrow.h"

#include <cmath>
#include <numbers>

#include "EGD/Arrowable.h"
#include "EGD/Text.h"

namespace EGD {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double headSize = 10.0;
constexpr double labelDistance = 10.0;
constexpr int labelFontSize = 15;
constexpr double curveArrivalAngle = pi / 15.0;
constexpr double loopRadii = 5.0;
constexpr double cosineOf45Degrees = 0.707106781;

void addHead(const Cairo::RefPtr<Cairo::Context>& cr, double tipX) {
    cr->move_to(tipX + headSize, headSize);
    cr->line_to(tipX, 0);
    cr->line_to(tipX + headSize, -headSize);
}

}  // namespace

Arrow::Arrow(Arrowable* begin, Arrowable* end) : Drawing(0.0, 0.0), _begin(begin), _end(end) {
    if (_begin != nullptr) _begin->addArrowOut(this);
    if (_end != nullptr) _end->addArrowIn(this);
}

Arrow::~Arrow() {
    deleteLabel();
    setBegin(nullptr);
    setEnd(nullptr);
}

void Arrow::setBegin(Arrowable* a) {
    if (_begin != nullptr) _begin->removeArrowOut(this);
    _begin = a;
    if (_begin != nullptr) _begin->addArrowOut(this);
}

void Arrow::setEnd(Arrowable* a) {
    if (_end != nullptr) _end->removeArrowIn(this);
    _end = a;
    if (_end != nullptr) _end->addArrowIn(this);
}

void Arrow::endDestroyed(const Arrowable* end) {
    if (!_isHeldByValue) {
        delete this;
        return;
    }
    if (_begin == end) setBegin(nullptr);
    if (_end == end) setEnd(nullptr);
}

void Arrow::setLabel(const std::string& s) {
    if (_pLabel == nullptr) _pLabel = new Text(s, 0.0, 0.0, labelFontSize, "Monospace");
    _pLabel->setText(s);
}

void Arrow::deleteLabel() {
    delete _pLabel;
    _pLabel = nullptr;
}

bool Arrow::isPicked() { return Drawing::isPicked() || (_pLabel != nullptr && _pLabel->isPicked()); }

void Arrow::unpick() {
    Drawing::unpick();
    if (_pLabel != nullptr) _pLabel->unpick();
}

bool Arrow::vDraw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    if (_begin == nullptr || _end == nullptr) return true;
    if (_begin == _end) {
        drawLoop(area, cr);
    } else {
        drawBetween(area, cr);
    }
    return true;
}

void Arrow::drawBetween(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    const double bx = _begin->getPosX();
    const double by = _begin->getPosY();
    const double ex = _end->getPosX();
    const double ey = _end->getPosY();
    const double distance = std::sqrt((bx - ex) * (bx - ex) + (by - ey) * (by - ey));
    const double beginRadius = _begin->getR(0.0);
    const double endRadius = _end->getR(0.0);
    if (!(distance > beginRadius + endRadius)) return;

    // From here on the x axis points from the end's centre to the begin's, which is the origin.
    double angle = std::acos((bx - ex) / distance);
    if (by > ey) angle = -angle;
    cr->translate(bx, by);
    cr->rotate(-angle);
    cr->move_to(-beginRadius, 0);

    const double tip = -(distance - endRadius);
    const double middle = distance / 2 - endRadius;  // seen from the tip
    if (_begin->arrowInFrom(_end)) {
        const double controlX = (-beginRadius + tip) / 2;
        const double controlY = (-beginRadius + tip) / 10;
        cr->curve_to(controlX, controlY, controlX, controlY, tip, 0);
        cr->translate(tip, 0);
        if (_pLabel != nullptr) {
            _pLabel->setVerticalCenter(false);
            drawLabelBeside(area, cr, middle, controlY);
        }
        cr->rotate(-curveArrivalAngle);
    } else {
        cr->line_to(tip, 0);
        cr->translate(tip, 0);
        if (_pLabel != nullptr) {
            _pLabel->setVerticalCenter(true);
            drawLabelBeside(area, cr, middle, 0);
        }
    }
    addHead(cr, 0);
}

/// Draws the label off the point (x, y) of the shaft, on the side where it stands upright.
void Arrow::drawLabelBeside(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr, double x, double y) {
    cr->save();
    cr->translate(x, y);
    if (_begin->getPosX() > _end->getPosX()) {
        cr->translate(0, -labelDistance);
    } else {
        cr->translate(0, labelDistance);
        cr->rotate(pi);
    }
    _pLabel->draw(area, cr);
    cr->restore();
}

void Arrow::drawLoop(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    const double radius = _begin->getR(0.0);
    const double reach = loopRadii * radius;
    const double diagonal = cosineOf45Degrees * reach;

    cr->translate(_begin->getPosX(), _begin->getPosY());
    cr->rotate(-3.0 * pi / 8.0);
    cr->move_to(radius, 0);
    cr->rotate(-pi / 4.0);
    cr->curve_to(diagonal, diagonal, reach, 0, radius, 0);
    addHead(cr, radius);

    if (_pLabel != nullptr) {
        cr->translate((diagonal + reach) / 2, diagonal / 2);
        cr->rotate(5.0 * pi / 8.0);
        _pLabel->draw(area, cr);
    }
}

}  // namespace EGD
