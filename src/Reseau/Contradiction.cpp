#include "Reseau/Contradiction.h"

#include <algorithm>
#include <iterator>

#include "Reseau/Contrainte.h"
#include "Reseau/Instant.h"

namespace Reseau {

namespace {

/// Whether the solution contradicts the constraint; no when that cannot be worked out in 128 bits.
bool negative(const Contrainte& c, const Simplexe& s) {
    Large total = c.constante;
    Large denominateur = 1;
    for (const auto& [t, n] : c.forme) {
        const Fraction x = s.valeur(t);
        Large terme = 0;
        if (__builtin_mul_overflow(total, x.denominateur, &total) || __builtin_mul_overflow(n, x.numerateur, &terme) ||
            __builtin_mul_overflow(terme, denominateur, &terme) || __builtin_add_overflow(total, terme, &total) ||
            __builtin_mul_overflow(denominateur, x.denominateur, &denominateur))
            return false;
    }
    return total < 0;
}

/// Takes out of the set what is put into it by a transition that needs nothing of it.
/// @return whether what is left is needed
bool reduire(const Net& net, const std::vector<std::uint32_t>& actives, std::vector<bool>& q) {
    for (bool change = true; change;) {
        change = false;
        for (const std::uint32_t t : actives) {
            if (touche(net.transitions[t].pre, q)) continue;
            for (const Poids& p : net.transitions[t].post) {
                change = change || q[p.place];
                q[p.place] = false;
            }
        }
    }
    return std::ranges::any_of(actives, [&](std::uint32_t t) { return touche(net.transitions[t].pre, q); });
}

/// A set of places, as small as may be, that are empty at the start, that `tirees` need and do not enter.
std::vector<std::uint32_t> jamaisEntre(const Net& net, const std::vector<bool>& tirees) {
    std::vector<std::uint32_t> actives;
    for (std::uint32_t t = 0; t < tirees.size(); ++t)
        if (tirees[t]) actives.push_back(t);
    std::vector<bool> q(net.places.size());
    for (std::size_t p = 0; p < q.size(); ++p) q[p] = net.initial[p] == 0;
    if (!reduire(net, actives, q)) return {};
    for (std::size_t p = 0; p < q.size(); ++p) {
        if (!q[p]) continue;
        std::vector<bool> moins = q;
        moins[p] = false;
        if (reduire(net, actives, moins)) q = std::move(moins);
    }
    std::vector<std::uint32_t> places;
    for (std::uint32_t p = 0; p < q.size(); ++p)
        if (q[p]) places.push_back(p);
    return places;
}

/// A set of the token's places that the solution does not leave, and places that are below zero when it enters it.
std::optional<Cas> jamaisQuitte(const Net& net, const Jeton& jeton, const Simplexe& s,
                                const std::vector<bool>& tirees) {
    for (const std::vector<bool>& u : jeton.derniers(tirees)) {
        Cas cas;
        cas.genre = Cas::DEPART;
        for (std::uint32_t p = 0; p < net.places.size(); ++p)
            if (negative(entree(net, jeton, u, p), s)) cas.bornees.push_back(p);
        if (cas.bornees.empty()) continue;
        for (std::uint32_t p = 0; p < u.size(); ++p)
            if (u[p]) cas.places.push_back(p);
        return cas;
    }
    return std::nullopt;
}

/// How often each transition is fired at the most, in integers; OMEGA is as many as one likes.
/// @return nothing when these leave 64 bits
std::optional<std::vector<Compte>> auPlus(const Simplexe& s, Simplexe::Variable transitions, bool infinie) {
    std::vector<Compte> comptes(transitions);
    for (std::uint32_t t = 0; t < transitions; ++t) {
        const bool sansFin = infinie && s.grandit(t) && s.croissance(t).numerateur > 0;
        const Large x = sansFin ? OMEGA : s.valeur(t).plafond();
        if (x >= OMEGA && !infinie) return std::nullopt;
        comptes[t] = static_cast<Compte>(std::min<Large>(x, OMEGA));
    }
    return comptes;
}

Cas niveau(std::uint32_t place) {
    Cas cas;
    cas.genre = Cas::NIVEAU;
    cas.places = {place};
    return cas;
}

}  // namespace

std::optional<Cas> Contradictions::horsDAtteinte(const Simplexe& s, bool infinie) const {
    std::vector<bool> tirees(equation_.transitions());
    for (std::uint32_t t = 0; t < tirees.size(); ++t)
        tirees[t] = s.valeur(t).numerateur > 0 || (infinie && s.grandit(t));
    Cas entree;
    entree.genre = Cas::ENTREE;
    entree.places = jamaisEntre(equation_.net, tirees);
    if (!entree.places.empty()) return entree;
    if (infinie || !equation_.jeton) return std::nullopt;
    return jamaisQuitte(equation_.net, *equation_.jeton, s, tirees);
}

std::optional<Cas> Contradictions::tropTot(const Simplexe& s, bool infinie) const {
    const auto comptes = auPlus(s, equation_.transitions(), infinie);
    if (!comptes) return std::nullopt;
    for (const Cas::Genre genre : {Cas::PREMIER, Cas::DERNIER}) {
        if (infinie && genre == Cas::DERNIER) continue;
        for (std::uint32_t t = 0; t < comptes->size(); ++t)
            if ((*comptes)[t] > 0)
                if (auto cas = instant(equation_, *comptes, t, genre)) return cas;
    }
    return std::nullopt;
}

std::optional<Cas> Contradictions::horsDOrdre(const Simplexe& s, std::uint64_t travail) {
    const auto comptes = auPlus(s, equation_.transitions(), false);
    if (!comptes) return std::nullopt;
    const auto tiree = [&comptes](const Cas::Evenement& e) { return (*comptes)[e.transition] > 0; };
    const std::uint64_t accorde = std::min(*equation_.travail, travail);
    std::uint64_t reste = accorde;
    std::optional<Cas> cas;
    try {
        const Moments moments(equation_.net, equation_.etats, *comptes, &reste);
        std::vector<Moments::Paire> paires = paires_;
        std::erase_if(paires, [&](const Moments::Paire& p) { return !tiree(p.first) || !tiree(p.second); });
        std::ranges::copy(moments.paires(), std::back_inserter(paires));
        for (auto p = paires.begin(); p != paires.end() && !cas; ++p)
            if ((cas = moments.contredire(*p))) {
                std::erase(paires_, *p);
                paires_.insert(paires_.begin(), *p);
            }
    } catch (const Abandon&) {
        // Too much to ask for these counts.
    }
    *equation_.travail -= accorde - reste;
    return cas;
}

std::optional<Cas> Contradictions::arrondi(const Simplexe& s) const {
    const auto coupe = s.coupe();
    if (!coupe) return std::nullopt;
    Cas cas;
    cas.genre = Cas::COUPE;
    cas.facteur = coupe->diviseur;
    cas.multiplicateurs = equation_.desContraintes(coupe->multiplicateurs);
    return cas;
}

std::optional<Cas> Contradictions::fraction(const Simplexe& s) const {
    if (equation_.jeton)
        for (const std::uint32_t p : equation_.jeton->places())
            if (!s.valeur(equation_.marquage(p)).entiere()) return niveau(p);
    std::optional<Cas> moindre;
    for (std::uint32_t t = 0; t < equation_.transitions(); ++t) {
        if (s.valeur(t).entiere()) continue;
        const Large k = s.valeur(t).plancher();
        if (k >= OMEGA || (moindre && moindre->seuil <= k)) continue;
        moindre.emplace();
        moindre->genre = Cas::SEUIL;
        moindre->transition = t;
        moindre->seuil = static_cast<Compte>(k);
    }
    return moindre;
}

std::optional<Cas> Contradictions::finDuJeton(const Simplexe& s) const {
    if (!equation_.jeton) return std::nullopt;
    for (const std::uint32_t p : equation_.jeton->places())
        if (s.valeur(equation_.marquage(p)).numerateur > 0) return niveau(p);
    return std::nullopt;
}

}  // namespace Reseau
