// The drawing of a whole network: owns the views, finds the view of a model node, and turns presses on the area into
// presses on nodes and arcs.
#pragma once

#include <glibmm/signalproxy.h>
#include <sigc++/sigc++.h>

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "EGD/EasyDrawingArea.h"
#include "Vue/Object.h"

namespace Modele {
class Arc;
class Noeud;
}  // namespace Modele

namespace Vue {

class Arc;
class Noeud;

/// Owns the node views, the arc views and the area. Coordinates are pixels of the area.
class Dessin : public Object, public sigc::trackable {
public:
    using type_signal_selectNoeud = sigc::signal<bool, GdkEventButton*, Vue::Noeud*>;
    using type_signal_selectArc = sigc::signal<bool, GdkEventButton*, Vue::Arc*>;

    /// Takes ownership of `area`.
    explicit Dessin(EGD::EasyDrawingArea* area);

    /// Destroys the views, then the area. The model objects live on without views.
    ~Dessin() override;

    /// Redraws everything.
    void update() override;

    /// Never called: no model object stands behind the whole drawing.
    void sucide() override;

    /// The view of `node` (not owned), made at (x, y) or moved there.
    Vue::Noeud* addNoeud(Modele::Noeud* node, double x, double y);

    /// The view of `node` (not owned) as it is, or made at (0, 0).
    Vue::Noeud* addNoeud(Modele::Noeud* node);

    /// The view of `node`; null when it has none.
    Vue::Noeud* getNoeudVue(Modele::Noeud* node) const;

    /// A new view of `arc` (not owned).
    Vue::Arc* addArc(Modele::Arc* arc);

    /// Called by the views' own sucide: unregister and destroy them.
    void removeNoeud(Vue::Noeud* view);
    void removeArc(Vue::Arc* view);

    EGD::EasyDrawingArea* getArea() const { return _area; }

    /// Every node view at (x, y), in the drawing's order.
    std::vector<Vue::Noeud*> noeudUnderMouse(double x, double y);

    /// The positions section of a file: one line a node, in the drawing's order.
    std::string toString() const;

    /// A node, respectively an arc, was pressed. True from a handler ends the search for further ones under the
    /// pointer.
    type_signal_selectNoeud signal_selectNoeud() { return _signal_selectNoeud; }
    type_signal_selectArc signal_selectArc() { return _signal_selectArc; }

    /// The area's own events.
    Glib::SignalProxy<bool, GdkEventButton*> signal_buttonPressed() { return _area->signal_button_press_event(); }
    Glib::SignalProxy<bool, GdkEventButton*> signal_buttonReleased() { return _area->signal_button_release_event(); }
    EGD::EasyDrawingArea::type_signal_mouseMoved signal_mouseMoved() { return _area->signal_mouseMoved(); }

private:
    virtual bool vDraw(const Cairo::RefPtr<Cairo::Context>& cr);

    bool buttonPressed(GdkEventButton* event);
    bool arcPressed(GdkEventButton* event);
    void growToShow(const Vue::Noeud& view);

    type_signal_selectNoeud _signal_selectNoeud;
    type_signal_selectArc _signal_selectArc;
    EGD::EasyDrawingArea* _area;
    std::vector<Vue::Noeud*> _vNoeud;
    std::map<Modele::Noeud*, Vue::Noeud*> _mNoeud;
    std::set<Vue::Arc*> _sArc;

    std::unordered_map<Vue::Noeud*, std::size_t> _places;  // where each view stands in _vNoeud

    // What was asked for the area before it was given to the drawing, in pixels; -1 for nothing.
    int _initialWidth = -1;
    int _initialHeight = -1;
};

}  // namespace Vue
