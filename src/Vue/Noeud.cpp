#include "Vue/Noeud.h"

#include <algorithm>
#include <iostream>
#include <limits>

#include "EGD/Arrow.h"
#include "EGD/EasyDrawingArea.h"
#include "Modele/Noeud.h"
#include "Vue/Dessin.h"

namespace Vue {

namespace {

constexpr double radius = 20.0;
constexpr int fontSize = 15;
constexpr double markingOffset = -40.0;

int truncated(double coordinate) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp(coordinate, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

}  // namespace

Noeud::Noeud(Dessin* dessin, Modele::Noeud* node, double x, double y)
    : Object(node),
      EGD::Arrowable(x, y),
      _egdArc(0, 0, radius, 360, 0),
      _egdText(node->getName(), 0, 0, fontSize, "Monospace"),
      _dessin(dessin),
      _pNoeud(node) {
    std::cout << "Noeud::Noeud (" << this << ")" << std::endl;
    _egdArc.setColorIn(255, 0, 0, 50)->setWidthLine(3);
    const auto partUpdated = [this] { _signal_updated.emit(); };
    _egdArc.signal_updated().connect(partUpdated);
    _egdText.signal_updated().connect(partUpdated);
    dessin->getArea()->add(this);
}

Noeud::~Noeud() {
    std::cout << "Vue::Noeud::~Noeud ()" << std::endl;
    releaseMarking();
}

void Noeud::update() {
    if (!_pNoeud->isInit()) {
        releaseMarking();
        return;
    }
    const std::string marking = Modele::toText(_pNoeud->getMarquage());
    if (_egdTextIn != nullptr) {
        _egdTextIn->setText(marking);
    } else {
        _egdTextIn = new EGD::Text(marking, markingOffset, markingOffset, fontSize, "Monospace");
        _egdIn = new EGD::Arrow(_egdTextIn, &_egdArc);
    }
}

void Noeud::releaseMarking() {
    delete _egdTextIn;
    _egdTextIn = nullptr;
    _egdIn = nullptr;
}

void Noeud::sucide() {
    std::cout << "sucide !" << std::endl;
    releaseMarking();
    _dessin->removeNoeud(this);
}

double Noeud::getR(double angle) const { return _egdArc.getR(angle); }

bool Noeud::isPicked() {
    if (_egdTextIn != nullptr && (_egdTextIn->isPicked() || _egdIn->isPicked())) return true;
    return _egdArc.isPicked() || _egdText.isPicked();
}

void Noeud::unpick() {
    EGD::Arrowable::unpick();
    _egdArc.unpick();
    _egdText.unpick();
    if (_egdTextIn == nullptr) return;
    _egdTextIn->unpick();
    _egdIn->unpick();
}

void Noeud::setDefault() { _egdArc.setColorIn(255, 0, 0, 50)->setColorFill(0, 0, 0, 255)->setWidthLine(3); }

bool Noeud::vDraw(EGD::EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) {
    _egdArc.draw(area, cr);
    _egdText.draw(area, cr);
    if (_egdTextIn != nullptr) {
        _egdTextIn->draw(area, cr);
        _egdIn->draw(area, cr);
    }
    return true;
}

std::string Noeud::toString() const {
    return _pNoeud->getName() + "(" + std::to_string(truncated(getPosX())) + ", " +
           std::to_string(truncated(getPosY())) + ");\n";
}

}  // namespace Vue
