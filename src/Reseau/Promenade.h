// From how often to when, for nets with a control token: a walk of the token that fires given counts.
//
// A beam search. A state is what is left to be fired, which tells the marking and where the token is. A move is one
// firing; or a way of the token back to where it stands, fired as often in a row as possible: the shortest, the one
// that can be gone most often, or what has just been gone. The states with the least left to be fired go on, counted
// in digits, so that few moves in bulk do most and the last firings get their turn. Beams of growing width are tried;
// whatever is found is a run.
//
// Source: B. Lowerre, "The HARPY speech recognition system" (1976), for the beam.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

#include "Reseau/Course.h"
#include "Reseau/Jeton.h"
#include "Reseau/Net.h"

namespace Reseau {

class Promenade {
public:
    /// @param net, jeton must outlive it; every transition of the net moves the token
    Promenade(const Net& net, const Jeton& jeton);

    /// @return a run that fires each transition t at most about `comptes[t]` times and ends with `but` tokens in
    /// `place`, or with as many as are found, if these are more than `plancher`
    /// @param patient with wide beams, after the narrow ones
    /// @param travail what it may cost, in places and transitions looked at; what it has cost is taken off
    std::optional<Course> chercher(const std::vector<Compte>& comptes, std::uint32_t place, Compte plancher, Compte but,
                                   bool patient, std::uint64_t& travail);

    /// @return a run that fires each transition t at most about `comptes[t]` times, until the token is on one of
    /// `etapes` and no less than `provisions` is there; or one that comes near that
    /// @param travail as for `chercher`
    std::optional<Course> rassembler(const std::vector<Compte>& comptes, const std::vector<bool>& etapes,
                                     const std::vector<Compte>& provisions, std::uint64_t& travail);

    /// @return a run that begins with `avant` and whose last part fires each transition t `comptes[t]` times, if one is
    /// found near the end of `avant`; the block before the last part is how it comes there
    /// @param travail as for `chercher`
    std::optional<Course> tourner(const std::vector<Compte>& comptes, const Course& avant, std::uint64_t& travail);

private:
    struct Etat {
        std::vector<Compte> marquage;
        std::vector<Compte> reste;
        std::uint32_t ici;  // where the token is
        std::size_t avant;  // the move that led here
        double manque;      // digits of what is left, and more for what cannot be reached any more
    };
    struct Coup {
        std::size_t avant;
        Bloc bloc;
    };
    using Suite = std::vector<std::uint32_t>;

    void preparer(std::uint64_t& travail);
    template <class F>
    void pourChaqueFaisceau(bool patient, std::uint64_t& travail, F&& f);
    std::optional<Course> balayer(const Etat& depart, std::size_t largeur);
    void avancer(const Etat& etat, std::vector<Etat>& suivants);
    void jouer(const Etat& etat, const Suite& suite, bool seule, std::vector<Etat>& suivants);
    Compte repetitions(const Etat& etat, const Suite& suite, Compte credit);
    Suite retour(const Etat& etat, std::uint32_t premiere, bool large) const;
    std::vector<Suite> traces(const Etat& etat) const;
    void juger(const Etat& etat);
    double insuffisance(const Etat& etat) const;
    double manque(const Etat& etat) const;
    bool tirable(std::uint32_t t, const std::vector<Compte>& m) const;
    Course course(std::size_t coup) const;

    const Net& net_;
    const Jeton& jeton_;
    std::vector<std::vector<std::uint32_t>> departs_;  // transitions, by place of the token
    std::uint64_t* travail_ = nullptr;
    std::uint64_t part_ = 0;              // of it, for one beam
    std::optional<std::uint32_t> place_;  // where `but_` tokens are wanted; none when everything is to be fired,
    Compte but_ = 0;
    std::vector<bool> etapes_;        // or, when there are any, the token is to be on one of these
    std::vector<Compte> provisions_;  // and so much is to be there
    Compte credit_ = 0;               // firings of each transition beyond the counts
    std::vector<Coup> coups_;         // from 1; 0 is the start
    std::unordered_set<std::uint64_t> vus_;
    std::optional<std::size_t> arrive_;  // the move that led nearest
    Compte mieux_ = 0;                   // tokens in `place_` there, over all beams,
    double moindre_ = 0;                 // or digits of what is missing there
    bool fini_ = false;

    // Of the sequence that is being weighed, by place and by transition; zero in between.
    std::vector<Compte> besoin_;
    std::vector<Compte> effet_;
    std::vector<Compte> parTour_;
};

}  // namespace Reseau
