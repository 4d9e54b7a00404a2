// A growing array of packed markings of one size. Growing leaves one place in 32 (but always one) as room, shrinking no
// more than one in five and a few. It lies in pieces of memory whose sizes are multiples of a grain: where many grow
// side by side, what one has outgrown then fits the next one, and the allocator is left with few sizes to keep apart.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "Reseau/Champs.h"

namespace Reseau {

class Liasse {
public:
    std::uint32_t taille() const { return taille_; }
    const std::uint8_t* en(std::uint32_t i, std::size_t octets) const { return octets_.get() + i * octets; }
    std::uint8_t* en(std::uint32_t i, std::size_t octets) { return octets_.get() + i * octets; }

    /// Makes room for one more at the end.
    /// @param grain bytes
    /// @throws std::bad_alloc
    std::uint8_t* allonger(std::size_t octets, std::size_t grain = GRAIN) {
        if (taille_ == place_) retailler(taille_ + taille_ / 32 + 1, octets, grain);
        return en(taille_++, octets);
    }
    /// The same before the i-th one.
    std::uint8_t* inserer(std::uint32_t i, std::size_t octets, std::size_t grain = GRAIN) {
        allonger(octets, grain);
        std::memmove(en(i + 1, octets), en(i, octets), (taille_ - 1 - i) * octets);
        return en(i, octets);
    }
    /// Drops everything and keeps the room.
    void vider() { taille_ = 0; }
    /// Shortens it; room that is no longer needed is given back.
    void raccourcir(std::uint32_t taille, std::size_t octets, std::size_t grain = GRAIN) {
        taille_ = taille;
        if (taille_ + taille_ / 4 + 4 + grain / octets < place_) retailler(taille_, octets, grain);
    }
    /// Packs everything anew, each record where it lies.
    /// @throws std::bad_alloc, which leaves the old layout
    void convertir(const Champs& de, const Champs& vers, std::size_t grain = GRAIN) {
        if (taille_ == 0) {
            octets_.reset();
            place_ = 0;
            return;
        }
        const bool croit = vers.octets() > de.octets();
        if (croit) retailler(taille_, vers.octets(), grain);
        std::vector<Mot> avant(de.mots());
        std::vector<Mot> apres(vers.mots());
        for (std::uint32_t n = 0; n < taille_; ++n) {
            const std::uint32_t i = croit ? taille_ - 1 - n : n;  // nothing is overwritten that is still to be read
            de.reprendre(en(i, de.octets()), avant.data());
            Reseau::convertir(de, avant.data(), vers, apres.data());
            vers.ranger(apres.data(), en(i, vers.octets()));
        }
        if (vers.octets() < de.octets()) retailler(taille_, vers.octets(), grain);
    }

private:
    struct Liberer {
        void operator()(std::uint8_t* p) const { std::free(p); }
    };
    void retailler(std::size_t place, std::size_t octets, std::size_t grain) {
        const std::size_t bloc = (place * octets + ENTETE + grain - 1) / grain * grain;
        void* neuf = std::realloc(octets_.get(), bloc - sizeof(std::size_t));
        if (neuf == nullptr) throw std::bad_alloc();
        (void)octets_.release();
        octets_.reset(static_cast<std::uint8_t*>(neuf));
        place_ = static_cast<std::uint32_t>((bloc - ENTETE) / octets);
    }

    static constexpr std::size_t GRAIN = 32;
    // Bytes beside the markings, with the word that the allocator puts in front.
    static constexpr std::size_t ENTETE = Champs::MARGE + sizeof(std::size_t);

    std::unique_ptr<std::uint8_t, Liberer> octets_;
    std::uint32_t taille_ = 0;
    std::uint32_t place_ = 0;
};

}  // namespace Reseau
