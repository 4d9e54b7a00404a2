// Upper bounds from the state equation, with proofs. A reachable marking is M0 + C x for the vector x of firing counts,
// so the largest value of a place over all integers x >= 0 with M0 + C x >= 0 bounds it. The linear relaxation is
// solved exactly, and where its solution is not the count vector of any run, cases are distinguished that every run
// falls into (see Cas.h). The case that promises most is always looked at first, so that the first one whose solution
// is free of contradictions is the best that there is; the runs are looked for there. Counts are integers, so what
// follows from the constraints is rounded where that lowers the bound (see Simplexe.h).
//
// Sources: T. Murata, "Petri nets: properties, analysis and applications", Proc. IEEE 77 (1989), for the state
// equation; A. H. Land, A. G. Doig, "An automatic method of solving discrete programming problems", Econometrica 28
// (1960), for thresholds and levels; J. Esparza, S. Melzer, "Verification of safety properties using integer
// programming", FMSD 16 (2000), for refining the state equation by what it does not see.
#pragma once

#include <cstdint>
#include <optional>
#include <queue>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Contrainte.h"
#include "Reseau/Jeton.h"
#include "Reseau/Moments.h"
#include "Reseau/Net.h"
#include "Reseau/Promenade.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

class Tireur;

struct Majoration {
    Large borne;  ///< no reachable marking holds more in the asked places together
    std::vector<Cas> preuve;
    std::vector<std::uint32_t> passages;  ///< when it is of the net unfolded by these transitions (see Depliage.h)
};

class Majorants {
public:
    /// @param net must outlive it
    explicit Majorants(const Net& net);

    /// Whether the net is small enough for a dense program.
    static bool possible(const Net& net);

    /// Bounds the sum of `places`. Cases are distinguished until the bound is `minorant`, or the search has cost too
    /// much; the firing counts of every solution are handed to `tireur`, when there is one, whose minorant of a single
    /// asked place counts.
    /// Of several places of the control token it looks for a run that marks any one.
    /// @return nothing when the state equation gives no bound
    /// @param effort how much it may cost; each step means four times as much as the one below
    /// @param depense what it has cost is added here, in entries of the program rewritten
    std::optional<Majoration> majorer(const std::vector<std::uint32_t>& places, Large minorant, Tireur* tireur,
                                      unsigned effort, std::uint64_t& depense);

    const std::optional<Jeton>& jeton() const { return jeton_; }

    /// What it costs to set up the program.
    static std::uint64_t construction(const Net& net);
    /// What one question may cost.
    static std::uint64_t travail(unsigned effort);

private:
    struct Noeud;
    struct Question;

    std::optional<Majoration> parInvariant(std::uint32_t place, Large minorant) const;
    void retenir(const Question& q);
    void chercher(Question& q);
    std::optional<Cas> approfondir(Question& q, std::uint32_t numero, const Simplexe& s);
    void ouvrir(Question& q, std::uint32_t parent, std::vector<Contrainte> contraintes);
    void payer() const;
    bool resoudre(Question& q, std::uint32_t numero);
    std::vector<const Contrainte*> enVigueur(const Question& q, std::uint32_t numero) const;
    bool traiter(Question& q, std::uint32_t numero);
    void pomper(const Simplexe& s, const Question& q);
    std::optional<std::vector<Compte>> leLongDuRayon(const Simplexe& s, Large fois) const;
    std::optional<std::vector<Compte>> boucle(std::uint32_t place) const;
    std::optional<std::vector<Compte>> entiers(const Simplexe& s) const;
    void tourner(const Question& q, const std::vector<Compte>& tour);
    std::optional<Cas> depart(const Noeud& noeud) const;
    std::optional<Cas> contradiction(const Simplexe& s, bool infinie) const;
    std::vector<std::uint32_t> jamaisEntre(const std::vector<bool>& tirees) const;
    std::optional<Cas> jamaisQuitte(const Simplexe& s, const std::vector<bool>& tirees) const;
    std::optional<Cas> fraction(const Simplexe& s) const;
    std::optional<Cas> arrondi(const Simplexe& s) const;
    std::optional<Cas> tropTot(const Simplexe& s, bool infinie) const;
    std::optional<Cas> horsDOrdre(const Simplexe& s);
    std::optional<Cas> instant(const std::vector<Compte>& comptes, std::uint32_t t, Cas::Genre genre) const;
    std::optional<Simplexe> entier(Simplexe s) const;
    std::optional<Cas> finDuJeton(const Simplexe& s) const;
    std::optional<Simplexe> moindresTirs(const Simplexe& s, const Question& q) const;
    void courir(const Question& q, const std::vector<Compte>& comptes, std::uint32_t place, Compte but, bool patient);
    bool unSeulJeton(const std::vector<std::uint32_t>& places) const;
    bool realiser(const Simplexe& s, Question& q, bool patient = false);
    Cas clore(const Simplexe& s, Simplexe::Issue issue) const;
    void rediger(const Question& q, std::uint32_t numero, Large borne, std::vector<Cas>& preuve) const;

    const Net& net_;
    const std::optional<Jeton> jeton_;
    std::vector<std::uint32_t> departs_;  // the ways to begin, where there are several
    std::optional<Promenade> promenade_;  // when every transition moves the token
    mutable std::uint64_t travail_ = 0;
    std::uint64_t travailDesPaires_ = 0;
    std::vector<Moments::Paire> paires_;   // that have contradicted a solution, the latest first
    const std::vector<Contrainte> etats_;  // the state equation of each place
    // Each question starts here, from "nothing is fired": solutions without needless firings are the easier ones to
    // turn into runs, and the dictionary is at its sparsest.
    const Simplexe initial_;
    // Bounds without cases, each with the place that it was found for; they bound other places, too.
    std::vector<std::pair<std::uint32_t, Cas>> invariants_;
};

}  // namespace Reseau
