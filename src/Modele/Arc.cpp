#include "Modele/Arc.h"

#include "Modele/Multiset.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

namespace Modele {

Arc::Arc(Noeud* source, Noeud* destination, Regle* regle)
    : _pSource(source), _pDestination(destination), _pRegle(regle) {
    _pSource->addArcOut(this);
    _pDestination->addArcIn(this);
}

Arc::~Arc() {
    _pSource->removeArcOut(this);
    _pDestination->removeArcIn(this);
    delete _pRegle;
}

void Arc::setDestination(Noeud* d) {
    if (d == _pDestination) return;
    _pDestination->removeArcIn(this);
    _pDestination = d;
    _pDestination->addArcIn(this);
    callUpdate();
}

bool Arc::setRegle(const std::string& text) {
    if (text.empty()) {
        replaceRegle(nullptr);
        return true;
    }

    const std::size_t dash = text.find('-');
    if (dash == std::string::npos || text.compare(dash, 2, "->") != 0) return false;

    Multiset in;
    Multiset out;
    if (!toMap(in, text.substr(0, dash)) || !toMap(out, text.substr(dash + 2))) return false;
    replaceRegle(new Regle(&in, &out));
    return true;
}

void Arc::replaceRegle(Regle* regle) {
    delete _pRegle;
    _pRegle = regle;
    callUpdate();
}

std::string Arc::toString() const {
    std::string text = _pSource->getName() + " -> " + _pDestination->getName();
    if (_pRegle != nullptr) text += " : " + _pRegle->toString();
    return text + ";";
}

}  // namespace Modele
