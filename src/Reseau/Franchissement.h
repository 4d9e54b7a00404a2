// The firing rule on packed markings: every arc translated once for each layout into the field that it reads or
// changes.
//
// Each transition is on the watch at one of the places that it needs, and looked at only where that place is marked. Of
// a net of thousands of transitions that leaves the few of the control locations where the marking is. Source: the
// watched literals of M. Moskewicz, C. Madigan, Y. Zhao, L. Zhang, S. Malik, "Chaff: engineering an efficient SAT
// solver", DAC 2001.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Champs.h"
#include "Reseau/Listes.h"
#include "Reseau/Net.h"

namespace Reseau {

class Franchissement {
public:
    /// @param net, champs must outlive it
    Franchissement(const Net& net, const Champs& champs);

    /// Translates the arcs for another layout, which must outlive it.
    void traduire(const Champs& champs);

    /// Puts each transition on the watch at that place among its needs which was marked in the fewest markings.
    void guetter(const std::vector<std::uint64_t>& marquee);

    /// Whether `m` enables the transition.
    bool permis(std::uint32_t t, const Mot* m) const {
        for (std::uint32_t i = tirs_[t].besoins; i < tirs_[t].effets; ++i)
            if (valeurEn(m, arcs_[i]) < arcs_[i].compte) return false;
        return true;
    }
    /// Whether `m` enables the transition, and firing it adds to a finite place; what comes of it otherwise is covered
    /// by `m`.
    bool utile(std::uint32_t t, const Mot* m) const {
        if (!permis(t, m)) return false;
        for (std::uint32_t i = tirs_[t].effets; i < tirs_[t].fin; ++i)
            if (arcs_[i].compte > 0 && valeurEn(m, arcs_[i]) != arcs_[i].omega) return true;
        return false;
    }
    /// The useful transitions, in ascending order.
    void utiles(const Mot* m, std::vector<std::uint32_t>& tirs) const;
    /// Fires a transition that `m` enables.
    /// @return whether every count fits into its field; if not, `m` is spoilt
    /// @throws Debordement
    bool tirer(std::uint32_t t, Mot* m) const {
        for (std::uint32_t i = tirs_[t].effets; i < tirs_[t].fin; ++i) {
            const Arc& a = arcs_[i];
            const Compte v = valeurEn(m, a);
            if (v == a.omega) continue;
            if (somme(v, a.compte) > a.plafond) return false;
            m[a.mot] += static_cast<Mot>(a.compte) << a.decalage;
        }
        return true;
    }

private:
    struct Arc {
        Mot masque;
        Compte compte;   // of a need: what its field must hold at least; of an effect: what is added to it
        Compte omega;    // what stands for it in the field, -1 when nothing does
        Compte plafond;  // the largest finite count of the field
        std::uint32_t mot;
        std::uint32_t decalage;
    };
    /// Needs and then effects of one transition, as indices of `arcs_`.
    struct Tir {
        std::uint32_t besoins;
        std::uint32_t effets;
        std::uint32_t fin;
    };

    static Compte valeurEn(const Mot* m, const Arc& a) {
        return static_cast<Compte>((m[a.mot] >> a.decalage) & a.masque);
    }

    const Net& net_;
    const Champs* champs_ = nullptr;
    Listes<std::uint32_t> guets_;          // transitions, by the place where they watch
    std::vector<std::uint32_t> toujours_;  // those that need nothing
    std::vector<Tir> tirs_;
    std::vector<Arc> arcs_;
};

}  // namespace Reseau
