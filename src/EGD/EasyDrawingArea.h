// The canvas: a drawing area that paints a stack of drawings, finds those under a point by painting them off screen,
// and turns mouse events into calls on them.
#pragma once

#include <gtkmm/builder.h>
#include <gtkmm/drawingarea.h>

#include <unordered_map>
#include <vector>

namespace EGD {

class Drawing;

/// Coordinates are device coordinates: pixels of the widget, from its top left corner. The area does not own its
/// drawings; they must be destroyed before it (or through deleteAll).
class EasyDrawingArea : public Gtk::DrawingArea {
public:
    using type_signal_mouseMoved = sigc::signal<void, GdkEventMotion*, double, double>;

    EasyDrawingArea();

    /// For Gtk::Builder::get_widget_derived.
    EasyDrawingArea(BaseObjectType* cobject, const Glib::RefPtr<Gtk::Builder>& builder);
    ~EasyDrawingArea() override;

    /// The drawings under the pointer received a press or a release before the area: `picked`, bottom-most first.
    virtual void buttonPressed(GdkEventButton* event, std::vector<EGD::Drawing*> picked);
    virtual void buttonReleased(GdkEventButton* event, std::vector<EGD::Drawing*> picked);

    /// The pointer moved by (dx, dy) since the last motion event.
    virtual void mouseMoved(GdkEventMotion* event, double dx, double dy);

    /// Components from 0 to 255. Requests no redraw.
    void setBackGroundColor(short r, short g, short b);

    /// Puts `d` (not owned) on top of the stack and redraws whenever it changes.
    /// @return d
    Drawing* add(Drawing* d);

    /// Takes every entry of `d` off the stack.
    void remove(Drawing* d);

    /// Empties the stack and destroys nothing.
    void removeAll();

    /// Destroys every drawing of the stack, from the top.
    void deleteAll();

    /// Makes (x, y) the pick point and refreshes what every drawing knows about lying under it.
    void setPick(double x, double y);
    double getPickX() const { return _pickX; }
    double getPickY() const { return _pickY; }

    /// Every drawing at (x, y), bottom-most first.
    std::vector<EGD::Drawing*> underMouse(double x, double y);

    /// Keeps an origin for the area's user; painting and picking do not apply it.
    EasyDrawingArea* translate(double x, double y);

    /// Requests a redraw of the whole widget, whatever the arguments are.
    void refresh(double x, double y, double w, double h);
    void refresh(Drawing* d);

    /// Starts and stops the frame timer, which advances the drawings' animations every 17 ms.
    void play();
    void stop();

    /// Emitted on every pointer motion, with the motion since the last event.
    type_signal_mouseMoved signal_mouseMoved() { return _signal_mouseMoved; }

    /// @name The toolkit's events, open to whoever replays one. None of them is taken: further handlers get it too.
    /// @{
    void on_realize() override;
    bool on_button_press_event(GdkEventButton* event) override;
    bool on_button_release_event(GdkEventButton* event) override;
    bool on_motion_notify_event(GdkEventMotion* event) override;
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override;
    /// @}

private:
    bool on_timeout();

    template <class Visit>
    void forEachDrawing(Visit visit);
    std::vector<Drawing*> tellPicked(GdkEventButton* event, void (Drawing::*tell)(GdkEventButton*));
    void closeGaps();

    type_signal_mouseMoved _signal_mouseMoved;
    Cairo::RefPtr<Cairo::Context> _cr;
    double _r = 1.0;
    double _g = 1.0;
    double _b = 1.0;

    // A drawing that leaves while the stack is being walked leaves a null gap, so that indices stay good; one that
    // leaves a large stack does so too, until half of it is gaps, so that emptying it takes linear time.
    std::vector<EGD::Drawing*> vpDrawing_;

    double origineX = 0.0;
    double origineY = 0.0;
    sigc::connection timeout_;
    bool isConnected_ = false;
    double _pickX = 0.0;
    double _pickY = 0.0;

    std::unordered_multimap<Drawing*, std::size_t> _places;  // where each drawing stands in vpDrawing_
    std::size_t _gaps = 0;
    int _walks = 0;  // walks over vpDrawing_ in progress
};

}  // namespace EGD
