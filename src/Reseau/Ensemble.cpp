#include "Reseau/Ensemble.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Reseau {

/// With 2^k to 2^(k+1) - 1 buckets, those that are split already are told apart by k + 1 bits, the others by k.
std::size_t Ensemble::numero(std::uint64_t h) const {
    const std::size_t masque = std::bit_floor(seaux_) * 2 - 1;
    const std::size_t i = h & masque;
    return i < seaux_ ? i : i & (masque >> 1);
}

bool Ensemble::ajouter(const Champs& champs, const Mot* m, std::uint64_t h) {
    if (taille_ >= seaux_ * std::max(PEU, CHARGE / champs.octets())) scinder(champs);
    Liasse& l = seau(numero(h));
    const std::size_t octets = champs.octets();
    for (std::uint32_t i = 0; i < l.taille(); ++i)
        if (champs.egale(l.en(i, octets), m)) return false;
    champs.ranger(m, l.allonger(octets));
    ++taille_;
    return true;
}

/// Adds a bucket, and moves to it what belongs there of the bucket that it shares its lower bits with.
void Ensemble::scinder(const Champs& champs) {
    if (seaux_ % BLOC == 0) blocs_.push_back(std::make_unique<Liasse[]>(BLOC));
    const std::size_t neuf = seaux_++;
    if (neuf == 0) return;
    mots_.resize(champs.mots());
    const std::size_t octets = champs.octets();
    Liasse& ancien = seau(neuf & (std::bit_floor(neuf) - 1));
    std::uint32_t restent = 0;
    for (std::uint32_t i = 0; i < ancien.taille(); ++i) {
        const std::uint8_t* garde = ancien.en(i, octets);
        champs.reprendre(garde, mots_.data());
        const bool part = numero(empreinte(mots_.data(), champs.mots())) == neuf;
        std::memmove(part ? seau(neuf).allonger(octets) : ancien.en(restent++, octets), garde, octets);
    }
    ancien.raccourcir(restent, octets);
}

}  // namespace Reseau
