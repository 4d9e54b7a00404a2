// A named node of the network. A node whose marking has been set is an initial node: a run may start there.
#pragma once

#include <set>
#include <string>

#include "Modele/Multiset.h"
#include "Modele/Object.h"

namespace Modele {

class Arc;
class Regle;

/// Owns every arc that touches it: destroying a node destroys the arcs in `out` and in `in`.
class Noeud : public Object {
public:
    explicit Noeud(std::string name);
    ~Noeud() override;

    /// Makes an arc from this node to `destination`. Takes ownership of `regle`, which may be null. The arc belongs to
    /// its nodes and goes with the first of them.
    Arc* addArc(Noeud* destination, Regle* regle);

    std::string getName() const { return _name; }
    bool isInit() const { return init; }
    Multiset& getMarquage() { return _marquage; }
    std::set<Arc*>& getOut() { return out; }

    /// Makes the node initial with a copy of `*m`.
    void setInit(const Multiset* m);

    /// Reads a marking such as "2a b" and makes the node initial with it; the empty text is the empty marking.
    /// @return false, and nothing changes, when the text is not a multiset.
    bool setInit(const std::string& text);

    /// The node's line of a file: its outgoing arcs, then its marking when it is initial.
    std::string toString() const;

private:
    friend class Arc;

    void addArcIn(Arc* arc) { in.insert(arc); }
    void addArcOut(Arc* arc) { out.insert(arc); }
    void removeArcIn(Arc* arc) { in.erase(arc); }
    void removeArcOut(Arc* arc) { out.erase(arc); }

    std::string _name;
    std::set<Arc*> out;
    std::set<Arc*> in;
    Multiset _marquage;
    bool init = false;
};

}  // namespace Modele
