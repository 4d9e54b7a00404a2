#include "Reseau/Conservation.h"

#include <algorithm>
#include <bit>

#include "Reseau/Simplexe.h"

namespace Reseau {

bool sommeConstante(const Net& net, const std::vector<std::uint32_t>& transitions) {
    return std::ranges::all_of(transitions, [&net](std::uint32_t t) {
        Large somme = 0;
        for (const Poids& e : net.transitions[t].effet) somme += e.compte;
        return somme == 0;
    });
}

namespace {

/// Whether every transition leaves some positive weighting of the finite places unchanged, or when it `peutPerdre`
/// does not raise it. The weights are 1 + y with y >= 0.
bool ponderable(const Net& net, const std::vector<bool>& finie, bool peutPerdre, std::uint64_t travail) {
    Simplexe s(static_cast<std::uint32_t>(net.places.size()), &travail);
    for (const Transition& t : net.transitions) {
        Large constante = 0;
        Simplexe::Forme plus;
        Simplexe::Forme moins;
        bool gagne = false;
        for (const Poids& e : t.effet) {
            if (!finie[e.place]) continue;
            gagne = gagne || e.compte > 0;
            constante += e.compte;
            plus.emplace_back(e.place, e.compte);
            moins.emplace_back(e.place, -e.compte);
        }
        if (!peutPerdre) s.contraindre(constante, plus);
        if (!peutPerdre || gagne) s.contraindre(-constante, moins);
    }
    try {
        return s.maximiser({}) == Simplexe::Issue::OPTIMUM;
    } catch (const Abandon&) {
        return false;
    }
}

}  // namespace

bool conservatif(const Net& net) {
    constexpr std::uint64_t CASES = 1'000'000;
    constexpr std::uint64_t TRAVAIL = 20'000'000;
    if ((net.places.size() + 1) * (2 * net.transitions.size() + 1) > CASES) return false;
    return ponderable(net, std::vector<bool>(net.places.size(), true), false, TRAVAIL);
}

bool Epuisement::chez(const Champs& champs, const Mot* m) {
    constexpr std::uint64_t CASES = 100'000;
    constexpr std::uint64_t ASSEZ = 64;       // markings for the first time it is asked, then twice as many each time;
    constexpr std::uint64_t PART = 8;         // and of the program's entries so many for each marking
    constexpr std::uint64_t TRAVAIL = 1'000;  // entries rewritten for each marking
    constexpr std::size_t ENSEMBLES = 1024;
    const std::uint64_t cases = net_.places.size() * net_.transitions.size();
    if (cases > CASES) return false;
    omegas_.clear();
    champs.pourChaqueMarquee(m, [&](std::uint32_t p) {
        if (champs.lire(m, p) == OMEGA) omegas_.push_back(p);
    });
    std::ranges::sort(omegas_);
    auto ici = reponses_.find(omegas_);
    if (ici == reponses_.end()) {
        if (reponses_.size() == ENSEMBLES) return false;
        ici = reponses_.emplace(omegas_, Reponse()).first;
    }
    Reponse& reponse = ici->second;
    if (!reponse.epuise && ++reponse.marquages >= ASSEZ && reponse.marquages * PART >= cases &&
        std::has_single_bit(reponse.marquages)) {
        std::vector<bool> finie(net_.places.size(), true);
        for (const std::uint32_t p : omegas_) finie[p] = false;
        reponse.epuise = ponderable(net_, finie, true, TRAVAIL * reponse.marquages);
    }
    return reponse.epuise;
}

}  // namespace Reseau
