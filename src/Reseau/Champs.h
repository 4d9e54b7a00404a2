// How a marking is packed: one bit field for each place, just wide enough for the largest count that has been met
// there. The fields lie in 64-bit words and never across two. A marking that is worked on is its words; one that is
// kept is their bytes, without those at the end that no field uses.
//
// Where omega can occur, all ones stand for it and a guard bit follows each field. Then one marking is compared with
// another in all places of a word at once: set the guards, subtract, and see which guards were borrowed from. Source:
// L. Lamport, "Multiple byte processing with full-word instructions", Communications of the ACM 18 (1975).
//
// Where many words of a marking hold nothing, they are passed over: what is compared with many others is probed first
// (Sonde), and with each kept marking of many words goes a summary, a bit for each group of words that hold something,
// which tells markings of different places apart at once.
//
// A count that does not fit asks for a new layout, and what is kept is converted. That happens a few times for each
// place, since a field grows by whole bits, and less often where it would take long (Elargissement).
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

using Mot = std::uint64_t;

/// A marking that is compared with many, for as long as it stays as it is.
struct Sonde {
    const Mot* mots = nullptr;
    // Of a marking of many words:
    std::span<const std::uint32_t> pleins;  ///< the words that hold something
    Mot resume = 0;                         ///< which groups of words hold something
};

class Champs {
public:
    /// Bytes that must be readable behind a kept marking.
    static constexpr std::size_t MARGE = sizeof(Mot);

    /// @param plafonds for each place, the largest finite count that must fit
    /// @param omegas whether places can hold OMEGA, too
    Champs(const std::vector<Compte>& plafonds, bool omegas);

    std::uint32_t places() const { return static_cast<std::uint32_t>(champs_.size()); }
    std::size_t mots() const { return mots_.size(); }
    std::size_t octets() const { return octets_; }
    /// Whether a marking has many words, and a summary.
    bool epars() const { return finDesMots_ < octets_; }

    Compte lire(const Mot* m, std::uint32_t p) const { return compte(m[champs_[p].mot], p); }
    /// The same of a kept marking.
    Compte lire(const std::uint8_t* garde, std::uint32_t p) const { return compte(mot(garde, champs_[p].mot), p); }
    /// @param c OMEGA or at most `plafond(p)`
    void poser(Mot* m, std::uint32_t p, Compte c) const {
        const Champ& champ = champs_[p];
        Mot& mot = m[champ.mot];
        mot = (mot & ~(champ.masque << champ.decalage)) | (static_cast<Mot>(c) & champ.masque) << champ.decalage;
    }
    /// The largest finite count that fits.
    Compte plafond(std::uint32_t p) const { return static_cast<Compte>(champs_[p].masque) - (omegas_ ? 1 : 0); }
    Creux creux(const Mot* m) const;
    /// Whether `a` comes before `b` in the order by the first place that differs, the larger count first; no layout
    /// changes it.
    bool precede(const Mot* a, const Mot* b) const;

