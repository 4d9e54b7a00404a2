// A directed arc between two nodes, with or without a rule.
#pragma once

#include <string>

#include "Modele/Object.h"

namespace Modele {

class Noeud;
class Regle;

/// An arc belongs to its nodes: destroying either of them destroys it. For its whole life it stands in its source's
/// `out` and in its destination's `in`; both may be the same node.
class Arc : public Object {
public:
    /// Registers itself with both nodes. Takes ownership of `regle`, which may be null: an arc without a rule.
    Arc(Noeud* source, Noeud* destination, Regle* regle);

    /// Leaves both nodes and destroys the rule.
    ~Arc() override;

    Noeud* getSource() const { return _pSource; }
    Noeud* getDestination() const { return _pDestination; }

    /// The rule, owned by the arc; null when it has none.
    Regle* getRegle() const { return _pRegle; }

    /// Makes the arc enter `d` instead; tells the view only when that is a change.
    void setDestination(Noeud* d);

    /// Reads a rule such as "a 2b -> c"; the empty text removes the rule.
    /// @return false, and nothing changes, when the text is not a rule.
    bool setRegle(const std::string& text);

    /// "a -> b : x -> y ;": the arc's declaration in a file.
    std::string toString() const;

private:
    void replaceRegle(Regle* regle);

    Noeud* _pSource;
    Noeud* _pDestination;
    Regle* _pRegle;
};

}  // namespace Modele
