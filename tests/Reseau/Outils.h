// What the tests of the net analyser share: nets in a form of their own, random ones, a decision of
// coverability that has nothing in common with the analyser, and runs of the program.
#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace essai {

/// A small net written for the tests: dense rows, int counts.
struct Net {
    int places = 0;
    std::vector<int> initial;
    struct Transition {
        std::vector<int> pre;
        std::vector<int> post;
    };
    std::vector<Transition> transitions;
    bool nuls = false;  ///< whether the text holds arcs of weight zero

    /// In the analyser's format, places "p0", "p1", ...; weights 1 with and without "*1"; all weights and counts times
    /// `facteur`.
    std::string texte(long long facteur = 1) const;
};

using Hasard = std::mt19937_64;

/// A number from 0 to n - 1.
inline int tirer(Hasard& h, int n) { return static_cast<int>(h() % static_cast<std::uint64_t>(n)); }

/// A random net of 1 to 5 places and 0 to 6 transitions with weights to 3, sources, sinks, zero weights, self-loops and
/// isolated places, each with and without the others.
Net netAuHasard(Hasard& h);

/// Such a net with places whose changes are multiples of those of others, with needs of their own, and with transitions
/// that do less than others or need more.
Net netRedondantAuHasard(Hasard& h);

/// A random net of the shape of the editor's translations: one control token, molecule counters.
Net netDeReseauAuHasard(Hasard& h);

/// What forward search finds: the exact largest counts when the reachable markings are at most `limite`.
std::optional<std::vector<int>> maximaParRecherche(const Net& net, std::size_t limite);

/// Whether a marking with at least these tokens can be reached: by the backward algorithm on upward closed sets.
/// Nothing when the basis grows beyond `limite`.
std::optional<bool> couvrable(const Net& net, const std::vector<int>& but, std::size_t limite);
/// The same of at least `compte` tokens in `place`.
std::optional<bool> atteint(const Net& net, int place, int compte, std::size_t limite);

struct Resultat {
    int statut;
    std::string sortie;
    std::string erreurs;
};

/// Runs the built analyser through the shell, after the commands `avant`: `tina ARGUMENTS` with this standard
/// input, which stands in the working directory as the file "entree", too.
Resultat lancer(const std::string& arguments, const std::string& entree, const std::string& avant = "");

}  // namespace essai
