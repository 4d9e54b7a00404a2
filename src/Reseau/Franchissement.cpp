#include "Reseau/Franchissement.h"

#include <algorithm>

namespace Reseau {

Franchissement::Franchissement(const Net& net, const Champs& champs) : net_(net) { traduire(champs); }

void Franchissement::traduire(const Champs& champs) {
    tirs_.clear();
    arcs_.clear();
    const auto traduit = [&champs](std::uint32_t place, Compte compte) {
        const Champs::Champ& c = champs.champ(place);
        const Compte omega = champs.omegas() ? static_cast<Compte>(c.masque) : -1;
        return Arc{c.masque, compte, omega, champs.plafond(place), place, c.mot, c.decalage};
    };
    const auto ici = [this] { return static_cast<std::uint32_t>(arcs_.size()); };
    for (const Transition& t : net_.transitions) {
        Tir tir{ici(), 0, 0};
        for (const Poids& p : t.pre) {
            Arc a = traduit(p.place, p.compte);
            if (champs.omegas()) a.compte = std::min(a.compte, a.omega);  // only omega meets a need beyond the field
            arcs_.push_back(a);
        }
        tir.effets = ici();
        for (const Poids& e : t.effet) arcs_.push_back(traduit(e.place, e.compte));
        tir.fin = ici();
        tirs_.push_back(tir);
    }
}

}  // namespace Reseau
