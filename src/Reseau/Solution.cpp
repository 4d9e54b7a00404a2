#include "Reseau/Solution.h"

#include <utility>
#include <vector>

namespace Reseau {

namespace {

constexpr std::size_t PLONGEE = 40;  // programs solved for one integer solution

/// The transition with the fewest firings among those that are fired in part.
std::optional<Simplexe::Variable> moindreFraction(const Simplexe& s, Simplexe::Variable transitions) {
    std::optional<Simplexe::Variable> moindre;
    for (Simplexe::Variable t = 0; t < transitions; ++t)
        if (!s.valeur(t).entiere() && (!moindre || s.valeur(t).plancher() < s.valeur(*moindre).plancher())) moindre = t;
    return moindre;
}

}  // namespace

std::optional<Simplexe> moindresTirs(const Equation& equation, const Simplexe& s, const Simplexe::Forme& forme) {
    equation.payer();
    try {
        Simplexe moindre = s;
        Simplexe::Forme tirs;
        for (Simplexe::Variable t = 0; t < equation.transitions(); ++t) tirs.emplace_back(t, -1);
        moindre.contraindre(-s.optimum().plancher(), forme);
        moindre.maximiser(tirs);
        return moindre;
    } catch (const Abandon&) {
        return std::nullopt;
    }
}

std::optional<Simplexe> enEntiers(const Equation& equation, Simplexe s) {
    std::vector<Simplexe> pile{std::move(s)};
    for (std::size_t essai = 0; essai < PLONGEE && !pile.empty(); ++essai) {
        Simplexe haut = std::move(pile.back());
        pile.pop_back();
        const auto t = moindreFraction(haut, equation.transitions());
        if (!t) return haut;
        const Large k = haut.valeur(*t).plancher();
        equation.payer();
        try {
            Simplexe bas = haut;
            bas.contraindre(k, {{*t, -1}});
            const bool enBas = bas.reoptimiser() == Simplexe::Issue::OPTIMUM;
            haut.contraindre(-k - 1, {{*t, 1}});
            const bool enHaut = haut.reoptimiser() == Simplexe::Issue::OPTIMUM;
            const bool basDAbord = enBas && enHaut && haut.optimum().plancher() < bas.optimum().plancher();
            if (enBas && !basDAbord) pile.push_back(bas);
            if (enHaut) pile.push_back(std::move(haut));
            if (basDAbord) pile.push_back(std::move(bas));
        } catch (const Abandon&) {
            // Neither threshold can be worked out; others may be.
        }
    }
    return std::nullopt;
}

}  // namespace Reseau
