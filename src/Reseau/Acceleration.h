// Accelerations as objects of their own. A sequence of steps that can be fired wherever a marking holds
// `pre`, that takes nothing away for good outside places that are already omega, and that raises the places
// `pompes`, can be repeated as often as one likes: those places become omega. What was learnt on one branch
// of the construction then works on every other.
//
// Source: A. Finkel, S. Haddad, I. Khmelnitsky, "Commodification of accelerations for the Karp and Miller
// construction", Discrete Event Dynamic Systems 31 (2021). As there, an entry of `pre` may be OMEGA: the
// sequence consumes that place in the balance, and is repeatable only where the place is omega already.
//
// A transition is such a sequence by itself, wherever what it consumes in the balance is omega; and so are two in a row
// that together take nothing away. That needs no search, and they are learnt the first time that they can be repeated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "Reseau/Listes.h"
#include "Reseau/Net.h"

namespace Reseau {

class Marquage;

/// One step of a run: a transition fired once, or an acceleration.
struct Pas {
    enum Genre : std::uint32_t { TIR, POMPE } genre;
    std::uint32_t numero;
    bool operator==(const Pas&) const = default;
};

struct Acceleration {
    Creux pre;                          ///< what a marking must hold, OMEGA included
    std::vector<std::uint32_t> pompes;  ///< places that become OMEGA, ascending
    std::vector<Pas> pas;               ///< the sequence that is repeated; accelerations in it are earlier ones
};

class Accelerations {
public:
    explicit Accelerations(const Net& net);

    std::uint32_t nombre() const { return static_cast<std::uint32_t>(liste_.size()); }
    const Acceleration& operator[](std::size_t i) const { return liste_[i]; }

    /// The acceleration that repeats `pas`, worked out from the steps' own needs and effects: the weakest
    /// precondition, not the marking where it was found.
    /// @return its number
    std::uint32_t apprendre(std::vector<Pas> pas);

    /// Until every known acceleration is applied, markings are successors of `parent`, which must stay where it is.
    void partirDe(const Marquage& parent) {
        parent_ = &parent;
        ++parents_;
    }
    /// Applies every known acceleration to `m`, which no transition can be repeated in, until none changes it; appends
    /// the numbers of those that did to `appliquees`.
    void appliquer(Marquage& m, std::vector<std::uint32_t>& appliquees);
    /// The same for a successor, by `effet`, of a marking that the first `connues` did not change, nor any transition:
    /// only those can change `m` that need a place which has gained since. The first one comes from nothing.
    void appliquer(Marquage& m, const Creux& effet, std::uint32_t connues, std::vector<std::uint32_t>& appliquees);
    /// Applies one to `m`, which no other one changes, and then what that makes possible.
    void appliquer(std::uint32_t numero, Marquage& m, std::vector<std::uint32_t>& appliquees);

private:
    /// What is tried when a place has gained, unless another one of its needs, the rarest, is not met.
    struct Attente {
        std::uint32_t numero;
        Poids autre;
    };
    /// By place: those that need some tokens of it, and those that need it to be omega.
    struct Attentes {
        std::vector<std::vector<Attente>> parBesoin;
        std::vector<std::vector<Attente>> parOmega;

        explicit Attentes(std::size_t places) : parBesoin(places), parOmega(places) {}
        std::vector<Attente>& de(const Poids& besoin) {
            return (besoin.compte == OMEGA ? parOmega : parBesoin)[besoin.place];
        }
        void oublier(std::uint32_t numero, const Creux& besoins) {
            for (const Poids& besoin : besoins)
                std::erase_if(de(besoin), [numero](const Attente& a) { return a.numero == numero; });
        }
        std::size_t nombre(std::uint32_t place) const { return parBesoin[place].size() + parOmega[place].size(); }
    };

    /// Whether an acceleration raises nothing any more, and of which parent that has been found.
    struct Accomplie {
        std::uint64_t parent = 0;
        bool oui = false;
    };

    std::pair<Poids, Poids> plusRares(const Creux& besoins) const;
    template <class F>
    void attendre(std::uint32_t numero, const Creux& besoins, F&& inscrire) const;
    void propager(Marquage& m, std::vector<std::uint32_t>& appliquees);
    void essayer(std::uint32_t place, const Marquage& m);
    void pomper(std::uint32_t numero, Marquage& m, std::vector<std::uint32_t>& appliquees);
    template <class F>
    bool accomplie(std::vector<Accomplie>& vues, std::uint32_t numero, F&& leve) const;
    static bool leveEncore(const Acceleration& a, const Marquage& m);
    bool candidatLeveEncore(std::uint32_t candidat, const Marquage& m) const;
    static bool applicable(const Acceleration& a, const Marquage& m);
    bool repetable(const Transition& t, const Marquage& m) const;
    bool repetable(std::uint32_t candidat, const Marquage& m) const;
    std::uint32_t apprendre(std::uint32_t candidat);
    void chercherLesPaires();
    void inscrireLesCandidats();
    Acceleration composer(std::vector<Pas> pas);
    std::uint32_t inscrire(Acceleration a);
    bool subsumee(const Acceleration& a) const;
    std::vector<std::uint32_t> subsumees(const Acceleration& a) const;
    void suivre(const Pas& p);
    void exiger(std::uint32_t place, Compte besoin);
    void ajouter(std::uint32_t place, Compte effet);
    void toucher(std::uint32_t place);

    const Net& net_;
    std::vector<Acceleration> liste_;
    std::vector<std::uint32_t> actives_;   // those not subsumed by another one, ascending
    std::vector<Acceleration> paires_;     // of transitions
    std::vector<std::uint32_t> demandes_;  // by place, how many transitions need it
    Attentes attentes_;                    // of the active ones
    // Of the candidates: the transitions, and numbered after them the pairs.
    Listes<Attente> candidatsParBesoin_;
    Listes<Attente> candidatsParOmega_;
    std::vector<bool> appris_;                          // by candidate
    std::vector<std::vector<std::uint32_t>> parPompe_;  // by place, the active ones that raise it
    const Marquage* parent_ = nullptr;
    std::uint64_t parents_ = 0;                  // so far
    std::vector<Accomplie> accomplies_;          // by acceleration
    std::vector<Accomplie> candidatsAccomplis_;  // by candidate
    // Empty between calls, but for the transitions that need nothing before the first one.
    std::vector<std::uint32_t> aEssayer_;
    std::vector<std::uint32_t> candidatsAEssayer_;
    // Working state of `apprendre`, by place; clean between calls.
    std::vector<Large> pre_;
    std::vector<Large> effet_;
    std::vector<char> touchee_;
    std::vector<std::uint32_t> touchees_;
};

}  // namespace Reseau
