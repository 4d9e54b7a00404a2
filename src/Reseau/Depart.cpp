#include "Reseau/Depart.h"

#include <algorithm>

namespace Reseau {

namespace {

constexpr std::size_t BEAUCOUP = 16;  // more are not looked at one by one

}  // namespace

std::vector<std::uint32_t> departs(const Net& net) {
    std::vector<std::uint32_t> premiers;
    std::vector<bool> remise(net.places.size(), false);
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        const Transition& tr = net.transitions[t];
        for (const Poids& p : tr.post) remise[p.place] = true;
        if (std::ranges::all_of(tr.pre, [&net](const Poids& p) { return net.initial[p.place] >= p.compte; }))
            premiers.push_back(t);
    }
    if (premiers.empty() || premiers.size() > BEAUCOUP) return {};
    const auto commune = [&](const Poids& jeton) {
        return net.initial[jeton.place] == 1 && !remise[jeton.place] &&
               std::ranges::all_of(premiers,
                                   [&](std::uint32_t t) { return valeur(net.transitions[t].pre, jeton.place) == 1; });
    };
    return std::ranges::any_of(net.transitions[premiers[0]].pre, commune) ? premiers : std::vector<std::uint32_t>();
}

std::vector<Compte> apres(const Net& net, std::uint32_t depart) {
    std::vector<Compte> m = net.initial;
    for (const Poids& e : net.transitions[depart].effet) m[e.place] = somme(m[e.place], e.compte);
    return m;
}

}  // namespace Reseau
