#include "Reseau/Instant.h"

#include <algorithm>

namespace Reseau {

namespace {

/// The places at the moment, less what `t` needs there, by the firings before it or, for the last one, after it.
/// @return nothing when a number leaves 128 bits
std::optional<std::vector<Contrainte>> places(const Equation& equation, const std::vector<Compte>& comptes,
                                              std::uint32_t t, bool premier) {
    std::vector<Contrainte> contraintes;
    for (std::uint32_t p = 0; p < equation.net.places.size(); ++p) {
        Contrainte c{equation.net.initial[p] - Large{valeur(equation.net.transitions[t].pre, p)}, {}};
        for (const auto& [u, effet] : equation.etats[p].forme) {
            if (!premier && !accumuler(c.constante, effet, comptes[u] - (u == t ? 1 : 0))) return std::nullopt;
            if (u != t && comptes[u] > 0) c.forme.emplace_back(u, premier ? effet : -effet);
        }
        contraintes.push_back(std::move(c));
    }
    return contraintes;
}

}  // namespace

std::optional<Cas> instant(const Equation& equation, const std::vector<Compte>& comptes, std::uint32_t t,
                           Cas::Genre genre) {
    equation.payer();
    const auto nombre = static_cast<std::uint32_t>(equation.net.places.size());
    const auto auMoment = places(equation, comptes, t, genre == Cas::PREMIER);
    if (!auMoment) return std::nullopt;
    try {
        Simplexe s(equation.transitions(), equation.travail);
        for (const Contrainte& c : *auMoment) s.contraindre(c.constante, c.forme);
        for (std::uint32_t u = 0; u < equation.transitions(); ++u)
            if (u != t && comptes[u] > 0 && comptes[u] != OMEGA) s.contraindre(comptes[u], {{u, -1}});
        if (s.maximiser({}) != Simplexe::Issue::IMPOSSIBLE) return std::nullopt;
        Cas cas;
        cas.genre = genre;
        cas.transition = t;
        cas.multiplicateurs = equation.desContraintes(s.multiplicateurs());
        std::erase_if(cas.multiplicateurs, [nombre](const auto& m) { return m.first >= nombre; });
        return cas;
    } catch (const Abandon&) {
        return std::nullopt;
    }
}

}  // namespace Reseau
