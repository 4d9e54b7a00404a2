// A growing array of packed markings of one size, in which no more than one place in sixteen (but always one) is room
// to grow. It lies in pieces of memory whose sizes are multiples of a grain: where many grow side by side, what one
// has outgrown then fits the next one, and the allocator is left with few sizes to keep apart.
#pragma once

#include <cstdint>
#include <cstdlib>
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
        if (taille_ == place_) retailler(taille_ + taille_ / 16 + 1, octets, grain);
        return en(taille_++, octets);
    }
    /// Makes room for so many in all.
    /// @throws std::bad_alloc
    void prevoir(std::uint32_t place, std::size_t octets, std::size_t grain = GRAIN) {
        if (place > place_) retailler(place, octets, grain);
    }
    /// Shortens it; room that is no longer needed is given back.
    void raccourcir(std::uint32_t taille, std::size_t octets, std::size_t grain = GRAIN) {
        taille_ = taille;
        if (taille_ + taille_ / 4 + 4 + grain / octets < place_) retailler(taille_, octets, grain);
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

/// The same markings in another layout.
inline Liasse convertir(const Champs& de, const Liasse& liasse, const Champs& vers) {
    Liasse convertie;
    convertie.prevoir(liasse.taille(), vers.octets());
    std::vector<Mot> avant(de.mots());
    std::vector<Mot> apres(vers.mots());
    for (std::uint32_t i = 0; i < liasse.taille(); ++i) {
        de.reprendre(liasse.en(i, de.octets()), avant.data());
        convertir(de, avant.data(), vers, apres.data());
        vers.ranger(apres.data(), convertie.allonger(vers.octets()));
    }
    return convertie;
}

}  // namespace Reseau
