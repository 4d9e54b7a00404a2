#include "Vue/Arc.h"

#include <iostream>

#include "EGD/EasyDrawingArea.h"
#include "Modele/Arc.h"
#include "Modele/Regle.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"

namespace Vue {

Arc::Arc(Dessin* dessin, Modele::Arc* arc)
    : Object(arc),
      EGD::Drawing(0, 0),
      _arrow(dessin->getNoeudVue(arc->getSource()), dessin->getNoeudVue(arc->getDestination())),
      _dessin(dessin),
      _pArc(arc) {
    _arrow.holdByValue();
    _arrow.signal_updated().connect([this] { _signal_updated.emit(); });
    dessin->getArea()->add(this);
    showRegle();
}

Arc::~Arc() { std::cout << "Arc::~Arc" << std::endl; }

void Arc::update() {
    _arrow.setBegin(_dessin->getNoeudVue(_pArc->getSource()));
    _arrow.setEnd(_dessin->getNoeudVue(_pArc->getDestination()));
    showRegle();
}

void Arc::showRegle() {
    if (_pArc->getRegle() != nullptr) {
        _arrow.setLabel(_pArc->getRegle()->toString());
    } else {
        _arrow.deleteLabel();
    }
}

void Arc::sucide() { _dessin->removeArc(this); }

bool Arc::isPicked() {
    const bool picked = _arrow.isPicked();
    std::cout << "arrow picked : " << picked << std::endl;
    return picked;
}

void Arc::unpick() {
    EGD::Drawing::unpick();
    _arrow.unpick();
}

bool Arc::vDraw(EGD::EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    _arrow.draw(area, cr);
    return true;
}

}  // namespace Vue
