#include "Reseau/Contrainte.h"

#include <algorithm>

#include "Reseau/Simplexe.h"

namespace Reseau {

namespace {

std::vector<bool> ensemble(const Net& net, const std::vector<std::uint32_t>& places) {
    std::vector<bool> dedans(net.places.size(), false);
    for (const std::uint32_t p : places) dedans[p] = true;
    return dedans;
}

bool quitte(const Jeton& jeton, const std::vector<bool>& u, std::uint32_t t) {
    return jeton.de(t) != Jeton::NULLE_PART && u[jeton.de(t)] && !u[jeton.vers(t)];
}

/// At most, or at least one more than, `k` of what `forme` counts.
Contrainte auPlus(Contrainte forme, Compte k) {
    forme.constante = k - forme.constante;
    for (auto& [t, c] : forme.forme) c = -c;
    return forme;
}
Contrainte auMoins(Contrainte forme, Compte k) {
    forme.constante -= static_cast<Large>(k) + 1;
    return forme;
}

void ajouter(Large& somme, Large y, Large c) {
    if (!accumuler(somme, y, c)) throw Abandon();
}

/// The weighted sum of the places when the transition of `cas` is fired for the first or the last time, at the most.
Contrainte aLInstant(const Net& net, const Cas& cas) {
    Contrainte c;
    std::vector<Large> poids(net.places.size(), 0);
    for (const auto& [p, y] : cas.multiplicateurs) {
        poids[p] = y;
        ajouter(c.constante, y, net.initial[p]);
    }
    for (const Poids& p : net.transitions[cas.transition].pre) ajouter(c.constante, -poids[p.place], p.compte);
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        Large effet = 0;
        for (const Poids& e : net.transitions[t].effet) ajouter(effet, poids[e.place], e.compte);
        if (t == cas.transition && cas.genre == Cas::DERNIER) {
            ajouter(c.constante, -1, effet);
            c.forme.emplace_back(t, effet);
        } else if (t != cas.transition && effet > 0) {
            c.forme.emplace_back(t, effet);
        }
    }
    return c;
}

}  // namespace

Contrainte coupe(const Cas& cas, const std::vector<const Contrainte*>& enVigueur, std::size_t transitions) {
    Large constante = 0;
    std::vector<Large> forme(transitions, 0);
    for (const auto& [i, y] : cas.multiplicateurs) {
        ajouter(constante, y, enVigueur[i]->constante);
        for (const auto& [t, c] : enVigueur[i]->forme) ajouter(forme[t], y, c);
    }
    Contrainte resultat{plancher(constante, cas.facteur), {}};
    for (std::uint32_t t = 0; t < transitions; ++t)
        if (const Large c = -plancher(-forme[t], cas.facteur); c != 0) resultat.forme.emplace_back(t, c);
    return resultat;
}

bool touche(const Creux& cote, const std::vector<bool>& places) {
    return std::ranges::any_of(cote, [&places](const Poids& p) { return places[p.place]; });
}

Contrainte etat(const Net& net, std::uint32_t place) {
    Contrainte c{net.initial[place], {}};
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        if (const Compte e = valeur(net.transitions[t].effet, place); e != 0) c.forme.emplace_back(t, e);
    return c;
}

/// What takes the token elsewhere has been fired, what keeps it in `u` has not; what leaves the token alone may have
/// been, so that only what it puts counts. The transition that enters has taken and not yet put.
Contrainte entree(const Net& net, const Jeton& jeton, const std::vector<bool>& u, std::uint32_t place) {
    Contrainte c{net.initial[place], {}};
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        const Transition& tr = net.transitions[t];
        Compte e = valeur(tr.effet, place);
        if (jeton.de(t) == Jeton::NULLE_PART)
            e = std::max<Compte>(e, 0);
        else if (u[jeton.de(t)])
            e = 0;
        else if (u[jeton.vers(t)])
            e = -valeur(tr.pre, place);
        if (e != 0) c.forme.emplace_back(t, e);
    }
    return c;
}

