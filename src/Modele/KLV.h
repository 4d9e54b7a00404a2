// The whole network: its nodes by name, and through them every arc and rule.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Modele/Multiset.h"
#include "Modele/Object.h"

namespace Modele {

class Arc;
class Noeud;

/// Owns its nodes. Every node's name is its key.
class KLV : public Object {
public:
    KLV() = default;
    ~KLV() override;

    /// Makes a node with an automatic name: "q1", "q2", ... with names in use skipped.
    Noeud* addNoeud();

    /// The node of that name, made when there is none.
    Noeud* addNoeud(const std::string& name);

    /// The node of that name, made when there is none, now initial with a copy of `*m`.
    Noeud* addNoeud(const std::string& name, const Multiset* m);

    /// The node of that name; like addNoeud, it makes the node when there is none, and so never returns null.
    Noeud* get(const std::string& name);

    /// Destroys the node and its arcs. The counter of automatic names steps back by one, whatever the node's name was.
    void removeNoeud(Noeud* n);

    /// Destroys every node, in name order, and starts the automatic names anew.
    void clear();

    std::map<std::string, Noeud*>& getNoeuds() { return _noeuds; }

    /// The initial nodes in name order; still owned by the network.
    std::vector<Noeud*> getNoeudIn() const;

    /// Every arc once, by source in name order; still owned by their nodes.
    std::vector<Arc*> getArcs() const;

    /// The molecules of all rules and markings, each mapped to -1, which only marks presence.
    Multiset getMolecules() const;

    /// The model's section of a file: one line a node, in name order.
    std::string toString() const;

private:
    void destroyNoeuds();

    std::map<std::string, Noeud*> _noeuds;
    int _num = 0;
};

}  // namespace Modele
