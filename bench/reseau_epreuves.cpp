#include "reseau_epreuves.h"

#include <cstdint>

#include "Reseau/Simplexe.h"
#include "reseau_familles.h"

namespace familles {

namespace {

/// Whether no initial marking makes the net unbounded: some weights 1 + y of the places are raised by no transition.
/// What is too much to work out is taken for it and left out.
bool structurellementBorne(const Reseau::Net& net) {
    std::uint64_t travail = 100'000'000;
    Reseau::Simplexe s(static_cast<std::uint32_t>(net.places.size()), &travail);
    for (const Reseau::Transition& t : net.transitions) {
        Reseau::Large constante = 0;
        Reseau::Simplexe::Forme forme;
        for (const Reseau::Poids& e : t.effet) {
            constante -= e.compte;
            forme.emplace_back(e.place, -e.compte);
        }
        s.contraindre(constante, forme);
    }
    try {
        return s.maximiser({}) == Reseau::Simplexe::Issue::OPTIMUM;
    } catch (const Reseau::Abandon&) {
        return true;
    }
}

}  // namespace

bool pourChaqueEpreuve(int graines, const std::function<bool(const Epreuve&)>& f) {
    for (const Famille& famille : toutes())
        for (const int n : famille.parametres)
            if (!f({"families", famille.nom, n, famille.net(n)})) return false;
    for (int places = 15; places <= 95; places += 10)
        for (int graine = 100; graine < 100 + graines; ++graine)
            if (!f({"random", "random", 1000 * graine + places, auHasard(places, graine)})) return false;
    for (int graine = 0, nets = 0; nets < 5 * graines; ++graine) {
        Epreuve epreuve{"dense random", "dense random", graine, dense(graine)};
        if (structurellementBorne(epreuve.net)) continue;
        ++nets;
        if (!f(epreuve)) return false;
    }
    return true;
}

}  // namespace familles
