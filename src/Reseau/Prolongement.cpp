#include "Reseau/Prolongement.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Reseau/Couverture.h"
#include "Reseau/Parties.h"
#include "Reseau/Reduction.h"

namespace Reseau {

namespace {

constexpr std::size_t LONGUEUR = 10'000;  // of a way, in transitions
constexpr std::size_t CHEMINS = 24;       // from one marking

/// The net from `depart` on, without the arcs of the places that are unbounded there, and without names.
Net sansOmegas(const Net& net, std::vector<Compte> depart) {
    Net reste;
    reste.places.resize(net.places.size());
    reste.initial = std::move(depart);
    const auto finis = [&](const Creux& arcs) {
        Creux gardes;
        std::ranges::copy_if(arcs, std::back_inserter(gardes),
                             [&](const Poids& p) { return reste.initial[p.place] != OMEGA; });
        return gardes;
    };
    reste.transitions.reserve(net.transitions.size());
    for (const Transition& t : net.transitions)
        reste.transitions.push_back({"", finis(t.pre), finis(t.post), finis(t.effet)});
    for (Compte& c : reste.initial)
        if (c == OMEGA) c = 0;
    return reste;
}

/// Appends the transitions of a path, those of an acceleration once.
/// @return whether it is short enough
bool aplatir(const Couverture& couverture, const Partie& partie, const std::vector<Pas>& chemin,
             std::vector<std::uint32_t>& tirs) {
    return std::ranges::all_of(chemin, [&](const Pas& p) {
        if (p.genre == Pas::POMPE) return aplatir(couverture, partie, couverture.accelerations()[p.numero].pas, tirs);
        tirs.push_back(partie.transitions[p.numero]);
        return tirs.size() <= LONGUEUR;
    });
}

/// Explores a part, and appends ways to the places that are unbounded there, or marked and have not been seen so.
void explorer(const Partie& partie, const std::vector<Compte>& vus, std::uint64_t limite, Prolongements& resultat) {
    const auto vu = [&](std::uint32_t p) { return vus[partie.places[p]]; };
    Couverture couverture(partie.net, 1);
    couverture.garderLesChemins();
    try {
        couverture.explorer(limite, false);
    } catch (const Debordement&) {
        return;  // without what was left out it reaches counts that do not fit; the net need not
    }
    resultat.explores += couverture.explores();
    std::vector<bool> faite(partie.places.size(), false);
    for (std::uint32_t p = 0; p < faite.size() && resultat.chemins.size() < CHEMINS; ++p) {
        const Compte la = couverture.maxima()[p];
        if (faite[p] || la <= vu(p) || (la != OMEGA && vu(p) > 0)) continue;
        const Creux but = couverture.temoin(p);
        for (const Poids& v : but) faite[v.place] = faite[v.place] || v.compte == couverture.maxima()[v.place];
        std::vector<std::uint32_t> tirs;
        if (aplatir(couverture, partie, couverture.chemin(but), tirs)) resultat.chemins.push_back(std::move(tirs));
    }
}

}  // namespace

Prolongements prolonger(const Net& net, const Creux& depart, const std::vector<Compte>& vus, std::uint64_t limite) {
    std::vector<Compte> initial(net.places.size(), 0);
    for (const Poids& p : depart) initial[p.place] = p.compte;
    Reduction reduction(sansOmegas(net, std::move(initial)));
    Prolongements resultat;
    for (const Partie& partie : decouper(reduction))
        if (std::ranges::any_of(partie.places, [&](std::uint32_t p) { return vus[p] != OMEGA; }))
            explorer(partie, vus, limite, resultat);
    return resultat;
}

std::vector<std::vector<std::uint32_t>> partiesSansOmegas(const Net& net, const std::vector<Compte>& bornes) {
    std::vector<Compte> initial = net.initial;
    for (std::size_t p = 0; p < initial.size(); ++p)
        if (bornes[p] == OMEGA) initial[p] = OMEGA;
    Reduction reduction(sansOmegas(net, std::move(initial)));
    std::vector<std::vector<std::uint32_t>> resultat;
    for (Partie& partie : decouper(reduction)) resultat.push_back(std::move(partie.places));
    return resultat;
}

}  // namespace Reseau
