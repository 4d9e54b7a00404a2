#include "Vue/Dessin.h"

#include <algorithm>
#include <iostream>

#include "Modele/Arc.h"
#include "Modele/Noeud.h"
#include "Vue/Arc.h"
#include "Vue/Noeud.h"

#undef NDEBUG  // sucide ends the program in every build
#include <cassert>

namespace Vue {

namespace {

constexpr double margin = 100.0;           // pixels kept free beyond the outermost node
constexpr double largestExtent = 32000.0;  // pixels; windows of more than 15 bits are beyond X11

int extentFor(double coordinate) { return static_cast<int>(std::clamp(coordinate + margin, 0.0, largestExtent)); }

}  // namespace

Dessin::Dessin(EGD::EasyDrawingArea* area) : Object(nullptr), _area(area) {
    _area->signal_button_press_event().connect(sigc::mem_fun(*this, &Dessin::buttonPressed));
    _area->signal_button_press_event().connect(sigc::mem_fun(*this, &Dessin::arcPressed));
    _area->get_size_request(_initialWidth, _initialHeight);
}

Dessin::~Dessin() {
    for (Vue::Arc* view : _sArc) delete view;
    for (Vue::Noeud* view : _vNoeud) delete view;
    delete _area;
}

void Dessin::update() { _area->refresh(0, 0, 0, 0); }

void Dessin::sucide() { assert(!"non implémenté"); }

bool Dessin::vDraw(const Cairo::RefPtr<Cairo::Context>&) { return true; }

Vue::Noeud* Dessin::addNoeud(Modele::Noeud* node, double x, double y) {
    Vue::Noeud*& view = _mNoeud[node];
    if (view != nullptr) {
        view->setPos(x, y);
        return view;
    }
    view = new Vue::Noeud(this, node, x, y);
    std::cout << "add noeud (" << view << ")" << std::endl;
    _places[view] = _vNoeud.size();
    _vNoeud.push_back(view);
    growToShow(*view);
    view->signal_updated().connect([this, shown = view] { growToShow(*shown); });
    return view;
}

Vue::Noeud* Dessin::addNoeud(Modele::Noeud* node) {
    Vue::Noeud* view = getNoeudVue(node);
    return view != nullptr ? view : addNoeud(node, 0, 0);
}

Vue::Noeud* Dessin::getNoeudVue(Modele::Noeud* node) const {
    const auto entry = _mNoeud.find(node);
    return entry != _mNoeud.end() ? entry->second : nullptr;
}

Vue::Arc* Dessin::addArc(Modele::Arc* arc) {
    auto* view = new Vue::Arc(this, arc);
    _sArc.insert(view);
    return view;
}

void Dessin::removeNoeud(Vue::Noeud* view) {
    std::cout << "remove noeud (" << view << ")" << std::endl;
    const auto place = _places.find(view);
    if (place != _places.end()) {
        std::cout << "POP !" << std::endl;
        _vNoeud[place->second] = _vNoeud.back();
        _places[_vNoeud.back()] = place->second;
        _vNoeud.pop_back();
        _places.erase(view);
    }
    _mNoeud.erase(view->getModele());
    delete view;

    if (_vNoeud.empty()) _area->set_size_request(_initialWidth, _initialHeight);
}

void Dessin::removeArc(Vue::Arc* view) {
    _sArc.erase(view);
    delete view;
}

/// Grows the area so that `view` can be scrolled to. It shrinks again once the drawing is empty.
void Dessin::growToShow(const Vue::Noeud& view) {
    int width = 0;
    int height = 0;
    _area->get_size_request(width, height);
    const int wider = std::max(width, extentFor(view.getPosX()));
    const int higher = std::max(height, extentFor(view.getPosY()));
    if (wider != width || higher != height) _area->set_size_request(wider, higher);
}

bool Dessin::buttonPressed(GdkEventButton* event) {
    _area->setPick(event->x, event->y);
    // A handler may add and remove views: the walk is over those that were there, as long as they are.
    for (Vue::Noeud* view : std::vector(_vNoeud)) {
        if (_places.contains(view) && view->isPicked() && _signal_selectNoeud.emit(event, view)) return true;
    }
    return false;
}

bool Dessin::arcPressed(GdkEventButton* event) {
    _area->setPick(event->x, event->y);
    for (Vue::Arc* view : std::vector(_sArc.begin(), _sArc.end())) {
        if (_sArc.contains(view) && view->isPicked() && _signal_selectArc.emit(event, view)) return true;
    }
    return false;
}

std::vector<Vue::Noeud*> Dessin::noeudUnderMouse(double x, double y) {
    _area->setPick(x, y);
    std::vector<Vue::Noeud*> picked;
    std::copy_if(_vNoeud.begin(), _vNoeud.end(), std::back_inserter(picked),
                 [](Vue::Noeud* view) { return view->isPicked(); });
    return picked;
}

std::string Dessin::toString() const {
    std::string text;
    for (const Vue::Noeud* view : _vNoeud) text += view->toString();
    return text;
}

}  // namespace Vue
