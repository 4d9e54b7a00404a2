// Every marking ever kept, by hash: the cheapest way to see that a successor is an old acquaintance. Open
// addressing over the numbers of the markings, eight bytes a slot.
#pragma once

#include <bit>
#include <cstdint>
#include <vector>

#include "Reseau/Marquage.h"

namespace Reseau {

class Registre {
public:
    /// @return the hash of a marking
    static std::uint32_t empreinte(const Marquage& m) {
        std::uint64_t h = 0;
        m.pourChaque([&h](std::uint32_t p, Compte c) {
            std::uint64_t x = static_cast<std::uint64_t>(c) * 0x9E3779B97F4A7C15U + p + 1;
            x = (x ^ (x >> 32)) * 0xD6E8FEB86659FD93U;
            h += x ^ (x >> 29);
        });
        h = (h ^ (h >> 31)) * 0xD6E8FEB86659FD93U;
        return static_cast<std::uint32_t>(h >> 32);
    }

    /// @return whether a kept marking with this hash satisfies `egale(numero)`
    template <class F>
    bool contient(std::uint32_t h, F&& egale) const {
        if (cases_.empty()) return false;
        for (std::size_t i = place(h);; i = (i + 1) & masque()) {
            const Case& c = cases_[i];
            if (c.numero == LIBRE) return false;
            if (c.empreinte == h && egale(c.numero)) return true;
        }
    }

    void ajouter(std::uint32_t h, std::uint32_t numero) {
        if (pris_ * 4 >= cases_.size() * 3) agrandir();
        placer({h, numero});
        ++pris_;
    }

private:
    static constexpr std::uint32_t LIBRE = ~std::uint32_t{0};
    struct Case {
        std::uint32_t empreinte = 0;
        std::uint32_t numero = LIBRE;
    };

    // A table of 2^n slots uses the upper n bits of the hash spread over 64 bits.
    std::size_t place(std::uint32_t h) const { return (h * 0x9E3779B97F4A7C15U) >> decalage_; }
    std::size_t masque() const { return cases_.size() - 1; }
    void placer(Case c) {
        std::size_t i = place(c.empreinte);
        while (cases_[i].numero != LIBRE) i = (i + 1) & masque();
        cases_[i] = c;
    }
    void agrandir() {
        std::vector<Case> anciennes(cases_.empty() ? 1024 : cases_.size() * 2);
        anciennes.swap(cases_);
        decalage_ = 64 - std::countr_zero(cases_.size());
        for (const Case& c : anciennes)
            if (c.numero != LIBRE) placer(c);
    }

    std::vector<Case> cases_;
    std::size_t pris_ = 0;
    int decalage_ = 0;
};

}  // namespace Reseau
