#include "Reseau/Parties.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace Reseau {

namespace {

constexpr std::uint32_t AUCUNE = ~std::uint32_t{0};

/// By place the representative of those that transitions connect it with; AUCUNE where none changes it.
std::vector<std::uint32_t> chefs(const Net& net) {
    std::vector<std::uint32_t> chef(net.places.size());
    std::iota(chef.begin(), chef.end(), 0U);
    const auto trouver = [&chef](std::uint32_t p) {  // union and find, with path halving
        while (chef[p] != p) p = chef[p] = chef[chef[p]];
        return p;
    };
    std::vector<bool> changee(net.places.size(), false);
    for (const Transition& t : net.transitions) {
        const std::uint32_t ancre = t.effet.front().place;
        for (const Poids& p : t.pre) chef[trouver(p.place)] = trouver(ancre);
        for (const Poids& e : t.effet) {
            chef[trouver(e.place)] = trouver(ancre);
            changee[e.place] = true;
        }
    }
    std::vector<std::uint32_t> resultat(chef.size(), AUCUNE);
    for (std::uint32_t p = 0; p < chef.size(); ++p)
        if (changee[p]) resultat[p] = trouver(p);
    return resultat;
}

}  // namespace

std::vector<Partie> decouper(Reduction& reduction) {
    const Net& net = reduction.net();
    const std::vector<std::uint32_t> chef = chefs(net);
    std::vector<Partie> resultat;
    std::map<std::uint32_t, std::size_t> partieDe;  // by representative
    std::vector<std::uint32_t> numero(net.places.size());
    for (std::uint32_t p = 0; p < net.places.size(); ++p) {
        if (chef[p] == AUCUNE) continue;
        const auto [i, neuve] = partieDe.try_emplace(chef[p], resultat.size());
        if (neuve) resultat.emplace_back();
        Partie& partie = resultat[i->second];
        numero[p] = static_cast<std::uint32_t>(partie.places.size());
        partie.places.push_back(p);
        partie.net.places.emplace_back();
        partie.net.initial.push_back(net.initial[p]);
    }
    std::vector<Transition> transitions = reduction.ceder();
    for (std::size_t t = 0; t < transitions.size(); ++t) {
        Transition& tr = transitions[t];
        Partie& partie = resultat[partieDe.at(chef[tr.effet.front().place])];
        for (Creux* cote : {&tr.pre, &tr.post, &tr.effet})
            for (Poids& p : *cote) p.place = numero[p.place];
        partie.transitions.push_back(reduction.transitions()[t]);
        partie.net.transitions.push_back(std::move(tr));
    }
    std::ranges::stable_sort(resultat, {}, [](const Partie& p) { return p.places.size() + p.transitions.size(); });
    return resultat;
}

}  // namespace Reseau