    void ranger(const Mot* m, std::uint8_t* garde) const {
        for (std::size_t i = 0; i + 1 < mots_.size(); ++i) ecrire(garde + i * sizeof(Mot), m[i], sizeof(Mot));
        const std::size_t dernier = (mots_.size() - 1) * sizeof(Mot);
        ecrire(garde + dernier, m[mots_.size() - 1], finDesMots_ - dernier);
        if (epars()) resumer(garde);
    }
    void reprendre(const std::uint8_t* garde, Mot* m) const {
        for (std::size_t i = 0; i < mots_.size(); ++i) m[i] = mot(garde, i);
    }
    /// @param pleins where the list of the words is put, if one is needed
    Sonde sonder(const Mot* m, std::vector<std::uint32_t>& pleins) const {
        return epars() ? sonderEpars(m, pleins) : Sonde{m, {}, 0};
    }
    bool egale(const std::uint8_t* garde, const Sonde& s) const {
        if (epars() && resume(garde) != s.resume) return false;
        return tous([&](std::size_t i) { return mot(garde, i) == s.mots[i]; });
    }
    std::uint64_t empreinte(const Mot* m) const {
        return hacher([m](std::size_t i) { return m[i]; });
    }
    /// The same of a kept marking.
    std::uint64_t empreinte(const std::uint8_t* garde) const {
        return hacher([this, garde](std::size_t i) { return mot(garde, i); });
    }
    /// @tparam EPARS epars(), found out once for many comparisons
    /// @return kept >= the other one, place by place
    template <bool EPARS>
    bool couvre(const std::uint8_t* garde, const Sonde& s) const {
        if constexpr (EPARS) return couvreEpars(garde, s);
        return tous([&](std::size_t i) { return atteint(mot(garde, i), s.mots[i], mots_[i].gardes); });
    }
    /// @tparam EPARS as for `couvre`
    /// @return kept <= the other one, place by place
    template <bool EPARS>
    bool couverte(const std::uint8_t* garde, const Sonde& s) const {
        if constexpr (EPARS) {
            const Mot ici = resume(garde);
            if ((ici & ~s.resume) != 0) return false;
            if (ici == 0) return true;
        }
        return tous([&](std::size_t i) { return atteint(s.mots[i], mot(garde, i), mots_[i].gardes); });
    }
    /// Raises the kept marking to the larger count of each place.
    void joindre(std::uint8_t* garde, const Sonde& s) const {
        if (epars()) return joindreEpars(garde, s);
        for (std::size_t i = 0; i < mots_.size(); ++i) joindre(garde, i, s.mots[i]);
    }
    /// Lowers the kept marking to the smaller count of each place.
    void rencontrer(std::uint8_t* garde, const Sonde& s) const {
        if (epars() && resume(garde) == 0) return;
        for (std::size_t i = 0; i < mots_.size(); ++i)
            remplacer(garde, i, s.mots[i], moindres(s.mots[i], mot(garde, i), mots_[i].gardes));
        if (epars()) resumer(garde);
    }
    /// @return a >= b, place by place
    bool couvre(const Mot* a, const Mot* b) const {
        for (std::size_t i = 0; i < mots_.size(); ++i)
            if (!atteint(a[i], b[i], mots_[i].gardes)) return false;
        return true;
    }
    /// @param doute the word that is looked at first; that which showed it, when the answer is no
    /// @return a >= b, place by place, and a > b in some place that is finite in a
    bool depasse(const Mot* a, const Mot* b, std::size_t& doute) const {
        if (!atteint(a[doute], b[doute], mots_[doute].gardes)) return false;
        Mot plus = 0;  // guards
        for (std::size_t i = 0; i < mots_.size(); ++i) {
            if (!atteint(a[i], b[i], mots_[i].gardes)) {
                doute = i;
                return false;
            }
            plus |= moindres(b[i], a[i], mots_[i].gardes) & ~(a[i] + mots_[i].uns);  // omega and one more is the guard
        }
        return plus != 0;
    }
    /// Whether the marking holds, in some place at least, what the thresholds ask. They are a marking in which the
    /// places that are asked for are those with their guards set, and more than nothing is asked for.
    bool franchit(const Sonde& s, const std::uint8_t* seuils) const {
        if (epars()) return franchitEpars(s, seuils);
        return !tous([&](std::size_t i) { return !franchit(s.mots[i], mot(seuils, i), mots_[i].gardes); });
    }
    /// Asks for a count of a place in thresholds, see `franchit`.
    void exiger(Mot* seuils, std::uint32_t p, Compte c) const {
        poser(seuils, p, c);
        seuils[champs_[p].mot] |= (champs_[p].masque + 1) << champs_[p].decalage;
    }
    bool exige(const Mot* seuils, std::uint32_t p) const {
        return ((seuils[champs_[p].mot] >> champs_[p].decalage) & (champs_[p].masque + 1)) != 0;
    }

    /// Calls f(place) for each place that holds something.
    template <class F>
    void pourChaqueMarquee(const Mot* m, F&& f) const {
        for (std::size_t i = 0; i < mots_.size(); ++i) pourChaqueChamp(i, m[i], f);
    }
    /// Calls f(place) for each place in which they differ.
    template <class F>
    void pourChaqueDifference(const std::uint8_t* a, const std::uint8_t* b, F&& f) const {
        for (std::size_t i = 0; i < mots_.size(); ++i) pourChaqueChamp(i, mot(a, i) ^ mot(b, i), f);
    }

    /// Where a place stands, for those who translate arcs into fields.
    struct Champ {
        Mot masque = 0;  // of the count, before it is shifted
        std::uint32_t mot = 0;
        std::uint32_t decalage = 0;
    };
    const Champ& champ(std::uint32_t p) const { return champs_[p]; }
    bool omegas() const { return omegas_; }

private:
    static constexpr unsigned MOT = 64;          // bits
    static constexpr std::size_t BEAUCOUP = 16;  // words

    struct Masques {
        Mot utile = 0;
        Mot gardes = 0;
        Mot uns = 0;  // a one in each field, where there are guards
    };

