// The net analyser as a library: a net in, the exact answers out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

struct Options {
    bool verdictSeul = false;  ///< only whether the net is bounded; ends at the first proof
    bool preuves = false;      ///< with a certificate
    std::uint64_t essai =
        1000;  ///< markings expanded before the state equation is asked; any number gives the same bounds
    unsigned fils =
        0;  ///< threads that may take part, 0 for as many as there are cores; any number gives the same report
};

struct Rapport {
    bool bornee = true;
    /// The largest count of each place, OMEGA when there is none. Empty when only the verdict was asked.
    std::vector<Compte> bornes;
    /// Markings of the coverability set in which, together, every place reaches its bound. Empty as `bornes`.
    std::vector<Creux> marquages;
    std::string certificat;      ///< lines of the form told in Certificat.h, when asked
    std::uint64_t explores = 0;  ///< markings expanded
};

/// Decides boundedness and the largest count of every place.
/// @throws Debordement when a count leaves 64 bits, std::bad_alloc
Rapport analyser(const Net& net, const Options& options);

}  // namespace Reseau
