// More yardsticks: constructions of the minimal coverability set as their papers tell them, with dense markings and
// lists that are searched from end to end. They share nothing with the analyser but the net, nor do they share one
// another's way of pruning. Each takes its frontier in one of the orders that its paper measures.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Reseau/Net.h"

namespace etalon {

/// A count for each place.
using Dense = std::vector<Reseau::Compte>;

/// Which vertex is expanded next: the oldest, the latest, or the one with the most omegas, then the most tokens, and
/// then the latest.
enum class Ordre { LARGEUR, PROFONDEUR, JETONS };

struct Construction {
    std::vector<Dense> maximaux;    ///< the minimal coverability set, ascending
    std::uint64_t explores = 0;     ///< vertices of which successors were asked for, each as often as that began anew
    std::uint64_t successeurs = 0;  ///< successors worked out, whether or not they became vertices
};

/// A. Finkel, S. Haddad, I. Khmelnitsky, "Commodification of accelerations for the Karp and Miller construction",
/// DEDS 31 (2021): a tree that is kept trimmed, with accelerations as objects that outlive the vertices where they were
/// found. Their preconditions are not cut off at the astronomical bound of the paper's proof.
/// @return nothing when more than `limite` successors are worked out
std::optional<Construction> minCov(const Reseau::Net& net, Ordre ordre, std::uint64_t limite);

/// A. Valmari, H. Hansen, "Old and new algorithms for minimal coverability sets", Fundamenta Informaticae 131 (2014):
/// nothing is pruned but what is covered itself, and a marking that is reached again has the histories of both ways.
/// @return as `minCov`
std::optional<Construction> fusionDHistoires(const Reseau::Net& net, Ordre ordre, std::uint64_t limite);

/// P.-A. Reynier, F. Servais, "Minimal coverability set for Petri nets: Karp and Miller algorithm with pruning",
/// Fundamenta Informaticae 122 (2013): Karp and Miller's tree, in which a vertex that is covered is deactivated with
/// its descendants, unless it is an inactive ancestor of what covers it.
/// @return as `minCov`
std::optional<Construction> elagageMonotone(const Reseau::Net& net, Ordre ordre, std::uint64_t limite);

struct Publiee {
    std::string nom;
    std::optional<Construction> (*construire)(const Reseau::Net& net, Ordre ordre, std::uint64_t limite);
    std::vector<Ordre> ordres;
};
const std::vector<Publiee>& publiees();

}  // namespace etalon
