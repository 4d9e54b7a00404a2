// A set of packed markings of one size that takes little more room than the markings: they lie in the buckets of a hash
// table themselves, and neither links nor hashes are kept. The table grows by one bucket at a time, which splits one
// bucket in two, so there is never an old table beside a new one. Source: W. Litwin, "Linear hashing: a new tool for
// file and table addressing", VLDB 1980.
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

    /// Fetches what `ajouter` will need.
    void annoncer(std::uint64_t h) const {
        if (seaux_ > 0) __builtin_prefetch(seau(numero(h)).en(0, 0));
    }
    /// @param h the hash of `m`
    /// @return whether it is new
    /// @throws std::bad_alloc
    bool ajouter(const Champs& champs, const Mot* m, std::uint64_t h);

    /// Calls f(kept marking) for every member.
    template <class F>
    void pourChaque(const Champs& champs, F&& f) const {
        for (std::size_t i = 0; i < seaux_; ++i)
            for (std::uint32_t j = 0; j < seau(i).taille(); ++j) f(seau(i).en(j, champs.octets()));
    }

private:
    static constexpr std::size_t CHARGE = 400;  // bytes in a bucket, on average
    static constexpr std::size_t PEU = 4;       // members of a bucket on average, however large they are
    static constexpr std::size_t BLOC = 64;     // buckets of a block

    const Liasse& seau(std::size_t i) const { return blocs_[i / BLOC][i % BLOC]; }
    Liasse& seau(std::size_t i) { return blocs_[i / BLOC][i % BLOC]; }
    std::size_t numero(std::uint64_t h) const;
    void scinder(const Champs& champs);

    std::vector<std::unique_ptr<Liasse[]>> blocs_;
    std::size_t seaux_ = 0;
    std::uint64_t taille_ = 0;
    std::vector<Mot> mots_;  // of the marking that is being moved
};

}  // namespace Reseau
