// The marking that is being worked on: one count per place for direct access, the set of marked places as a
// bit set so that a marking of a few places in a net of thousands is walked in the time of the few. Changes
// can be taken back: a successor is made in place and undone, never copied.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

using Signature = std::array<std::uint64_t, 4>;

/// Whether every bit of `a` is in `b`.
inline bool incluse(const Signature& a, const Signature& b) {
    return ((a[0] & ~b[0]) | (a[1] & ~b[1]) | (a[2] & ~b[2]) | (a[3] & ~b[3])) == 0;
}

class Marquage {
public:
    explicit Marquage(std::size_t places) : compte_(places, 0), marquees_((places + 63) / 64, 0) {}

    Compte operator[](std::uint32_t p) const { return compte_[p]; }
    std::size_t places() const { return compte_.size(); }
    /// Number of marked places.
    std::uint32_t cardinal() const { return cardinal_; }
    /// Number of places that hold OMEGA.
    std::uint32_t omegas() const { return omegas_; }

    /// Sets a count; `annuler` takes it back unless `confirmer` came between.
    void poser(std::uint32_t p, Compte c) {
        journal_.push_back({p, compte_[p]});
        ecrire(p, c);
    }
    /// Undoes every change since the last `confirmer`.
    void annuler() {
        for (; !journal_.empty(); journal_.pop_back()) ecrire(journal_.back().place, journal_.back().compte);
    }
    void confirmer() { journal_.clear(); }
    void vider() {
        pourChaque([this](std::uint32_t p, Compte) { compte_[p] = 0; });
        for (std::uint64_t& mot : marquees_) mot = 0;
        cardinal_ = omegas_ = 0;
        journal_.clear();
    }

    /// Calls f(place, count) for every marked place in ascending order.
    template <class F>
    void pourChaque(F&& f) const {
        for (std::size_t i = 0; i < marquees_.size(); ++i)
            for (std::uint64_t mot = marquees_[i]; mot != 0; mot &= mot - 1) {
                const auto p = static_cast<std::uint32_t>(i * 64) + static_cast<std::uint32_t>(std::countr_zero(mot));
                f(p, compte_[p]);
            }
    }

    /// The marked places folded to 256 bits: when m >= n, the bits of n are among those of m.
    Signature signature() const {
        Signature s{};
        for (std::size_t i = 0; i < marquees_.size(); ++i) s[i % s.size()] |= marquees_[i];
        return s;
    }

    Creux creux() const {
        Creux v;
        pourChaque([&v](std::uint32_t p, Compte c) { v.push_back({p, c}); });
        return v;
    }

private:
    void ecrire(std::uint32_t p, Compte c) {
        const Compte avant = compte_[p];
        cardinal_ += static_cast<std::uint32_t>(c != 0) - static_cast<std::uint32_t>(avant != 0);
        omegas_ += static_cast<std::uint32_t>(c == OMEGA) - static_cast<std::uint32_t>(avant == OMEGA);
        const std::uint64_t bit = std::uint64_t{1} << (p % 64);
        if (c != 0)
            marquees_[p / 64] |= bit;
        else
            marquees_[p / 64] &= ~bit;
        compte_[p] = c;
    }

    std::vector<Compte> compte_;
    std::vector<std::uint64_t> marquees_;
    Creux journal_;
    std::uint32_t cardinal_ = 0;
    std::uint32_t omegas_ = 0;
};

}  // namespace Reseau
