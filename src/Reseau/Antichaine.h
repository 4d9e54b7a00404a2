// The maximal markings found so far, indexed for the two questions of the construction: is this marking
// covered by one of them, and which of them does it cover?
//
// A discrimination tree: an inner node splits the markings below it by "place p holds at least s", with p and
// s chosen from the markings themselves so that the halves balance; leaves hold a few markings. A query that
// is covered in p has to look only on one side. Besides, every node knows the union and the intersection of
// the signatures below it (the sets of marked places, folded to 256 bits, and for a single
// marking to 64): a whole subtree is left out when a
// marked place is missing, or too many, in all of it.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Reserve.h"

namespace Reseau {

class Antichaine {
public:
    explicit Antichaine(const Reserve& reserve) : reserve_(reserve) {}

    /// @return whether a member covers `m`
    bool couvre(const Marquage& m) const;
    /// Removes the members that `m` covers and appends their numbers to `retirees`.
    void retirer(const Marquage& m, std::vector<std::uint32_t>& retirees);
    /// Adds the marking `m`, stored at `adresse`, under `numero`.
    void ajouter(const Marquage& m, Reserve::Adresse adresse, std::uint32_t numero);

private:
    struct Membre {
        std::uint64_t signature;
        Reserve::Adresse adresse;
        std::uint32_t numero;
    };
    /// A leaf has the leaf's number in `moins`, and FEUILLE for its place.
    struct Branche {
        Signature union_{};
        Signature intersection{~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}};
        Compte seuil = 0;
        std::uint32_t place = FEUILLE;
        std::uint32_t moins = 0;  // members with less than `seuil`
        std::uint32_t plus = 0;
    };
    struct Coupe {
        std::uint32_t place;
        Compte seuil;
        std::size_t plus;  // members on the side of the more
    };
    static constexpr std::uint32_t FEUILLE = ~std::uint32_t{0};
    static constexpr std::size_t CAPACITE = 16;

    static void englober(Branche& b, const Signature& signature);
    void scinder(std::uint32_t branche);
    Coupe meilleureCoupe(const std::vector<Membre>& membres) const;

    const Reserve& reserve_;
    std::vector<Branche> branches_;
    std::vector<std::vector<Membre>> feuilles_;
    mutable std::vector<std::uint32_t> pile_;
};

}  // namespace Reseau
