// Where markings are kept: packed, about one byte for each marked place. An entry is the number of marked
// places and then, for each, one byte with the distance to the previous place in its upper half and the count
// in its lower half (0 for omega); a half of 15 says that the rest follows as a base-128 number. Comparisons
// decode as they go and stop at the first place that decides, so a packed marking is never unpacked to be
// compared.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Reseau/Marquage.h"

namespace Reseau {

class Reserve {
public:
    /// Where a packed marking stands.
    using Adresse = std::uint64_t;

    Adresse ranger(const Marquage& m);

    /// Replaces `m` by the stored marking.
    void lire(Adresse a, Marquage& m) const;
    /// @return stored >= m, place by place
    bool couvre(Adresse a, const Marquage& m) const;
    /// @return stored <= m, place by place
    bool couverte(Adresse a, const Marquage& m) const;
    /// @return stored <= m, and less in some place where m is finite
    bool depassee(Adresse a, const Marquage& m) const;
    bool egale(Adresse a, const Marquage& m) const;
    Creux creux(Adresse a) const;

    /// Bytes taken by the packed markings.
    std::uint64_t octets() const { return octets_; }

private:
    static constexpr std::uint64_t BLOC = std::uint64_t{1} << 20;

    /// Reads the entries of one packed marking, in ascending order of place.
    class Curseur {
    public:
        explicit Curseur(const std::uint8_t* debut) : ici_(debut), reste_(entier()) {}
        std::uint64_t reste() const { return reste_; }
        bool suivant(std::uint32_t& place, Compte& compte) {
            if (reste_ == 0) return false;
            --reste_;
            const std::uint8_t octet = *ici_++;
            std::uint64_t ecart = octet >> 4;
            if (ecart == 15) ecart += entier();
            std::uint64_t c = octet & 15;
            if (c == 15) c += entier();
            prochaine_ += static_cast<std::uint32_t>(ecart);
            place = prochaine_++;
            compte = c == 0 ? OMEGA : static_cast<Compte>(c);
            return true;
        }

    private:
        std::uint64_t entier() {
            std::uint64_t n = 0;
            for (unsigned decalage = 0;; decalage += 7) {
                const std::uint8_t octet = *ici_++;
                n |= static_cast<std::uint64_t>(octet & 127) << decalage;
                if (octet < 128) return n;
            }
        }

        const std::uint8_t* ici_;
        std::uint64_t reste_;
        std::uint32_t prochaine_ = 0;
    };

    Curseur curseur(Adresse a) const { return Curseur(blocs_[a / BLOC].get() + a % BLOC); }
    void entier(std::uint64_t n);

    std::vector<std::unique_ptr<std::uint8_t[]>> blocs_;
    std::uint64_t rempli_ = 0;  // in the last block
    std::uint64_t octets_ = 0;
    std::vector<std::uint8_t> brouillon_;
};

}  // namespace Reseau