    Compte compte(Mot mot, std::uint32_t p) const {
        const Mot v = (mot >> champs_[p].decalage) & champs_[p].masque;
        return omegas_ && v == champs_[p].masque ? OMEGA : static_cast<Compte>(v);
    }
    // The first byte of a kept marking is the lowest of its first word, on any machine.
    static Mot memoire(Mot mot) {
        if constexpr (std::endian::native == std::endian::big) return __builtin_bswap64(mot);
        return mot;
    }
    static void ecrire(std::uint8_t* ou, Mot mot, std::size_t octets) {
        const Mot m = memoire(mot);
        std::memcpy(ou, &m, octets);
    }
    Mot mot(const std::uint8_t* garde, std::size_t i) const {
        Mot m = 0;
        std::memcpy(&m, garde + i * sizeof(Mot), sizeof m);
        return memoire(m) & mots_[i].utile;
    }
    /// @param f the marking's i-th word
    template <class F>
    std::uint64_t hacher(F&& f) const {
        std::uint64_t h = 0;
        for (std::size_t i = 0; i < mots_.size(); ++i) {
            h = (h ^ f(i)) * 0x9E3779B97F4A7C15U;
            h ^= h >> 32;
        }
        h *= 0xD6E8FEB86659FD93U;
        return h ^ (h >> 32);
    }
    /// Whether f(number) is true of every word.
    template <class F>
    bool tous(F&& f) const {
        for (std::size_t i = 0; i < mots_.size(); ++i)
            if (!f(i)) return false;
        return true;
    }
    // By value: what is probed with stays in registers where it has few words.
    Sonde sonderEpars(const Mot* m, std::vector<std::uint32_t>& pleins) const;
    bool couvreEpars(const std::uint8_t* garde, Sonde s) const;
    void joindreEpars(std::uint8_t* garde, Sonde s) const;
    bool franchitEpars(Sonde s, const std::uint8_t* seuils) const;
    void joindre(std::uint8_t* garde, std::size_t i, Mot neuf) const {
        remplacer(garde, i, neuf, moindres(mot(garde, i), neuf, mots_[i].gardes));
    }
    /// Takes the counts of `neuf` for those fields of the i-th word whose guards are given.
    void remplacer(std::uint8_t* garde, std::size_t i, Mot neuf, Mot lesquels) const {
        if (lesquels == 0) return;
        Mot champs = 0;
        for (; lesquels != 0; lesquels &= lesquels - 1) {
            const Mot sienne = lesquels & -lesquels;
            const Mot plusBasses = mots_[i].gardes & (sienne - 1);  // the field begins behind the highest of them
            champs |= sienne - (plusBasses == 0 ? 1 : std::bit_floor(plusBasses) << 1);
        }
        const std::size_t ici = i * sizeof(Mot);
        ecrire(garde + ici, (mot(garde, i) & ~champs) | (neuf & champs), std::min(sizeof(Mot), finDesMots_ - ici));
    }
    static Mot groupe(std::size_t i) { return Mot{1} << i % MOT; }
    Mot resume(const std::uint8_t* garde) const {
        Mot m = 0;
        std::memcpy(&m, garde + finDesMots_, sizeof m);
        return memoire(m);
    }
    void resumer(std::uint8_t* garde) const;
    /// Calls f(place) for each field of the i-th word in which `mot` has a bit.
    template <class F>
    void pourChaqueChamp(std::size_t i, Mot mot, F&& f) const {
        while (mot != 0) {
            const std::uint32_t p = parBit_[i * MOT + static_cast<unsigned>(std::countr_zero(mot))];
            mot &= ~(champs_[p].masque << champs_[p].decalage);
            f(p);
        }
    }
    /// The guards of the fields in which `a` holds less than `b`.
    static Mot moindres(Mot a, Mot b, Mot gardes) { return ~((a | gardes) - b) & gardes; }
    static bool franchit(Mot m, Mot seuil, Mot gardes) {
        return (((m | gardes) - (seuil & ~gardes)) & seuil & gardes) != 0;
    }
    static bool atteint(Mot plus, Mot moins, Mot gardes) { return (((plus | gardes) - moins) & gardes) == gardes; }

    std::vector<Champ> champs_;
    std::vector<Masques> mots_;
    std::vector<std::uint32_t> parBit_;  // places, by the bits of all words
    std::size_t finDesMots_ = 0;         // bytes of what is kept without the summary
    std::size_t octets_ = 0;
    bool omegas_;
};

/// When a field has become too narrow: what the next layout is to hold. Converting takes time in proportion to what is
/// kept. As long as all conversions together have converted no more than some times that, the fields are as narrow as
/// can be; else every count gets room to double, until the set has grown.
class Elargissement {
public:
    /// @param besoins the largest finite count kept or to be kept, by place
    /// @param gardes markings
    std::vector<Compte> plafonds(std::vector<Compte> besoins, std::uint64_t gardes);

private:
    static constexpr std::uint64_t FOIS = 4;
    std::uint64_t convertis_ = 0;
};

/// Takes a marking from one layout to another that holds its counts.
void convertir(const Champs& de, const Mot* m, const Champs& vers, Mot* resultat);

}  // namespace Reseau
