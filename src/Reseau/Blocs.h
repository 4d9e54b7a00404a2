// A queue of records of one size that grows and shrinks by blocks at both ends: what stands in it stays where it is,
// and there is never a larger copy beside a smaller one.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "Reseau/Champs.h"

namespace Reseau {

class Blocs {
public:
    /// @param octets of a record
    explicit Blocs(std::size_t octets)
        : octets_(octets), rang_(std::countr_zero(std::bit_floor(std::max<std::size_t>(1, BLOC / octets)))) {}

    std::size_t taille() const { return fin_ - debut_; }
    std::uint8_t* en(std::size_t i) { return adresse(debut_ + i); }
    const std::uint8_t* en(std::size_t i) const { return adresse(debut_ + i); }

    /// @return a new record at the end, its bytes undetermined
    /// @throws std::bad_alloc
    std::uint8_t* ajouter() {
        if (fin_ >> rang_ == blocs_.size())
            blocs_.push_back(std::make_unique_for_overwrite<std::uint8_t[]>(parBloc() * octets_ + Champs::MARGE));
        return adresse(fin_++);
    }
    /// Drops the last record.
    void oter() {
        --fin_;
        while (blocs_.size() > (fin_ >> rang_) + 1) blocs_.pop_back();
    }
    /// Drops the first record.
    void oterPremier() {
        if (++debut_ % parBloc() == 0) blocs_[(debut_ >> rang_) - 1].reset();
    }
    /// Makes every record another one by f(old record, new record), and gives the old blocks back on the way.
    /// @param octets of a new record
    /// @throws std::bad_alloc, with some records lost
    template <class F>
    void refondre(std::size_t octets, F&& f) {
        Blocs neufs(octets);
        for (; taille() > 0; oterPremier()) f(en(0), neufs.ajouter());
        *this = std::move(neufs);
    }

private:
    static constexpr std::size_t BLOC = 16384;  // bytes, about

    std::uint8_t* adresse(std::size_t i) const { return blocs_[i >> rang_].get() + (i & (parBloc() - 1)) * octets_; }
    std::size_t parBloc() const { return std::size_t{1} << rang_; }

    std::size_t octets_;
    int rang_;               // a block holds 2^rang_ records
    std::size_t debut_ = 0;  // counted from the first record that ever was
    std::size_t fin_ = 0;
    std::vector<std::unique_ptr<std::uint8_t[]>> blocs_;
};

}  // namespace Reseau
