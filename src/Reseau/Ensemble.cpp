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

bool Ensemble::ajouter(const Champs& champs, const std::uint8_t* garde, std::uint64_t h) {
    if (taille_ >= seaux_ * std::max(PEU, CHARGE / champs.octets())) scinder(champs);
    Liasse& l = seau(numero(h));
    const std::size_t octets = champs.octets();
    const auto cleDe = [&](std::uint32_t i) { return cle(champs.empreinte(l.en(i, octets))); };
    std::uint32_t i = rang(h, l.taille());
    while (i < l.taille() && cleDe(i) < cle(h)) ++i;
    while (i > 0 && cleDe(i - 1) >= cle(h)) --i;
    for (std::uint32_t j = i; j < l.taille() && cleDe(j) == cle(h); ++j)
        if (std::memcmp(l.en(j, octets), garde, octets) == 0) return false;
    std::memcpy(l.inserer(i, octets), garde, octets);
    ++taille_;
    return true;
}

/// Adds a bucket, and moves to it what belongs there of the bucket that it shares its lower bits with.
void Ensemble::scinder(const Champs& champs) {
    if (seaux_ % BLOC == 0) blocs_.push_back(std::make_unique<Liasse[]>(BLOC));
    const std::size_t neuf = seaux_++;
    if (neuf == 0) return;
    const std::size_t octets = champs.octets();
    Liasse& ancien = seau(neuf & (std::bit_floor(neuf) - 1));
    std::uint32_t restent = 0;
    for (std::uint32_t i = 0; i < ancien.taille(); ++i) {
        const std::uint8_t* garde = ancien.en(i, octets);
        const bool part = numero(champs.empreinte(garde)) == neuf;
        std::memmove(part ? seau(neuf).allonger(octets) : ancien.en(restent++, octets), garde, octets);
    }
    ancien.raccourcir(restent, octets);
}

}  // namespace Reseau
