#include "Reseau/Reduction.h"

#include <algorithm>
#include <utility>

#include "Reseau/Listes.h"

namespace Reseau {

namespace {

constexpr unsigned RONDES = 16;  // of the steps that may let others do more; a net that needs them all is made up

/// By transition whether it can be fired when firing takes nothing away, and there is enough of what some transition
/// raises that can be fired.
std::vector<bool> tirables(const Net& net) {
    std::vector<Listes<std::uint32_t>::Entree> attentes;  // transitions, by the places that they need more of
    std::vector<std::size_t> manques(net.transitions.size(), 0);
    std::vector<bool> montee(net.places.size(), false);
    std::vector<bool> resultat(net.transitions.size(), false);
    std::vector<std::uint32_t> prets;
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        for (const Poids& p : net.transitions[t].pre) {
            if (p.compte <= net.initial[p.place]) continue;
            attentes.emplace_back(p.place, t);
            ++manques[t];
        }
        if (manques[t] == 0) prets.push_back(t);
    }
    const Listes<std::uint32_t> attendent(net.places.size(), attentes);
    const auto monter = [&](std::uint32_t place) {
        if (montee[place]) return;
        montee[place] = true;
        for (const std::uint32_t t : attendent[place])
            if (--manques[t] == 0) prets.push_back(t);
    };
    while (!prets.empty()) {
        const std::uint32_t t = prets.back();
        prets.pop_back();
        resultat[t] = true;
        for (const Poids& e : net.transitions[t].effet)
            if (e.compte > 0) monter(e.place);
    }
    return resultat;
}

/// By place whether none of the transitions that are left changes it.
std::vector<bool> constantes(const Net& net) {
    std::vector<bool> resultat(net.places.size(), true);
    for (const Transition& t : net.transitions)
        for (const Poids& e : t.effet) resultat[e.place] = false;
    return resultat;
}

}  // namespace

Reduction::Reduction(const Net& net) {
    net_.places.resize(net.places.size());
    net_.initial = net.initial;
    copierVivantes(net);
    for (unsigned ronde = 0; ronde < RONDES; ++ronde) {
        const bool moinsDeTransitions = retirerDominees();
        if (!retirerParalleles() && !moinsDeTransitions) break;
        retirerMortes();
    }
}

/// Takes over the transitions that are not dead.
void Reduction::copierVivantes(const Net& net) {
    const std::vector<bool> vivantes = tirables(net);
    Mortes mortes;
    net_.transitions.reserve(static_cast<std::size_t>(std::ranges::count(vivantes, true)));
    for (std::uint32_t t = 0; t < vivantes.size(); ++t) {
        (vivantes[t] ? transitions_ : mortes.transitions).push_back(t);
        if (!vivantes[t]) continue;
        const Transition& tir = net.transitions[t];
        net_.transitions.push_back({"", tir.pre, tir.post, tir.effet});
    }
    etapes_.emplace_back(std::move(mortes));
    oublierConstantes();
}

void Reduction::retirerMortes() {
    const std::vector<bool> vivantes = tirables(net_);
    Mortes mortes;
    for (std::uint32_t t = 0; t < vivantes.size(); ++t)
        if (!vivantes[t]) mortes.transitions.push_back(transitions_[t]);
    garder(vivantes);
    etapes_.emplace_back(std::move(mortes));
    oublierConstantes();
}

/// What is needed of a constant place is there.
void Reduction::oublierConstantes() {
    const std::vector<bool> fixes = constantes(net_);
    const auto fixe = [&](const Poids& p) { return fixes[p.place]; };
    for (Transition& t : net_.transitions) {
        std::erase_if(t.pre, fixe);
        std::erase_if(t.post, fixe);
    }
}

/// @return whether there were any
bool Reduction::retirerDominees() {
    const std::vector<Dominee> trouvees = dominees(net_);
    std::vector<bool> gardees(net_.transitions.size(), true);
    for (Dominee d : trouvees) {
        gardees[d.transition] = false;
        d.transition = transitions_[d.transition];
        if (d.par) d.par = transitions_[*d.par];
        etapes_.emplace_back(d);
    }
    garder(gardees);
    return !trouvees.empty();
}

/// @return whether there were any
bool Reduction::retirerParalleles() {
    const std::vector<Fusion> fusions = fusionner(net_);
    etapes_.insert(etapes_.end(), fusions.begin(), fusions.end());
    return !fusions.empty();
}

void Reduction::garder(const std::vector<bool>& gardees) {
    if (std::ranges::find(gardees, false) == gardees.end()) return;
    std::size_t n = 0;
    for (std::size_t t = 0; t < gardees.size(); ++t) {
        if (!gardees[t]) continue;
        if (n < t) net_.transitions[n] = std::move(net_.transitions[t]);
        transitions_[n++] = transitions_[t];
    }
    net_.transitions.resize(n);
    transitions_.resize(n);
}

void Reduction::restituer(std::vector<Compte>& comptes) const {
    for (auto etape = etapes_.rbegin(); etape != etapes_.rend(); ++etape)
        if (const auto* fusion = std::get_if<Fusion>(&*etape))
            comptes[fusion->place] = fusion->compte(net_, comptes[fusion->temoin]);
}

}  // namespace Reseau
