#include "reseau_karp_miller.h"

#include <algorithm>
#include <utility>

namespace etalon {

namespace {

using Reseau::Compte;
using Reseau::OMEGA;
using Marquage = std::vector<Compte>;

bool couvre(const Marquage& a, const Marquage& b) {
    return std::equal(a.begin(), a.end(), b.begin(), [](Compte x, Compte y) { return x >= y; });
}

class Arbre {
public:
    explicit Arbre(const Reseau::Net& net) : net_(net), resultat_{true, net.initial, 0} {}

    /// Depth first, with the path as an explicit stack: a marking and the transition to try next.
    std::optional<Resultat> construire(std::uint64_t limite) {
        entrer(net_.initial);
        while (!branche_.empty()) {
            if (resultat_.noeuds > limite) return std::nullopt;
            if (branche_.back().prochaine == net_.transitions.size()) {
                branche_.pop_back();
                continue;
            }
            const Reseau::Transition& t = net_.transitions[branche_.back().prochaine++];
            const Marquage& m = branche_.back().marquage;
            if (!std::ranges::all_of(t.pre, [&m](const Reseau::Poids& p) { return m[p.place] >= p.compte; })) continue;
            Marquage suivant = m;
            for (const Reseau::Poids& e : t.effet) suivant[e.place] = Reseau::somme(suivant[e.place], e.compte);
            entrer(std::move(suivant));
        }
        return std::move(resultat_);
    }

private:
    struct Etage {
        Marquage marquage;
        std::size_t prochaine;
    };

    void entrer(Marquage m) {
        ++resultat_.noeuds;
        for (const Etage& e : branche_) {
            if (e.marquage == m) return;
            if (!couvre(m, e.marquage)) continue;
            for (std::size_t p = 0; p < m.size(); ++p)
                if (m[p] > e.marquage[p]) m[p] = OMEGA;
        }
        for (std::size_t p = 0; p < m.size(); ++p) {
            resultat_.bornes[p] = std::max(resultat_.bornes[p], m[p]);
            resultat_.bornee = resultat_.bornee && m[p] != OMEGA;
        }
        branche_.push_back({std::move(m), 0});
    }

    const Reseau::Net& net_;
    Resultat resultat_;
    std::vector<Etage> branche_;
};

}  // namespace

std::optional<Resultat> karpMiller(const Reseau::Net& net, std::uint64_t limite) {
    return Arbre(net).construire(limite);
}

}  // namespace etalon
