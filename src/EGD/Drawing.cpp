#include "EGD/Drawing.h"

#include <cmath>

#include "EGD/EasyDrawingArea.h"

namespace EGD {

Animation::Animation(double dx, double dy, double speed) : _dx(dx), _dy(dy), _speed(speed) {
    const double length = std::sqrt(dx * dx + dy * dy);
    _sx = _speed * dx / length;
    _sy = _speed * dy / length;
}

bool Animation::getAddXY(double& outX, double& outY) {
    // One more whole step would reach or pass the target on both axes.
    if ((_dx - _sx) * _dx <= 0.0 && (_dy - _sy) * _dy <= 0.0) {
        outX = _dx;
        outY = _dy;
        return false;
    }
    _dx -= _sx;
    outX = _sx;
    _dy -= _sy;
    outY = _sy;
    return true;
}

Drawing::Drawing(double x, double y) : _posX(x), _posY(y) {}

Drawing::~Drawing() {
    _signal_deleted.emit();
    if (area_ != nullptr) area_->remove(this);
}

bool Drawing::isPicked() { return _picked; }

void Drawing::buttonPressed(GdkEventButton*) {}

void Drawing::buttonReleased(GdkEventButton*) {}

Drawing* Drawing::setColorFill(short r, short g, short b, short a) {
    _colorFill.set(r, g, b, a);
    _signal_updated.emit();
    return this;
}

Drawing* Drawing::setColorIn(short r, short g, short b, short a) {
    _colorIn.set(r, g, b, a);
    _signal_updated.emit();
    return this;
}

Drawing* Drawing::setWidthLine(double w) {
    _widthLine = w;
    _signal_updated.emit();
    return this;
}

void Drawing::setPos(double x, double y) {
    _posX = x;
    _posY = y;
    _signal_updated.emit();
}

void Drawing::setPosX(double x) { setPos(x, _posY); }

void Drawing::setPosY(double y) { setPos(_posX, y); }

void Drawing::move(double dx, double dy) { setPos(_posX + dx, _posY + dy); }

void Drawing::addPosX(double d) { move(d, 0.0); }

void Drawing::addPosY(double d) { move(0.0, d); }

void Drawing::addTranslation(double dx, double dy, double speed) {
    if (dx == 0.0 && dy == 0.0) return;
    if (!vAnimation_) vAnimation_ = std::make_unique<std::deque<Animation>>();
    vAnimation_->emplace_back(dx, dy, speed);
}

void Drawing::nextFrame() {
    if (!vAnimation_) return;
    double dx = 0.0;
    double dy = 0.0;
    if (!vAnimation_->front().getAddXY(dx, dy)) vAnimation_->pop_front();
    if (vAnimation_->empty()) vAnimation_.reset();
    move(dx, dy);
}

bool Drawing::draw(EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    unpick();
    if (!_visible) return true;

    const bool hasInterior = _colorIn.isVisible();
    const bool hasOutline = _colorFill.isVisible();
    cr->save();
    cr->translate(_posX, _posY);
    if (hasInterior || hasOutline) vDraw(area, cr);
    if (hasInterior) paintInterior(*area, cr);
    if (hasOutline) paintOutline(*area, cr);
    cr->restore();
    return true;
}

void Drawing::paintInterior(const EasyDrawingArea& area, const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->save();
    _colorIn.draw(cr);
    double x = area.getPickX();
    double y = area.getPickY();
    cr->device_to_user(x, y);
    if (cr->in_fill(x, y)) _picked = true;
    if (_colorFill.isVisible()) {
        cr->fill_preserve();
    } else {
        cr->fill();
    }
    cr->restore();
}

void Drawing::paintOutline(const EasyDrawingArea& area, const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->set_line_width(_widthLine);
    _colorFill.draw(cr);
    double x = area.getPickX();
    double y = area.getPickY();
    cr->device_to_user(x, y);
    if (cr->in_stroke(x, y)) _picked = true;
    cr->stroke();
}

}  // namespace EGD
