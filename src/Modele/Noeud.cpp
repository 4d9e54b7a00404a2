#include "Modele/Noeud.h"

#include <iostream>
#include <utility>

#include "Modele/Arc.h"

namespace Modele {

Noeud::Noeud(std::string name) : _name(std::move(name)) {}

Noeud::~Noeud() {
    std::cout << "Modele::Noeud::~Noeud" << std::endl;
    while (!out.empty()) delete *out.begin();
    while (!in.empty()) delete *in.begin();
}

Arc* Noeud::addArc(Noeud* destination, Regle* regle) { return new Arc(this, destination, regle); }

void Noeud::setInit(const Multiset* m) {
    _marquage = *m;
    init = true;
    callUpdate();
}

bool Noeud::setInit(const std::string& text) {
    Multiset parsed;
    if (!toMap(parsed, text)) return false;
    setInit(&parsed);
    callUpdate();  // meant: an edited marking is announced once more
    return true;
}

std::string Noeud::toString() const {
    std::string text;
    for (const Arc* arc : out) text += arc->toString();
    if (init) text += _name + " : " + toText(_marquage) + ";";
    return text;
}

}  // namespace Modele
