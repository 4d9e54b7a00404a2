// From how often to when: turns firing counts, a solution of the state equation, into a run that can really be fired.
//
// Runs are fired in bulk. A block is a short sequence and how many times it is fired in a row; how many times it can be
// is worked out from its need and its effect, so a run of 10^9 firings is a few blocks. Blocks are found on the way: a
// transition that enables itself is one, and so is the end of the trail as soon as it can be repeated.
//
// The search is greedy and may fail; what it finds is a run. The counts it reaches are lower bounds on the places'
// bounds.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Course.h"
#include "Reseau/Net.h"

namespace Reseau {

class Tireur {
public:
    /// @param net must outlive it
    explicit Tireur(const Net& net);

    /// What the searches from here on may cost together, in transitions looked at.
    void accorder(std::uint64_t travail) { travail_ = travail; }

    /// Looks for runs that fire each transition t about `comptes[t]` times, until minorants()[place] is `but`.
    void realiser(const std::vector<Compte>& comptes, std::uint32_t place, Compte but);

    /// Takes over a run that another search has found.
    void adopter(Course course);

    /// Remembers that a run has reached counts that do not fit.
    void depasser(const Depassement& depassement);
    /// Whether a run holds more in `place` than fits.
    bool depasse(std::uint32_t place) const { return depassees_[place]; }

    /// The largest count reached so far, by place.
    const std::vector<Compte>& minorants() const { return minorants_; }
    /// Looks for pumps in the last run that has reached something new.
    void pomper();
    /// Looks for pumps in a run that another search has found, whether it reaches something new or not.
    void pomper(Course course);
    /// Takes over a pump in that run: its blocks from `debut` to before `fin`.
    void pomper(std::size_t debut, std::size_t fin);
    /// A part of a run that takes nothing and adds something, so that it can be repeated for ever.
    struct Pompe {
        std::size_t course;
        std::size_t debut;                 // the first of its blocks
        std::size_t fin;                   // the one behind the last
        Creux besoin;                      // what it is gone through from
        std::vector<std::uint32_t> monte;  // the places that it raises
    };
    /// The pumps found; what one raises has the minorant OMEGA.
    const std::vector<Pompe>& pompes() const { return pompes_; }
    /// The number of the pump that raises a place whose minorant is OMEGA.
    std::size_t pompe(std::uint32_t place) const { return origines_[place].pompe; }
    /// What a pump repeats, and the run that leads to it.
    Course cycle(const Pompe& pompe) const;
    Course tige(const Pompe& pompe) const;

    /// Where a run shows what a place can hold: after so many of its blocks, or with the pump there.
    struct Origine {
        std::size_t course;
        std::size_t blocs;
        std::size_t pompe = 0;
        bool operator==(const Origine&) const = default;
    };
    const Origine& origine(std::uint32_t place) const { return origines_[place]; }
    /// A run that ends with minorants()[place] tokens in `place`, or with the pump that raises it.
    Course course(std::uint32_t place) const { return course(origines_[place], 0); }
    /// The blocks of that run from `debut` on.
    Course course(const Origine& origine, std::size_t debut) const;
    /// The marking at the end of a run from the initial marking. It is worked out step by step, not taken from the
    /// search.
    /// @throws std::logic_error when the run cannot be fired, which would be a mistake of the search
    Creux arrivee(const Course& course) const;

private:
    void noter(const Bloc& bloc);
    bool essayer(const std::vector<Compte>& comptes, std::uint64_t graine);
    bool depenser(std::uint64_t travail);
    std::uint32_t choisir(std::uint64_t graine);
    bool laisseUnChemin(std::uint32_t tir);
    std::uint64_t rang(std::uint32_t t, std::uint64_t graine) const;
    void ordonner();
    bool detour(bool deplacements);
    bool tirable(std::uint32_t t, const std::vector<Compte>& m) const;
    void tirer(std::vector<Elan> sequence, Compte fois);
    void prefixer(const Elan& elan);
    Compte repetitions() const;
    void oublier();
    void suivre(const Elan& elan, std::vector<Compte>& m) const;
    bool repeter(bool avide);
    bool repeterFin(std::size_t longueur, Compte minimum);

    const Net& net_;
    std::vector<std::size_t> ordre_;  // by transition
    std::vector<Compte> minorants_;
    std::vector<bool> depassees_;  // by place
    std::vector<Origine> origines_;
    std::vector<Course> courses_;
    std::vector<Pompe> pompes_;
    std::uint64_t travail_ = 0;  // what all calls may still spend together

    // The attempt under way.
    std::vector<Compte> marquage_;
    std::vector<Compte> reste_;   // firings still to be made, by transition
    std::vector<Compte> credit_;  // firings that may be made besides
    std::uint64_t reserve_ = 0;   // what this attempt may still spend
    std::vector<Elan> trace_;
    Course course_;
    std::uint32_t place_ = 0;
    Compte but_ = 0;
    bool progres_ = false;

    // The sequence that is being weighed. `oublier` makes all of it zero again.
    std::vector<Compte> besoin_;   // by place
    std::vector<Compte> effet_;    // by place
    std::vector<Compte> parTour_;  // by transition
    std::vector<std::uint32_t> touchees_;
    std::vector<std::uint32_t> tours_;
};

}  // namespace Reseau
