// One net, answered: the order in which the means are tried, cheapest first.
//
//   1. `essayer`: a short exploration. Small nets are complete here, and most unbounded ones show it. Then `finir`:
//   2. Sets of places whose tokens never become more: where one holds no more than a place has been seen with, the
//      place is settled.
//   3. Coverability sets in which large counts are unbounded: they settle the places that stay small.
//   4. The state equation: an upper bound for each place that is left, with a proof, and runs fired in bulk that show
//      how much of it can be reached. Where the two meet the place is settled, whatever the number of its tokens.
//   5. The state equation of the net unfolded into two phases.
//   6. Of a net that is not bounded, ways on from where most is unbounded.
//   7. A longer exploration, and 2 to 6 again with more patience for what is left; 4 and 5 a few times only.
//
// The exploration ends when every place that is left has reached its upper bound, or it is complete.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Abondance.h"
#include "Reseau/Composante.h"
#include "Reseau/Couverture.h"
#include "Reseau/Majorant.h"
#include "Reseau/Net.h"
#include "Reseau/Phases.h"
#include "Reseau/Reseau.h"
#include "Reseau/Tir.h"
#include "Reseau/Visite.h"

namespace Reseau {

class Resolution {
public:
    /// @param net must outlive it
    /// @param fils see Options
    Resolution(const Net& net, unsigned fils) : couverture(net, fils), tireur(net), net_(net) {}

    /// The short exploration.
    /// @throws Debordement, std::bad_alloc
    void essayer(const Options& options);
    /// Finds every bound, or when only the verdict is asked whether all are finite.
    /// @throws Debordement, std::bad_alloc
    void finir(const Options& options);

    bool bornee() const { return !couverture.nonBornee() && tireur.pompes().empty(); }
    /// The bound of a place, OMEGA when there is none.
    Compte borne(std::uint32_t place) const;
    /// Whether a run of `tireur` reaches the bound, rather than a marking of `couverture`.
    bool parCourse(std::uint32_t place) const;
    /// Markings expanded.
    std::uint64_t explores() const {
        return couverture.explores() + prolonges_ + (abondance ? abondance->explores() : 0);
    }
    /// A marking that reaches the bound.
    Creux temoin(std::uint32_t place) const;

    Couverture couverture;
    Tireur tireur;
    /// The state equation, once it has been asked.
    std::optional<Majorants> majorants;
    /// The upper bounds found without exploration, by place; each with its proof, those by sets of places only when
    /// proofs are asked for. What has none is bounded by the complete coverability set.
    std::vector<std::optional<Majoration>> majorations;
    /// What is found when large counts are taken for unbounded, once it has been asked.
    std::optional<Abondance> abondance;
    /// Whether a coverability set bounds the place: the complete one, or that of `abondance`.
    bool parEnsemble(std::uint32_t place) const;
    /// When only the verdict was asked: the bound of all places together.
    std::optional<Majoration> ensemble;

private:
    bool reglee(std::uint32_t place) const;
    std::size_t restantes() const;
    std::vector<Compte> bornes() const;
    bool viser();
    bool plafonner();
    void visiterTantQueCaAvance(unsigned tour, bool verdictSeul);
    void majorerParComposantes();
    void visiter(unsigned tour);
    bool prolonger(std::uint64_t limite);
    bool prolongerDe(const Creux& depart, std::uint64_t limite);
    bool chercherComposante(std::uint32_t place, const std::vector<Compte>& vus, std::uint64_t& travail);
    void regler(const Creux& composante);
    bool majorerEnsembleParComposantes();
    std::vector<Creux> couvrirParPlusieurs(const std::vector<Compte>& vus, std::uint64_t& travail);
    bool majorerParAbondance(std::uint64_t limite);
    bool majorer(unsigned effort);
    bool majorerParPhases(unsigned effort);
    void garder(std::uint32_t place, std::optional<Majoration> neuve);
    std::vector<std::uint32_t> parQuestions() const;
    void majorerJeton(unsigned effort, std::uint64_t& depense);
    bool majorerEnsemble(unsigned effort);
    void majorerEnsembleDesOuvertes(unsigned effort);

    const Net& net_;
    bool preuves_ = false;
    std::optional<Composantes> composantes_;  // from `finir` on
    std::optional<Visites> visites_;          // from `finir` on
    std::optional<Phases> phases_;
    bool fini_ = false;
    std::optional<bool> plafonnee_;    // whether `plafonner` has found bounds, once it has looked for them
    std::uint64_t prolonges_ = 0;      // markings expanded to go on from others
    std::vector<unsigned> questions_;  // put to the state equation, by place
};

}  // namespace Reseau
