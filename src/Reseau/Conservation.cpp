#include "Reseau/Conservation.h"

#include <algorithm>
#include <cstdint>

#include "Reseau/Simplexe.h"

namespace Reseau {

bool sommeConstante(const Net& net) {
    return std::ranges::all_of(net.transitions, [](const Transition& t) {
        Large somme = 0;
        for (const Poids& e : t.effet) somme += e.compte;
        return somme == 0;
    });
}

/// The weights are 1 + y with y >= 0; for each transition the weighted effect is at least and at most zero.
bool conservatif(const Net& net) {
    constexpr std::uint64_t CASES = 1'000'000;
    constexpr std::uint64_t TRAVAIL = 20'000'000;
    const std::uint64_t cases = (net.places.size() + 1) * (2 * net.transitions.size() + 1);
    if (cases > CASES) return false;
    std::uint64_t travail = TRAVAIL;
    Simplexe s(static_cast<std::uint32_t>(net.places.size()), &travail);
    for (const Transition& t : net.transitions) {
        Large constante = 0;
        Simplexe::Forme plus;
        Simplexe::Forme moins;
        for (const Poids& e : t.effet) {
            constante += e.compte;
            plus.emplace_back(e.place, e.compte);
            moins.emplace_back(e.place, -e.compte);
        }
        s.contraindre(constante, plus);
        s.contraindre(-constante, moins);
    }
    try {
        return s.maximiser({}) == Simplexe::Issue::OPTIMUM;
    } catch (const Abandon&) {
        return false;
    }
}

}  // namespace Reseau
