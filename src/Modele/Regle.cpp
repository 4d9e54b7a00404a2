#include "Modele/Regle.h"

namespace Modele {

Regle::Regle(const Multiset* consumed, const Multiset* produced) : in(*consumed), out(*produced) {}

void Regle::addIn(const std::string& name, int n) { in[name] += n; }

void Regle::addOut(const std::string& name, int n) { out[name] += n; }

std::string Regle::toString() const { return toText(in) + "-> " + toText(out); }

}  // namespace Modele
