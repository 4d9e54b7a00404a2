#include "Reseau/Realisation.h"

#include <algorithm>
#include <utility>

#include "Reseau/Boucle.h"
#include "Reseau/Rayon.h"

namespace Reseau {

namespace {

constexpr std::size_t RESERVES = 4;  // pumps that are repeated to gather what another one needs,
constexpr std::size_t FOIS = 64;     // so many times

/// A pump, repeated after its stem.
Course repeter(Course tige, const Course& cycle) {
    for (std::size_t i = 0; i < FOIS; ++i) tige.insert(tige.end(), cycle.begin(), cycle.end());
    return tige;
}

bool toutDeplaceLeJeton(const Equation& equation) {
    if (!equation.jeton) return false;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t)
        if (equation.jeton->de(t) == Jeton::NULLE_PART) return false;
    return true;
}

}  // namespace

Realisation::Realisation(const Equation& equation, const std::vector<std::uint32_t>& places, Tireur& tireur,
                         std::uint64_t parCourse)
    : equation_(equation), places_(places), tireur_(tireur), parCourse_(parCourse) {
    if (toutDeplaceLeJeton(equation)) promenade_.emplace(equation.net, *equation.jeton);
}

Compte Realisation::realiser(const Simplexe& s, bool patient) {
    const bool unSeulJeton = equation_.jeton && std::ranges::includes(equation_.jeton->places(), places_);
    if (places_.size() != 1 && !unSeulJeton) return 0;
    const auto visee =
        std::ranges::find_if(places_, [&](std::uint32_t p) { return s.valeur(equation_.marquage(p)).numerateur > 0; });
    if (visee == places_.end()) return 0;
    std::vector<Compte> comptes;
    for (std::uint32_t t = 0; t < equation_.transitions(); ++t)
        comptes.push_back(static_cast<Compte>(std::min<Large>(s.valeur(t).plancher(), OMEGA - 1)));
    const Large but = s.valeur(equation_.marquage(*visee)).plancher();
    courir(comptes, *visee, static_cast<Compte>(std::min<Large>(but, OMEGA)), patient);
    return tireur_.minorants()[*visee];
}

bool Realisation::pomper(const Simplexe& s) {
    suivreLeRayon(s);
    return !tireur_.pompes().empty();
}

void Realisation::suivreLeRayon(const Simplexe& s) {
    const auto pousse = std::ranges::find_if(
        places_, [&](std::uint32_t p) { return s.croissance(equation_.marquage(p)).numerateur > 0; });
    if (pousse == places_.end()) return;
    for (const Large fois : {4, 1}) {
        const auto comptes = leLongDuRayon(equation_, s, fois);
        const auto but = comptes ? arrivee(*comptes, *pousse) : std::nullopt;
        if (!but) continue;
        courir(*comptes, *pousse, *but, false);
        tireur_.pomper();
        if (tireur_.minorants()[*pousse] == OMEGA) return;
    }
    if (!promenade_) return;
    if (const auto tour = boucle(equation_, {*pousse}).tour) boucler(s, *tour);
}

bool Realisation::boucler(const Simplexe& s, const std::vector<Compte>& tour) {
    if (tourner(tour)) return true;
    const auto debut = rassembler(s, tour);
    return debut && tourner(tour, *debut, parCourse_);
}

/// Looks for a run to where the token is on a way with all that it takes.
std::optional<Course> Realisation::rassembler(const Simplexe& s, const std::vector<Compte>& tour) {
    std::optional<Course> course;
    try {
        const std::vector<Compte> prises = provisions(equation_, tour);
        const std::vector<bool> surLeTour = etapes(equation_, tour);
        const auto comptes = approche(equation_, s, surLeTour, prises);
        if (!comptes) return std::nullopt;
        depenser(parCourse_,
                 [&](std::uint64_t& reste) { course = promenade_->rassembler(*comptes, surLeTour, prises, reste); });
    } catch (const Debordement&) {
        // What is taken on the way does not fit.
    }
    return course;
}

/// What a run with these counts ends with in `place`.
/// @return nothing when it cannot be worked out in 128 bits
std::optional<Compte> Realisation::arrivee(const std::vector<Compte>& comptes, std::uint32_t place) const {
    Large total = equation_.etats[place].constante;
    for (const auto& [t, effet] : equation_.etats[place].forme)
        if (!accumuler(total, effet, comptes[t])) return std::nullopt;
    return static_cast<Compte>(std::min<Large>(total, OMEGA - 1));
}

/// Looks for a run with these counts that ends with `but` tokens in `place`.
void Realisation::courir(const std::vector<Compte>& comptes, std::uint32_t place, Compte but, bool patient) {
    if (!promenade_) return tireur_.realiser(comptes, place, but);
    depenser(parCourse_, [&](std::uint64_t& reste) {
        try {
            if (auto course = promenade_->chercher(comptes, place, tireur_.minorants()[place], but, patient, reste))
                tireur_.adopter(std::move(*course));
        } catch (const Depassement& e) {
            tireur_.depasser(e);
        }
    });
}

/// Calls f(work), which may spend so much of what is left of the program's and takes it off.
template <class F>
void Realisation::depenser(std::uint64_t part, F&& f) {
    const std::uint64_t accorde = std::min(*equation_.travail, part);
    std::uint64_t reste = accorde;
    try {
        f(reste);
    } catch (const Debordement&) {
        // What a move fires does not fit; it says nothing about the others.
    }
    *equation_.travail -= accorde - reste;
}

/// Looks for a run to where the token can go once around with these counts and be back with no less: near the start, or
/// near the end of a pump that has gathered what it gives.
/// @return whether one is found
bool Realisation::tourner(const std::vector<Compte>& tour) {
    std::vector<Course> debuts{{}};
    const std::vector<Tireur::Pompe>& pompes = tireur_.pompes();
    for (auto p = pompes.rbegin(); p != pompes.rend() && debuts.size() <= RESERVES; ++p)
        debuts.push_back(repeter(tireur_.tige(*p), tireur_.cycle(*p)));
    return std::ranges::any_of(debuts,
                               [&](const Course& debut) { return tourner(tour, debut, parCourse_ / debuts.size()); });
}

/// The same near the end of one run.
bool Realisation::tourner(const std::vector<Compte>& tour, const Course& debut, std::uint64_t travail) {
    const std::size_t avant = tireur_.pompes().size();
    depenser(travail, [&](std::uint64_t& reste) {
        if (auto course = promenade_->tourner(tour, debut, reste)) tireur_.pomper(std::move(*course));
    });
    return tireur_.pompes().size() > avant;
}

}  // namespace Reseau
