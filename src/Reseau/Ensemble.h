// A set of packed markings of one size that takes little more room than the markings: they lie in the buckets of a hash
// table themselves, and neither links nor hashes are kept. In its bucket each stands where its hash belongs, so that a
// look-up begins next to it. The table grows by one bucket at a time, which splits one bucket in two, so there is never
// an old table beside a new one. Source: W. Litwin, "Linear hashing: a new tool for file and table addressing", VLDB
// 1980; for the look-up, W. Peterson, "Addressing for random-access storage", IBM Journal of Research and Development 1
// (1957).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Reseau/Champs.h"
#include "Reseau/Liasse.h"

namespace Reseau {

class Ensemble {
public:
    std::uint64_t taille() const { return taille_; }

    /// Fetches what `approcher` needs.
    void annoncer(std::uint64_t h) const {
        if (seaux_ > 0) __builtin_prefetch(&seau(numero(h)));
    }
    /// Fetches what `ajouter` needs.
    void approcher(const Champs& champs, std::uint64_t h) const {
        if (seaux_ == 0) return;
        const Liasse& l = seau(numero(h));
        __builtin_prefetch(l.en(rang(h, l.taille()), champs.octets()));
    }
    /// @param h the hash of the marking; its topmost bits may be the same in all members
    /// @return whether it is new
    /// @throws std::bad_alloc
    bool ajouter(const Champs& champs, const std::uint8_t* garde, std::uint64_t h);

    /// Calls f(kept marking) for every member.
    template <class F>
    void pourChaque(const Champs& champs, F&& f) const {
        for (std::size_t i = 0; i < seaux_; ++i)
            for (std::uint32_t j = 0; j < seau(i).taille(); ++j) f(seau(i).en(j, champs.octets()));
    }

    /// Blocks in which its members lie.
    std::size_t blocs() const { return blocs_.size(); }
    /// Calls f(kept marking) for every member of a block, and gives the block back; nothing where there is no such
    /// block. Afterwards it can only go on with other blocks.
    template <class F>
    void liberer(const Champs& champs, std::size_t bloc, F&& f) {
        if (bloc >= blocs_.size()) return;
        for (std::size_t i = 0; i < BLOC; ++i)
            for (std::uint32_t j = 0; j < blocs_[bloc][i].taille(); ++j) f(blocs_[bloc][i].en(j, champs.octets()));
        blocs_[bloc].reset();
    }

private:
    static constexpr std::size_t CHARGE = 1000;  // bytes in a bucket, on average
    static constexpr std::size_t PEU = 4;        // members of a bucket on average, however large they are
    static constexpr std::size_t BLOC = 64;      // buckets of a block

    const Liasse& seau(std::size_t i) const { return blocs_[i / BLOC][i % BLOC]; }
    Liasse& seau(std::size_t i) { return blocs_[i / BLOC][i % BLOC]; }
    std::size_t numero(std::uint64_t h) const;
    /// By which the members of a bucket are ordered.
    static std::uint64_t cle(std::uint64_t h) { return h << 8; }
    /// Where it should stand in its bucket.
    static std::uint32_t rang(std::uint64_t h, std::uint32_t taille) {
        return static_cast<std::uint32_t>(((cle(h) >> 32) * taille) >> 32);
    }
    void scinder(const Champs& champs);

    std::vector<std::unique_ptr<Liasse[]>> blocs_;
    std::size_t seaux_ = 0;
    std::uint64_t taille_ = 0;
};

}  // namespace Reseau
