#include "Reseau/Separation.h"

#include <algorithm>
#include <utility>

#include "Reseau/Boucle.h"
#include "Reseau/Solution.h"

namespace Reseau {

namespace {

constexpr std::uint64_t PART_DU_TRAVAIL = 8;            // of the work that one search of a run may take
constexpr std::uint64_t PART_DES_BOUCLES = 2;           // that one way around may take, with the runs to it
constexpr std::uint64_t PART_DES_PAIRES = 4;            // of the work that one search of an order may take
constexpr std::uint64_t CASES_EN_MEMOIRE = 10'000'000;  // of the dictionaries of all open cases
constexpr std::size_t COUPES = 40;                      // on the way to one case

}  // namespace

Separation::Separation(const Equation& equation, Contradictions& contradictions,
                       const std::vector<std::uint32_t>& departs, const Question& question)
    : equation_(equation),
      contradictions_(contradictions),
      departs_(departs),
      question_(question),
      minorant_(question.minorant) {
    for (const std::uint32_t p : question.places) forme_.emplace_back(equation.marquage(p), 1);
    if (question.tireur != nullptr)
        realisation_.emplace(equation, question.places, *question.tireur, question.travail / PART_DU_TRAVAIL);
}

void Separation::chercher() {
    noeuds_.emplace_back();
    try {
        if (boucler(equation_.programme)) return;
        poserLaRacine();
        while (!finie()) {
            const auto [borne, numero] = ouverts_.top();
            ouverts_.pop();
            if (!resoudre(numero)) continue;
            if (!traiter(numero)) plafond_ = std::max(plafond_, borne);
            noeuds_[numero].programme.reset();
        }
    } catch (const Abandon&) {
        plafond_ = std::max(plafond_, noeuds_[0].borne);
    }
}

std::optional<Large> Separation::borne() const {
    const Large borne = std::max(plafond_, ouverts_.empty() ? Large{-1} : ouverts_.top().first);
    return borne == INFINI ? std::nullopt : std::optional(borne);
}

std::vector<Cas> Separation::preuve(Large borne) const {
    std::vector<Cas> preuve;
    rediger(0, borne, preuve);
    return preuve;
}

std::optional<Cas> Separation::invariant() const {
    const Noeud& racine = noeuds_[0];
    if (racine.borne == INFINI || racine.fermeture.facteur == 0) return std::nullopt;
    return racine.fermeture;
}

void Separation::poserLaRacine() {
    Noeud& racine = noeuds_[0];
    auto programme = std::make_shared<Simplexe>(equation_.programme);
    const Simplexe::Issue issue = programme->maximiser(forme_);
    if (issue == Simplexe::Issue::OPTIMUM) {
        racine.borne = programme->optimum().plancher();
        racine.fermeture = clore(*programme, issue);
    }
    racine.programme = std::move(programme);
    racine.resolue = true;
    ouverts_.emplace(racine.borne, 0);
}

bool Separation::finie() const {
    if (ouverts_.empty()) return true;
    const Large borne = ouverts_.top().first;
    return borne <= minorant_ || borne < plafond_ || noeuds_.size() >= question_.noeuds ||
           (ouverts_.size() + 1) * Equation::cases(equation_.net) > CASES_EN_MEMOIRE || *equation_.travail == 0;
}

/// Works out the bound of a case. One that cannot be worked out keeps its parent's.
/// @return whether it is still what the search should go on with
bool Separation::resoudre(std::uint32_t numero) {
    Noeud& noeud = noeuds_[numero];
    if (noeud.resolue) return true;
    noeud.resolue = true;
    const Large avant = noeud.borne;
    try {
        auto programme = std::make_shared<Simplexe>(*noeud.programme);
        noeud.programme.reset();
        for (const Contrainte& c : noeud.contraintes) programme->contraindre(c.constante, c.forme);
        const Simplexe::Issue issue = avant == INFINI ? programme->maximiser(forme_) : programme->reoptimiser();
        if (issue == Simplexe::Issue::OPTIMUM)
            noeud.borne = programme->optimum().plancher();
        else if (issue == Simplexe::Issue::IMPOSSIBLE)
            noeud.borne = -1;
        if (issue != Simplexe::Issue::INFINI) noeud.fermeture = clore(*programme, issue);
        if (issue == Simplexe::Issue::IMPOSSIBLE) return false;
        noeud.programme = std::move(programme);
        if (noeud.borne == avant) return true;
        ouverts_.emplace(noeud.borne, numero);
    } catch (const Abandon&) {
        plafond_ = std::max(plafond_, avant);
    }
    return false;
}

/// Writes down why a case is closed.
Cas Separation::clore(const Simplexe& s, Simplexe::Issue issue) const {
    Cas cas;
    cas.facteur = issue == Simplexe::Issue::OPTIMUM ? s.optimum().denominateur : 0;
    cas.total = s.optimum().numerateur;
    cas.multiplicateurs = equation_.desContraintes(s.multiplicateurs());
    return cas;
}

/// Refines an open case.
/// @return false when its solution contradicts nothing that is known here, so that it stays as it is
bool Separation::traiter(std::uint32_t numero) {
    const std::shared_ptr<const Simplexe> programme = noeuds_[numero].programme;
    std::optional<Cas> cas = depart(noeuds_[numero]);
    if (!cas) cas = noeuds_[numero].borne == INFINI ? surUnRayon(numero, *programme) : approfondir(numero, *programme);
    if (!cas) return false;
    separer(numero, std::move(*cas));
    return true;
}

/// The next way to begin: this one, or another one.
std::optional<Cas> Separation::depart(const Noeud& noeud) const {
    if (noeud.commencee || noeud.departs == departs_.size()) return std::nullopt;
    Cas cas;
    cas.genre = Cas::SEUIL;
    cas.transition = departs_[noeud.departs];
    return cas;
}

/// Looks for a way of the token around that adds to several places together, and for a run that goes it; or for weights
/// that show that there is none. The sum of the token's own places does not grow.
/// @return whether one of them is found, which answers the question
bool Separation::boucler(const Simplexe& s) {
    if (question_.places.size() < 2 || !realisation_ || !realisation_->parPromenade()) return false;
    if (std::ranges::includes(equation_.jeton->places(), question_.places)) return false;
    const std::uint64_t reserve = *equation_.travail - *equation_.travail / PART_DES_BOUCLES;
    *equation_.travail -= reserve;
    Boucle trouvee = boucle(equation_, question_.places);
    const bool bornee = trouvee.borne.has_value();
    if (bornee) {
        plafond_ = noeuds_[0].borne = plancher(trouvee.borne->total, trouvee.borne->facteur);
        noeuds_[0].fermeture = std::move(*trouvee.borne);
    }
    const bool pompee = trouvee.tour && realisation_->boucler(s, *trouvee.tour);
    if (pompee) plafond_ = INFINI;
    *equation_.travail += reserve;
    return bornee || pompee;
}

/// The distinction to go on with where there is no largest value, and no pump to show it.
std::optional<Cas> Separation::surUnRayon(std::uint32_t numero, const Simplexe& s) {
    if (!std::exchange(noeuds_[numero].bouclee, true) && boucler(s)) return std::nullopt;
    if (auto cas = contradictions_.horsDAtteinte(s, true)) return cas;
    if (!realisation_ || realisation_->pomper(s)) return std::nullopt;
    return contradictions_.tropTot(s, true);
}

/// Looks for a run where there is a largest value.
/// @return the distinction to go on with when none reaches its bound; or nothing
std::optional<Cas> Separation::approfondir(std::uint32_t numero, const Simplexe& s) {
    const Noeud& noeud = noeuds_[numero];
    const std::optional<Simplexe> moindre = realisation_ ? moindresTirs(equation_, s, forme_) : std::nullopt;
    if (auto cas = contradictions_.horsDAtteinte(moindre ? *moindre : s, false)) return cas;
    if (realisation_ && !realisation_->parPromenade()) realiser(moindre ? *moindre : s, false);
    if (noeud.borne <= minorant_) return std::nullopt;
    if (const auto rond = moindre ? enEntiers(equation_, *moindre) : std::nullopt) {
        if (auto cas = contradictions_.horsDAtteinte(*rond, false)) return cas;
        if (realisation_->parPromenade()) realiser(*rond, false);
        if (noeud.borne <= minorant_) return std::nullopt;
        if (auto cas = contradictions_.tropTot(*rond, false)) return cas;
        if (auto cas = contradictions_.horsDOrdre(*rond, question_.travail / PART_DES_PAIRES)) return cas;
        if (realisation_->parPromenade()) realiser(*rond, true);
        if (noeud.borne <= minorant_) return std::nullopt;
    }
    return ensuite(noeud, s, moindre);
}

/// What is left to distinguish when no run and no contradiction has been found.
std::optional<Cas> Separation::ensuite(const Noeud& noeud, const Simplexe& s,
                                       const std::optional<Simplexe>& moindre) const {
    if (noeud.coupes < COUPES)
        if (auto cas = contradictions_.arrondi(s)) return cas;
    if (auto cas = contradictions_.fraction(s)) return cas;
    if (moindre)
        if (auto cas = contradictions_.fraction(*moindre)) return cas;
    if (noeud.finie) return std::nullopt;
    return contradictions_.finDuJeton(moindre ? *moindre : s);
}

void Separation::realiser(const Simplexe& s, bool patient) {
    minorant_ = std::max<Large>(minorant_, realisation_->realiser(s, patient));
}

/// Opens the cases of a distinction.
void Separation::separer(std::uint32_t numero, Cas cas) {
    const auto premier = static_cast<std::uint32_t>(noeuds_.size());
    noeuds_[numero].premier = premier;
    if (cas.genre == Cas::COUPE) {
        ouvrir(numero, {coupe(cas, enVigueur(numero), equation_.transitions())});
        ++noeuds_.back().coupes;
    } else {
        const Jeton* jeton = equation_.jeton ? &*equation_.jeton : nullptr;
        for (std::vector<Contrainte>& contraintes : distinguer(equation_.net, jeton, cas))
            ouvrir(numero, std::move(contraintes));
    }
    // In the second case the token ends where the solution says.
    if (cas.genre == Cas::NIVEAU) noeuds_.back().finie = true;
    if (!noeuds_[numero].commencee && noeuds_[numero].departs < departs_.size()) {
        ++noeuds_[premier].departs;
        noeuds_.back().commencee = true;
    }
    noeuds_[numero].distinction = std::move(cas);
}

/// Adds a case of `parent`, with its parent's bound until its turn comes.
void Separation::ouvrir(std::uint32_t parent, std::vector<Contrainte> contraintes) {
    const auto numero = static_cast<std::uint32_t>(noeuds_.size());
    const Noeud& de = noeuds_[parent];
    Noeud noeud;
    noeud.borne = de.borne;
    noeud.fermeture = de.fermeture;
    noeud.programme = de.programme;
    noeud.parent = parent;
    noeud.contraintes = std::move(contraintes);
    noeud.coupes = de.coupes;
    noeud.departs = de.departs;
    noeud.commencee = de.commencee;
    noeud.bouclee = de.bouclee;
    noeud.finie = de.finie;
    ouverts_.emplace(noeud.borne, numero);
    noeuds_.push_back(std::move(noeud));
}

/// The constraints in force, in the order of their variables: of the places, then of the cases from the root down.
std::vector<const Contrainte*> Separation::enVigueur(std::uint32_t numero) const {
    std::vector<std::uint32_t> lignee;
    for (; numero != 0; numero = noeuds_[numero].parent) lignee.push_back(numero);
    std::vector<const Contrainte*> resultat;
    for (const Contrainte& c : equation_.etats) resultat.push_back(&c);
    for (auto n = lignee.rbegin(); n != lignee.rend(); ++n)
        for (const Contrainte& c : noeuds_[*n].contraintes) resultat.push_back(&c);
    return resultat;
}

/// Writes down the proof that a case holds no more than `borne`: its own, or else that of its cases.
void Separation::rediger(std::uint32_t numero, Large borne, std::vector<Cas>& preuve) const {
    const Noeud& noeud = noeuds_[numero];
    if (noeud.borne <= borne || !noeud.distinction) {
        preuve.push_back(noeud.fermeture);
        return;
    }
    preuve.push_back(*noeud.distinction);
    for (std::uint32_t i = 0; i < noeud.distinction->suites(); ++i) rediger(noeud.premier + i, borne, preuve);
}

}  // namespace Reseau
