// The reachable markings of a net in which none covers another one: all of them are maximal, and finding each once is
// all there is to do. No tree is kept and no index, but a set and the queue of those that are not expanded yet.
//
// The search goes deep at first, to see large counts early, and then wide, since fewer wait then. It goes in batches:
// the successors of a batch are made first, and sorted by hash into SECTIONS; then each section's set takes up its own.
// Both halves are shared out among threads. A section sees its markings in the order of the batch whoever made them, so
// the number of threads changes nothing but the time. When fields become too narrow, everything is packed anew in the
// same two halves.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Reseau/Blocs.h"
#include "Reseau/Champs.h"
#include "Reseau/Ensemble.h"
#include "Reseau/Equipe.h"
#include "Reseau/Franchissement.h"
#include "Reseau/Liasse.h"
#include "Reseau/Net.h"

namespace Reseau {

class Enumeration {
public:
    static constexpr std::uint64_t SEUL = 2 << 20;  // bytes; a thread takes some 200 KiB

    /// @param net must outlive it
    /// @param maxima the largest counts seen so far, by place, all finite; kept up to date here
    /// @param fils threads, 0 for as many as there are cores
    /// @param seul bytes of the set up to which one thread works alone
    Enumeration(const Net& net, std::vector<Compte>& maxima, unsigned fils, std::uint64_t seul = SEUL);

    /// Adds a marking whose counts do not exceed the maxima.
    /// @param aDevelopper whether its successors are still to be found
    void admettre(const Creux& marquage, bool aDevelopper);

    bool finie() const { return attente_.taille() == 0; }
    /// Expands one batch of at most `limite` > 0 markings.
    /// @return how many
    /// @throws Debordement, std::bad_alloc
    std::uint64_t avancer(std::uint64_t limite);

    /// Markings found.
    std::uint64_t taille() const;
    /// Bytes of a packed marking.
    std::size_t octets() const { return champs_.octets(); }
    /// Markings that wait to be expanded.
    std::uint64_t enAttente() const { return attente_.taille(); }

    /// Calls f(kept marking) for each marking found.
    template <class F>
    void pourChaque(F&& f) const {
        for (const Ensemble& e : sections_) e.pourChaque(champs_, f);
    }
    const Champs& champs() const { return champs_; }

private:
    static constexpr unsigned SECTIONS = 16;
    // Markings of a batch: one in so many expanded, so that it takes little memory beside them; but these at least (an
    // eighth of those expanded, to begin with) and these at most.
    static constexpr std::uint64_t PART = 256;
    static constexpr std::uint64_t LOT_MOINDRE = 512;
    static constexpr std::uint64_t LOT = 2048;
    static constexpr std::uint64_t PROFOND = 4096;  // markings expanded until it goes wide
    static constexpr std::uint64_t LOT_SEUL = 256;  // a batch below is not worth waking threads
    static constexpr std::size_t GRAIN = 512;       // bytes by which the parts of a batch grow
    static constexpr std::uint32_t GROUPE = 16;     // markings that are looked up together

    /// What one thread makes of its slice of the batch.
    struct Tranche {
        std::array<Liasse, SECTIONS> successeurs;  // by section
        std::vector<Compte> maxima;
        std::vector<Mot> parent;
        std::vector<Mot> courant;
        std::vector<std::uint32_t> tirs;
        bool etroit = false;  // some count did not fit
    };

    void developper(Tranche& tranche, std::uint64_t debut, std::uint64_t fin) const;
    void trier(Tranche& tranche, const Mot* m) const;
    template <class F>
    void accueillir(unsigned section, unsigned n, F&& neuf);
    void convertirBloc(Tranche& tranche, const Champs& anciens, Ensemble& ensemble, std::size_t bloc) const;
    void elargir(unsigned n);
    unsigned convier(bool partager);
    void executer(unsigned n, const std::function<void(unsigned)>& travail);

    const Net& net_;
    std::vector<Compte>& maxima_;
    Elargissement elargissement_;
    Champs champs_;
    Franchissement franchissement_;
    std::array<Ensemble, SECTIONS> sections_;
    std::array<Liasse, SECTIONS> nouveaux_;  // what the batch has added
    Blocs attente_;                          // still to be expanded
    std::vector<Tranche> tranches_;
    std::unique_ptr<Equipe> equipe_;
    unsigned fils_;
    std::uint64_t seul_;
    std::uint64_t developpes_ = 0;
};

}  // namespace Reseau
