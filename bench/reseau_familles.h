// The nets on which analysers of coverability are measured in the literature, as families that grow with a parameter n,
// and models of the editor's shape.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "Reseau/Net.h"

namespace familles {

struct Famille {
    std::string nom;
    Reseau::Net (*net)(int n);
    std::vector<int> parametres;
};

/// 15 to 95 places, 30 to 100 transitions, up to four arcs a transition.
Reseau::Net auHasard(int places, int graine);

/// 50 to 100 places, 50 to 100 transitions, each with up to ten places.
Reseau::Net dense(int graine);

/// What the rules of a random model do: turn molecules into later kinds only, put no more than they take, or anything.
enum class Genre { ETAGE, ECONOME, LIBRE };

/// A model as the editor translates it, with up to 10^9 molecules of a kind. The same arguments give the same net.
/// @param jetons of each kind that is present at the start, in place of a random number
Reseau::Net modeleAuHasard(Genre genre, int noeuds, int molecules, std::uint64_t graine,
                           std::optional<Reseau::Compte> jetons = std::nullopt);

/// Random models with the same kind of rules and the same number of nodes, as many as one likes.
struct Serie {
    Genre genre;
    std::string regles;  ///< what they put
    int noeuds;
    Reseau::Net net(int i) const;
};
const std::vector<Serie>& series();

/// Writes a net in the analyser's format.
void ecrire(std::ostream& out, const Reseau::Net& net);

/// All families, each with the parameters of the table; "model A/B" has A nodes, B kinds of molecules, and n of each.
const std::vector<Famille>& toutes();

}  // namespace familles
