// Where the markings that wait to be expanded come from: a tree of nodes that know their parent and the transition that
// was fired there. A node is needed as long as it waits itself or has children that are needed; then its place is used
// again. Where runs are asked for afterwards, nothing is given back.
#pragma once

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

#include "Reseau/Acceleration.h"
#include "Reseau/Blocs.h"
#include "Reseau/Champs.h"

namespace Reseau {

class Arbre {
public:
    static constexpr std::uint32_t AUCUN = ~std::uint32_t{0};

    /// @param champs must outlive it
    explicit Arbre(const Champs& champs) : champs_(&champs), gardes_(champs.octets()) {}

    /// Keeps every node from now on.
    void toutGarder() { toutGarder_ = true; }

    /// Adds a node, which waits.
    /// @param pompes the accelerations applied after the transition
    /// @throws std::bad_alloc
    std::uint32_t ajouter(const Mot* m, std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> pompes);
    /// Adds a node that has come about as `n` has.
    /// @throws std::bad_alloc
    std::uint32_t doubler(std::uint32_t n);
    /// Says that `n` waits no longer: now it can have children.
    void ouvrir(std::uint32_t n) { noeuds_[n].lien = 1; }
    /// Says that `n` is needed for its children only.
    void lacher(std::uint32_t n);
    /// Whether a node that has been opened is still there.
    bool garde(std::uint32_t n) const { return noeuds_[n].lien > 0; }

    std::uint32_t parent(std::uint32_t n) const { return noeuds_[n].parent; }
    std::uint32_t profondeur(std::uint32_t n) const { return noeuds_[n].profondeur; }
    void lire(std::uint32_t n, Mot* m) const { champs_->reprendre(gardes_.en(n), m); }
    /// A link between nodes that wait.
    std::uint32_t& suivant(std::uint32_t n) { return noeuds_[n].lien; }

    /// Appends the steps from `ancetre` (AUCUN: from the start) to `n`, in reverse.
    void remonter(std::uint32_t n, std::uint32_t ancetre, std::vector<Pas>& envers) const;
    /// The run from the initial marking to `n`.
    std::vector<Pas> chemin(std::uint32_t n) const;
    /// @return a node with this marking, or AUCUN
    std::uint32_t chercher(const Mot* m) const;

    /// Goes over to another layout, which must outlive it.
    void convertir(const Champs& champs);

private:
    struct Noeud {
        std::uint32_t parent = AUCUN;
        std::uint32_t tir = AUCUN;
        std::uint32_t profondeur = 0;
        std::uint32_t lien = 0;  // of one that waits, see `suivant`; afterwards its children, and one until `lacher`
    };

    const Champs* champs_;
    std::deque<Noeud> noeuds_;
    Blocs gardes_;  // their markings
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> pompes_;
    std::uint32_t libre_ = AUCUN;  // places to be used again, chained by `parent`
    bool toutGarder_ = false;
};

/// The way from the root to one node, at hand for comparisons; going on to a near node costs little.
class Lignee {
public:
    /// Goes to the open node `n`, which is its last.
    void suivre(const Arbre& arbre, const Champs& champs, std::uint32_t n);
    std::uint32_t profondeur() const { return static_cast<std::uint32_t>(noeuds_.size() - 1); }
    std::uint32_t noeud(std::uint32_t profondeur) const { return noeuds_[profondeur]; }
    const Mot* mots(std::uint32_t profondeur) const { return &mots_[profondeur * pas_]; }
    /// Forgets the nodes that are no longer there.
    void elaguer(const Arbre& arbre) {
        while (!noeuds_.empty() && !arbre.garde(noeuds_.back())) noeuds_.pop_back();
    }
    void convertir(const Champs& de, const Champs& vers);

private:
    std::vector<std::uint32_t> noeuds_;
    std::vector<Mot> mots_;
    std::size_t pas_ = 0;
    std::vector<std::uint32_t> montee_;
};

}  // namespace Reseau
