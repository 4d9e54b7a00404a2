// A rule: the molecules that moving along an arc consumes and those it produces.
#pragma once

#include <string>

#include "Modele/Multiset.h"
#include "Modele/Object.h"

namespace Modele {

class Regle : public Object {
public:
    /// Copies both multisets.
    Regle(const Multiset* in, const Multiset* out);

    /// Adds `n` to the count of the molecule `name` among the consumed ones.
    void addIn(const std::string& name, int n);

    /// Adds `n` to the count of the molecule `name` among the produced ones.
    void addOut(const std::string& name, int n);

    Multiset& getIn() { return in; }
    Multiset& getOut() { return out; }

    /// "a 2b -> c ": the form of the rule in files, labels and dialogs.
    std::string toString() const;

private:
    Multiset in;
    Multiset out;
};

}  // namespace Modele
