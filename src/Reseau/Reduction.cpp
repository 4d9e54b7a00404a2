#include "Reseau/Reduction.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Reseau {

namespace {

constexpr unsigned RONDES = 16;  // of the steps that may let others do more; a net that needs them all is made up

/// By transition whether it can be fired when firing takes nothing away.
std::vector<bool> tirables(const Net& net) {
    std::vector<std::vector<std::uint32_t>> attendent(net.places.size());
    std::vector<std::size_t> manques(net.transitions.size());
    std::vector<bool> marquee(net.places.size(), false);
    std::vector<bool> resultat(net.transitions.size(), false);
    std::vector<std::uint32_t> prets;
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        for (const Poids& p : net.transitions[t].pre) attendent[p.place].push_back(t);
        manques[t] = net.transitions[t].pre.size();
        if (manques[t] == 0) prets.push_back(t);
    }
    const auto arriver = [&](std::uint32_t place) {
        if (marquee[place]) return;
        marquee[place] = true;
        for (const std::uint32_t t : attendent[place])
            if (--manques[t] == 0) prets.push_back(t);
    };
    for (std::uint32_t p = 0; p < net.places.size(); ++p)
        if (net.initial[p] > 0) arriver(p);
    while (!prets.empty()) {
        const std::uint32_t t = prets.back();
        prets.pop_back();
        resultat[t] = true;
        for (const Poids& p : net.transitions[t].post) arriver(p.place);
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

/// Takes out the transitions that need more than there is of a place which none of them raises.
void retirerAffamees(const Net& net, std::vector<bool>& vivantes) {
    std::vector<bool> montee(net.places.size(), false);
    for (std::uint32_t t = 0; t < vivantes.size(); ++t)
        for (const Poids& e : net.transitions[t].effet)
            if (vivantes[t] && e.compte > 0) montee[e.place] = true;
    for (std::uint32_t t = 0; t < vivantes.size(); ++t)
        vivantes[t] = vivantes[t] && std::ranges::none_of(net.transitions[t].pre, [&](const Poids& p) {
                          return !montee[p.place] && p.compte > net.initial[p.place];
                      });
}

}  // namespace

Reduction::Reduction(const Net& net) : transitions_(net.transitions.size()) {
    std::iota(transitions_.begin(), transitions_.end(), 0U);
    net_.places.resize(net.places.size());
    net_.initial = net.initial;
    net_.transitions.reserve(net.transitions.size());
    for (const Transition& t : net.transitions) net_.transitions.push_back({"", t.pre, t.post, t.effet});
    retirerMortes();
    for (unsigned ronde = 0; ronde < RONDES; ++ronde) {
        const bool moinsDeTransitions = retirerDominees();
        if (!retirerParalleles() && !moinsDeTransitions) break;
        retirerMortes();
    }
}

/// Without them places may be raised no more that others need.
void Reduction::retirerMortes() {
    Mortes mortes;
    for (bool change = true; change;) {
        std::vector<bool> vivantes = tirables(net_);
        retirerAffamees(net_, vivantes);
        change = std::ranges::find(vivantes, false) != vivantes.end();
        for (std::uint32_t t = 0; t < vivantes.size(); ++t)
            if (!vivantes[t]) mortes.transitions.push_back(transitions_[t]);
        garder(vivantes);
    }
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
