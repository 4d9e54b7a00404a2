// From a solution of the state equation to runs: one that ends with what a solution promises, one that goes along a ray
// until what can be repeated shows, or one that comes to a way around (see Boucle.h) and goes it. The runs are fired by
// a walk of the control token (see Promenade.h) where every transition moves it, and else by the greedy search (see
// Tir.h), which keeps what is found either way.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Equation.h"
#include "Reseau/Promenade.h"
#include "Reseau/Simplexe.h"
#include "Reseau/Tir.h"

namespace Reseau {

class Realisation {
public:
    /// @param equation, places (that are to be marked) and tireur (which keeps the runs) must outlive it
    /// @param parCourse what one search of a walk may cost
    Realisation(const Equation& equation, const std::vector<std::uint32_t>& places, Tireur& tireur,
                std::uint64_t parCourse);

    /// Whether runs are walks of the token, which need counts in integers.
    bool parPromenade() const { return promenade_.has_value(); }

    /// Looks for a run with the counts of a solution. Of several places it can only look at those of one token, of
    /// which any one will do.
    /// @param patient harder, after it has been tried in vain
    /// @return so many tokens are known to be reached in a place that was looked at
    Compte realiser(const Simplexe& s, bool patient);

    /// There is no largest value: looks for a run that goes along the ray on which it grows, a few times, so that what
    /// can be repeated shows.
    /// @return whether any pump is known now
    bool pomper(const Simplexe& s);

    /// Looks for a run to where the token can go around with these counts, taking nothing and adding something, and
    /// back to where it stood.
    /// @param s a program that has been solved; such a run is to satisfy it
    /// @return whether there is one
    bool boucler(const Simplexe& s, const std::vector<Compte>& tour);

private:
    void suivreLeRayon(const Simplexe& s);
    std::optional<Compte> arrivee(const std::vector<Compte>& comptes, std::uint32_t place) const;
    void courir(const std::vector<Compte>& comptes, std::uint32_t place, Compte but, bool patient);
    std::optional<Course> rassembler(const Simplexe& s, const std::vector<Compte>& tour);
    template <class F>
    void depenser(std::uint64_t part, F&& f);
    bool tourner(const std::vector<Compte>& tour);
    bool tourner(const std::vector<Compte>& tour, const Course& debut, std::uint64_t travail);

    const Equation& equation_;
    const std::vector<std::uint32_t>& places_;
    Tireur& tireur_;
    const std::uint64_t parCourse_;
    std::optional<Promenade> promenade_;
};

}  // namespace Reseau
