#include "Reseau/Equation.h"

namespace Reseau {

namespace {

std::vector<Contrainte> deChaquePlace(const Net& net) {
    std::vector<Contrainte> contraintes;
    for (std::uint32_t p = 0; p < net.places.size(); ++p) contraintes.push_back(etat(net, p));
    return contraintes;
}

Simplexe sousContraintes(std::size_t transitions, const std::vector<Contrainte>& etats, std::uint64_t* travail) {
    Simplexe s(static_cast<std::uint32_t>(transitions), travail);
    for (const Contrainte& c : etats) s.contraindre(c.constante, c.forme);
    return s;
}

}  // namespace

Equation::Equation(const Net& n, std::uint64_t* t)
    : net(n),
      jeton(Jeton::trouver(n)),
      etats(deChaquePlace(n)),
      travail(t),
      programme(sousContraintes(n.transitions.size(), etats, t)) {}

Multiplicateurs Equation::desContraintes(const Simplexe::Forme& multiplicateurs) const {
    Multiplicateurs resultat;
    for (const auto& [v, y] : multiplicateurs)
        if (v >= transitions()) resultat.emplace_back(v - transitions(), y);
    std::ranges::sort(resultat);
    return resultat;
}

}  // namespace Reseau
