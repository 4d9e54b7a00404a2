// Upper bounds that do not depend on how much there is of what there is much of. Places that hold many tokens at the
// start are taken for unbounded; what the net can reach then is more than what it can, and its coverability set, which
// is small where the large counts alone made it large, bounds the other places: those of the control token first, and
// the counts that stay small. It is closed under firing like any coverability set, and so it is a proof.
//
// First everything counts as much that more than one token is there of, then less and less, as long as the set can be
// completed. Each set lies below the one before it.
//
// A path to a bound is turned into a run of the net itself: from its end backwards, what each acceleration has to raise
// tells how often it is repeated, and the run can be fired where the initial marking holds what that needs in all.
//
// Source: P. Cousot, R. Cousot, "Abstract interpretation: a unified lattice model for static analysis of programs",
// POPL (1977), for abstractions made finer; P. Ganty, J.-F. Raskin, L. Van Begin, "A complete abstract interpretation
// framework for coverability properties of WSTS", VMCAI (2006), for these of Petri nets.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Reseau/Course.h"
#include "Reseau/Couverture.h"
#include "Reseau/Net.h"

namespace Reseau {

class Abondance {
public:
    /// @param net must outlive it
    explicit Abondance(const Net& net);

    /// Takes less and less for unbounded, as long as a set is complete after `limite` expanded markings.
    /// @throws Debordement, std::bad_alloc
    void approfondir(std::uint64_t limite);

    /// What no reachable marking exceeds, by place; OMEGA where nothing is known.
    const std::vector<Compte>& majorants() const { return majorants_; }
    /// A run that ends with majorants()[place] tokens in `place`, if its path can be gone.
    std::optional<Course> course(std::uint32_t place) const;
    /// Markings expanded.
    std::uint64_t explores() const;
    /// Calls f(marking) for each marking of the set that shows the bounds.
    void pourChaque(const std::function<void(const Creux&)>& f) const;

private:
    /// The abstractions of what follows one of the ways to begin.
    struct Echelle {
        Course debut;
        std::vector<Compte> marquage;         // after it
        std::vector<Compte> seuils;           // counts that are still to be taken for many, the least last
        std::unique_ptr<Couverture> enCours;  // by the last of them
        std::unique_ptr<Couverture> complete;
        std::uint64_t explores = 0;  // markings expanded for those that were completed
    };

    void descendre(Echelle& echelle, std::uint64_t limite) const;
    void majorer();

    const Net& net_;
    bool parDeparts_;
    std::vector<Echelle> echelles_;
    std::vector<Compte> majorants_;
};

}  // namespace Reseau
