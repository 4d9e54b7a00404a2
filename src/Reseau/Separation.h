// Branch and bound: the search over the cases for one bound, and its proof. The case that promises most is always
// looked at first, so that the first one whose solution is free of contradictions is the best that there is; the runs
// are looked for there. A case is worked out when its turn comes; until then its parent's bound is its own.
//
// Source: A. H. Land, A. G. Doig, "An automatic method of solving discrete programming problems", Econometrica 28
// (1960).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <queue>
#include <utility>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Contradiction.h"
#include "Reseau/Contrainte.h"
#include "Reseau/Equation.h"
#include "Reseau/Realisation.h"
#include "Reseau/Simplexe.h"
#include "Reseau/Tir.h"

namespace Reseau {

class Separation {
public:
    struct Question {
        const std::vector<std::uint32_t>& places;  ///< whose sum is bounded
        Large minorant;                            ///< no bound below is needed
        Tireur* tireur;                            ///< looks for runs, when there is one, which raise `minorant`
        std::uint64_t travail;                     ///< what it may cost
        std::size_t noeuds;                        ///< how many cases may be looked at
    };

    /// @param departs how runs begin, where there are several ways (see Depart.h)
    Separation(const Equation& equation, Contradictions& contradictions, const std::vector<std::uint32_t>& departs,
               const Question& question);

    /// Distinguishes cases until the bound is as low as is asked for, or cannot be lowered, or has cost too much.
    void chercher();

    /// The bound; nothing when there is none.
    std::optional<Large> borne() const;
    /// The proof of that bound.
    std::vector<Cas> preuve(Large borne) const;
    /// What shows a bound without any cases, if something does: a place invariant.
    std::optional<Cas> invariant() const;

private:
    static constexpr Large INFINI = static_cast<Large>(1) << 126;

    /// A case: how it is closed as it stands, and the distinction that refines it, if there is one.
    struct Noeud {
        Large borne = INFINI;
        Cas fermeture;
        std::optional<Cas> distinction;
        std::uint32_t premier = 0;            // the number of its first case; the second one's is the next
        std::shared_ptr<Simplexe> programme;  // while it is open; its parent's until it is worked out
        bool resolue = false;
        std::uint32_t parent = 0;
        std::vector<Contrainte> contraintes;  // that it adds to its parent's
        std::size_t coupes = 0;               // on the way to it
        std::size_t departs = 0;              // ways to begin that have been tried before
        bool commencee = false;               // whether it is known how it begins
        bool bouclee = false;                 // whether a way of the token around has been looked for
        bool finie = false;                   // whether it is known where the control token ends
    };

    void poserLaRacine();
    bool finie() const;
    bool resoudre(std::uint32_t numero);
    Cas clore(const Simplexe& s, Simplexe::Issue issue) const;
    bool traiter(std::uint32_t numero);
    std::optional<Cas> depart(const Noeud& noeud) const;
    bool boucler(const Simplexe& s);
    std::optional<Cas> surUnRayon(std::uint32_t numero, const Simplexe& s);
    std::optional<Cas> approfondir(std::uint32_t numero, const Simplexe& s);
    std::optional<Cas> ensuite(const Noeud& noeud, const Simplexe& s, const std::optional<Simplexe>& moindre) const;
    void realiser(const Simplexe& s, bool patient);
    void separer(std::uint32_t numero, Cas cas);
    void ouvrir(std::uint32_t parent, std::vector<Contrainte> contraintes);
    std::vector<const Contrainte*> enVigueur(std::uint32_t numero) const;
    void rediger(std::uint32_t numero, Large borne, std::vector<Cas>& preuve) const;

    const Equation& equation_;
    Contradictions& contradictions_;
    const std::vector<std::uint32_t>& departs_;
    const Question question_;
    Simplexe::Forme forme_;                   // what is asked for
    std::optional<Realisation> realisation_;  // where runs are looked for
    Large minorant_;
    std::vector<Noeud> noeuds_;
    std::priority_queue<std::pair<Large, std::uint32_t>> ouverts_;  // by bound; the newest first among equals
    Large plafond_ = -1;  // the largest bound of the cases that are not refined any more
};

}  // namespace Reseau