namespace {

/// The first case of two.
std::vector<Contrainte> premierCas(const Net& net, const Jeton* jeton, const Cas& cas) {
    if (cas.genre == Cas::SEUIL) return {auPlus({0, {{cas.transition, 1}}}, cas.seuil)};
    if (cas.genre == Cas::NIVEAU) return {auPlus(etat(net, cas.places[0]), cas.seuil)};
    if (cas.genre == Cas::PREMIER || cas.genre == Cas::DERNIER) return {auPlus({0, {{cas.transition, 1}}}, 0)};
    const std::vector<bool> dedans = ensemble(net, cas.places);
    std::vector<Contrainte> contraintes;
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        if (cas.genre == Cas::ENTREE ? touche(net.transitions[t].pre, dedans) : quitte(*jeton, dedans, t))
            contraintes.push_back({0, {{t, -1}}});
    for (const std::uint32_t p : cas.bornees) contraintes.push_back(entree(net, *jeton, dedans, p));
    return contraintes;
}

std::vector<Contrainte> secondCas(const Net& net, const Jeton* jeton, const Cas& cas) {
    if (cas.genre == Cas::SEUIL) return {auMoins({0, {{cas.transition, 1}}}, cas.seuil)};
    if (cas.genre == Cas::NIVEAU) return {auMoins(etat(net, cas.places[0]), cas.seuil)};
    if (cas.genre == Cas::PREMIER || cas.genre == Cas::DERNIER)
        return {auMoins({0, {{cas.transition, 1}}}, 0), aLInstant(net, cas)};
    const std::vector<bool> dedans = ensemble(net, cas.places);
    Contrainte contrainte{-1, {}};
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        const Transition& tr = net.transitions[t];
        if (cas.genre == Cas::ENTREE ? !touche(tr.pre, dedans) && touche(tr.post, dedans) : quitte(*jeton, dedans, t))
            contrainte.forme.emplace_back(t, 1);
    }
    return {contrainte};
}

/// The sum of the places at two moments, each less what is needed then, at the most.
Contrainte auxMoments(const Net& net, Cas::Evenement premier, Cas::Evenement second, const Multiplicateurs& tot,
                      const Multiplicateurs& tard) {
    Contrainte c;
    std::vector<Large> poids[2];
    for (const bool plusTard : {false, true}) {
        std::vector<Large>& y = poids[plusTard ? 1 : 0];
        y.resize(net.places.size(), 0);
        for (const auto& [p, n] : plusTard ? tard : tot) {
            y[p] = n;
            ajouter(c.constante, n, net.initial[p]);
        }
        for (const Poids& b : net.transitions[(plusTard ? second : premier).transition].pre)
            ajouter(c.constante, -y[b.place], b.compte);
    }
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        Large tous = 0;   // what a firing before the earlier moment adds,
        Large entre = 0;  // and one between the two
        for (const Poids& e : net.transitions[t].effet) {
            ajouter(tous, poids[0][e.place], e.compte);
            ajouter(entre, poids[1][e.place], e.compte);
        }
        const Large avant = tous;
        ajouter(tous, 1, entre);
        Large coefficient = 0;
        if (t == premier.transition && premier.dernier) {  // before the earlier moment, all but one; then the last
            coefficient = tous;
            ajouter(c.constante, -1, avant);
        } else if (t == premier.transition) {  // its first one comes between the two
            coefficient = std::max<Large>(entre, 0);
            ajouter(c.constante, 1, std::min<Large>(entre, 0));
        } else if (t == second.transition && second.dernier) {  // before the later moment all but one
            coefficient = std::max(tous, entre);
            ajouter(c.constante, -1, coefficient);
        } else if (t != second.transition) {
            coefficient = std::max<Large>({0, entre, tous});
        }
        if (coefficient != 0) c.forme.emplace_back(t, coefficient);
    }
    return c;
}

std::vector<std::vector<Contrainte>> lesDeuxOrdres(const Net& net, const Cas& cas) {
    const auto [a, b] = std::pair(cas.evenements[0], cas.evenements[1]);
    const Contrainte tireA = auMoins({0, {{a.transition, 1}}}, 0);
    const Contrainte tireB = auMoins({0, {{b.transition, 1}}}, 0);
    return {{auPlus({0, {{a.transition, 1}}}, 0)},
            {auPlus({0, {{b.transition, 1}}}, 0)},
            {tireA, tireB, auxMoments(net, a, b, cas.moments[0], cas.moments[1])},
            {tireA, tireB, auxMoments(net, b, a, cas.moments[2], cas.moments[3])}};
}

}  // namespace

std::vector<std::vector<Contrainte>> distinguer(const Net& net, const Jeton* jeton, const Cas& cas) {
    if (cas.genre == Cas::ORDRE) return lesDeuxOrdres(net, cas);
    return {premierCas(net, jeton, cas), secondCas(net, jeton, cas)};
}

}  // namespace Reseau
