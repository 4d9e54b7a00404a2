#include "Reseau/Franchissement.h"

#include <algorithm>

namespace Reseau {

Franchissement::Franchissement(const Net& net, const Champs& champs) : net_(net) {
    std::vector<std::uint64_t> demandes(net.places.size(), 0);
    for (const Transition& t : net.transitions)
        for (const Poids& p : t.pre) ++demandes[p.place];
    guetter(demandes);
    traduire(champs);
}

void Franchissement::guetter(const std::vector<std::uint64_t>& marquee) {
    std::vector<Listes<std::uint32_t>::Entree> guets;
    guets.reserve(net_.transitions.size());
    toujours_.clear();
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        const Creux& pre = net_.transitions[t].pre;
        const auto rare = std::ranges::min_element(pre, {}, [&](const Poids& p) { return marquee[p.place]; });
        if (rare == pre.end())
            toujours_.push_back(t);
        else
            guets.emplace_back(rare->place, t);
    }
    guets_ = {net_.places.size(), guets};
}

void Franchissement::utiles(const Mot* m, std::vector<std::uint32_t>& tirs) const {
    tirs.clear();
    const auto essayer = [&](std::uint32_t t) {
        if (utile(t, m)) tirs.push_back(t);
    };
    std::ranges::for_each(toujours_, essayer);
    champs_->pourChaqueMarquee(m, [&](std::uint32_t p) { std::ranges::for_each(guets_[p], essayer); });
    std::ranges::sort(tirs);
}

void Franchissement::traduire(const Champs& champs) {
    champs_ = &champs;
    tirs_.clear();
    arcs_.clear();
    const auto traduit = [&champs](std::uint32_t place, Compte compte) {
        const Champs::Champ& c = champs.champ(place);
        const Compte omega = champs.omegas() ? static_cast<Compte>(c.masque) : -1;
        return Arc{c.masque, compte, omega, champs.plafond(place), c.mot, c.decalage};
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
