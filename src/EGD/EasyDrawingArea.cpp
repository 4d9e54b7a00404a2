#include "EGD/EasyDrawingArea.h"

#include <glibmm/main.h>

#include <optional>

#include "EGD/Drawing.h"

namespace EGD {

namespace {

constexpr auto everyEvent = static_cast<Gdk::EventMask>(0xFFFFFE);
constexpr unsigned int frameMilliseconds = 17;
constexpr std::size_t largeStack = 100;  // drawings; shifting fewer costs next to nothing

}  // namespace

EasyDrawingArea::EasyDrawingArea() { add_events(everyEvent); }

EasyDrawingArea::EasyDrawingArea(BaseObjectType* cobject, const Glib::RefPtr<Gtk::Builder>&)
    : Gtk::DrawingArea(cobject) {
    add_events(everyEvent);
}

EasyDrawingArea::~EasyDrawingArea() {
    stop();
    removeAll();
}

void EasyDrawingArea::buttonPressed(GdkEventButton*, std::vector<EGD::Drawing*>) {}

void EasyDrawingArea::buttonReleased(GdkEventButton*, std::vector<EGD::Drawing*>) {}

void EasyDrawingArea::mouseMoved(GdkEventMotion*, double, double) {}

void EasyDrawingArea::on_realize() {
    Gtk::Widget::on_realize();
    // With motion hints the toolkit holds motions back until it is asked for more: a fast drag would lose its end.
    get_window()->set_events(get_events() & ~Gdk::POINTER_MOTION_HINT_MASK);
    _cr = get_window()->create_cairo_context();
}

void EasyDrawingArea::setBackGroundColor(short r, short g, short b) {
    _r = r / 255.0;
    _g = g / 255.0;
    _b = b / 255.0;
}

Drawing* EasyDrawingArea::add(Drawing* d) {
    _places.emplace(d, vpDrawing_.size());
    vpDrawing_.push_back(d);
    d->setArea(this);
    // Not a slot bound to this trackable object: disconnecting one of n of those takes time in n.
    d->signal_updated().connect([this, d] { refresh(d); });
    refresh(d);
    return d;
}

void EasyDrawingArea::remove(Drawing* d) {
    const auto [first, last] = _places.equal_range(d);
    for (auto entry = first; entry != last; ++entry) {
        vpDrawing_[entry->second] = nullptr;
        ++_gaps;
    }
    _places.erase(first, last);
    closeGaps();
    refresh(d);
}

void EasyDrawingArea::closeGaps() {
    if (_walks > 0 || _gaps == 0) return;
    if (vpDrawing_.size() >= largeStack && 2 * _gaps <= vpDrawing_.size()) return;
    std::erase(vpDrawing_, nullptr);
    _gaps = 0;
    _places.clear();
    for (std::size_t i = 0; i < vpDrawing_.size(); ++i) _places.emplace(vpDrawing_[i], i);
}

void EasyDrawingArea::removeAll() {
    vpDrawing_.clear();
    _places.clear();
    _gaps = 0;
}

void EasyDrawingArea::deleteAll() {
    while (!vpDrawing_.empty()) {
        Drawing* top = vpDrawing_.back();
        if (top == nullptr) {
            vpDrawing_.pop_back();
            --_gaps;
            continue;
        }
        remove(top);
        delete top;
    }
}

/// Visits the drawings in paint order. A visit may add drawings, which are visited in their turn, and remove or destroy
/// any.
template <class Visit>
void EasyDrawingArea::forEachDrawing(Visit visit) {
    ++_walks;
    for (std::size_t i = 0; i < vpDrawing_.size(); ++i) {
        if (vpDrawing_[i] != nullptr) visit(vpDrawing_[i]);
    }
    --_walks;
    closeGaps();
}

bool EasyDrawingArea::on_draw(const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->save();
    cr->set_source_rgb(_r, _g, _b);
    cr->paint();
    cr->restore();

    // The toolkit paints the widget somewhere on the window's surface, and there the drawings look for the pick point.
    const double x = _pickX;
    const double y = _pickY;
    cr->user_to_device(_pickX, _pickY);
    forEachDrawing([&](Drawing* d) {
        if (d->draw(this, cr)) return;
        remove(d);
        delete d;
    });
    _pickX = x;
    _pickY = y;
    return false;
}

void EasyDrawingArea::setPick(double x, double y) {
    _pickX = x;
    _pickY = y;
    const auto nowhere = Cairo::ImageSurface::create(Cairo::FORMAT_ARGB32, 0, 0);
    on_draw(Cairo::Context::create(nowhere));
}

std::vector<EGD::Drawing*> EasyDrawingArea::underMouse(double x, double y) {
    setPick(x, y);
    std::vector<Drawing*> picked;
    forEachDrawing([&](Drawing* d) {
        if (d->isPicked()) picked.push_back(d);
    });
    return picked;
}

std::vector<Drawing*> EasyDrawingArea::tellPicked(GdkEventButton* event, void (Drawing::*tell)(GdkEventButton*)) {
    setPick(event->x, event->y);
    std::vector<Drawing*> picked;
    forEachDrawing([&](Drawing* d) {
        if (!d->isPicked()) return;
        picked.push_back(d);
        (d->*tell)(event);
    });
    return picked;
}

bool EasyDrawingArea::on_button_press_event(GdkEventButton* event) {
    buttonPressed(event, tellPicked(event, &Drawing::buttonPressed));
    return false;
}

bool EasyDrawingArea::on_button_release_event(GdkEventButton* event) {
    buttonReleased(event, tellPicked(event, &Drawing::buttonReleased));
    return false;
}

bool EasyDrawingArea::on_motion_notify_event(GdkEventMotion* event) {
    struct Point {
        double x;
        double y;
    };
    static std::optional<Point> last;  // one pointer, whichever area it moves over
    if (!last) last = Point{event->x, event->y};

    const double dx = event->x - last->x;
    const double dy = event->y - last->y;
    mouseMoved(event, dx, dy);
    _signal_mouseMoved.emit(event, dx, dy);
    last = Point{event->x, event->y};
    return false;
}

EasyDrawingArea* EasyDrawingArea::translate(double x, double y) {
    origineX = x;
    origineY = y;
    return this;
}

void EasyDrawingArea::refresh(double, double, double, double) {
    const auto window = get_window();
    if (!window) return;
    window->invalidate_rect(Gdk::Rectangle(0, 0, get_allocated_width(), get_allocated_height()), false);
}

void EasyDrawingArea::refresh(Drawing*) { refresh(0, 0, 0, 0); }

void EasyDrawingArea::play() {
    if (isConnected_) return;
    timeout_ = Glib::signal_timeout().connect(sigc::mem_fun(*this, &EasyDrawingArea::on_timeout), frameMilliseconds);
    isConnected_ = true;
}

void EasyDrawingArea::stop() {
    if (!isConnected_) return;
    timeout_.disconnect();
    isConnected_ = false;
}

bool EasyDrawingArea::on_timeout() {
    forEachDrawing([](Drawing* d) { d->nextFrame(); });
    refresh(0, 0, 0, 0);
    return true;
}

}  // namespace EGD
