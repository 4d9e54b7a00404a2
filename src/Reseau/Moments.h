// Two firings of a solution that can come in neither order. What each of them needs is there at its moment, and what is
// fired before the earlier one is fired before the later one, too: linear programs, one for each order, over the
// firings before the one moment and between the two. Where neither has a solution, the counts are no run's, although
// each firing for itself may be in its place.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Contrainte.h"
#include "Reseau/Net.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

class Moments {
public:
    using Paire = std::pair<Cas::Evenement, Cas::Evenement>;

    /// @param net, etats (the state equation of each place), travail (see Simplexe) must outlive it
    /// @param comptes what is fired in all
    /// @throws Abandon
    Moments(const Net& net, const std::vector<Contrainte>& etats, const std::vector<Compte>& comptes,
            std::uint64_t* travail);

    /// @return the distinction of the two orders, which the counts contradict in both; if they do
    /// @throws Abandon
    std::optional<Cas> contredire(const Paire& paire) const;

    /// The pairs that may be worth it, those first that need more than a control token. Each is of two transitions.
    std::vector<Paire> paires() const;

private:
    Simplexe::Forme avant(std::uint32_t place, bool second) const;
    std::optional<std::vector<Multiplicateurs>> impossible(Cas::Evenement premier, Cas::Evenement second) const;

    const Net& net_;
    const std::vector<Contrainte>& etats_;
    const std::vector<Compte>& comptes_;
    std::vector<std::uint32_t> tirees_;   // the transitions that are fired; the variables are the firings of each
                                          // before the first moment, and then those between the two
    std::vector<std::uint32_t> numeros_;  // in `tirees_`, by transition
    std::vector<std::uint32_t> places_;   // that they change
    Simplexe programme_;                  // what holds whatever the moments: no place is below zero at either
};

}  // namespace Reseau
