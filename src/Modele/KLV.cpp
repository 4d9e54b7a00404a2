#include "Modele/KLV.h"

#include "Modele/Arc.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

namespace Modele {

namespace {

void markPresent(Multiset& molecules, const Multiset& m) {
    for (const auto& [name, count] : m) molecules[name] = -1;
}

}  // namespace

KLV::~KLV() { destroyNoeuds(); }

Noeud* KLV::addNoeud() {
    std::string name;
    do {
        ++_num;
        name = "q" + std::to_string(_num);
    } while (_noeuds.contains(name));
    return addNoeud(name);
}

Noeud* KLV::addNoeud(const std::string& name) {
    const auto [entry, isNew] = _noeuds.try_emplace(name, nullptr);
    if (isNew) entry->second = new Noeud(name);
    return entry->second;
}

Noeud* KLV::addNoeud(const std::string& name, const Multiset* m) {
    Noeud* node = addNoeud(name);
    node->setInit(m);
    return node;
}

Noeud* KLV::get(const std::string& name) { return addNoeud(name); }

void KLV::removeNoeud(Noeud* n) {
    _noeuds.erase(n->getName());
    --_num;
    delete n;
}

void KLV::clear() {
    destroyNoeuds();
    _num = 0;
}

/// In name order. A view that is told to go finds only living nodes in the network.
void KLV::destroyNoeuds() {
    while (!_noeuds.empty()) delete _noeuds.extract(_noeuds.begin()).mapped();
}

std::vector<Noeud*> KLV::getNoeudIn() const {
    std::vector<Noeud*> initial;
    for (const auto& [name, node] : _noeuds) {
        if (node->isInit()) initial.push_back(node);
    }
    return initial;
}

std::vector<Arc*> KLV::getArcs() const {
    std::vector<Arc*> arcs;
    for (const auto& [name, node] : _noeuds) arcs.insert(arcs.end(), node->getOut().begin(), node->getOut().end());
    return arcs;
}

Multiset KLV::getMolecules() const {
    Multiset molecules;
    for (const auto& [name, node] : _noeuds) {
        markPresent(molecules, node->getMarquage());
        for (const Arc* arc : node->getOut()) {
            Regle* regle = arc->getRegle();
            if (regle == nullptr) continue;
            markPresent(molecules, regle->getIn());
            markPresent(molecules, regle->getOut());
        }
    }
    return molecules;
}

std::string KLV::toString() const {
    std::string text;
    for (const auto& [name, node] : _noeuds) text += node->toString() + "\n";
    return text;
}

}  // namespace Modele
