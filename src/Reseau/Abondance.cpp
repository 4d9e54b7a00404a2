#include "Reseau/Abondance.h"

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "Reseau/Depart.h"
#include "Reseau/Deroulement.h"

namespace Reseau {

namespace {

constexpr std::size_t SEUILS = 24;  // of one way to begin

/// The counts from which on a place may be said to hold many, the least last; a few where there are too many.
std::vector<Compte> seuils(const std::vector<Compte>& marquage) {
    std::set<Compte, std::greater<>> comptes(marquage.begin(), marquage.end());
    std::erase_if(comptes, [](Compte c) { return c <= 1; });
    std::vector<Compte> tous(comptes.begin(), comptes.end());
    if (tous.size() <= SEUILS) return tous;
    std::vector<Compte> choisis;
    for (std::size_t i = 0; i < SEUILS; ++i) choisis.push_back(tous[i * (tous.size() - 1) / (SEUILS - 1)]);
    return choisis;
}

}  // namespace

Abondance::Abondance(const Net& net) : net_(net), majorants_(net.places.size(), OMEGA) {
    const std::vector<std::uint32_t> premiers = departs(net);
    parDeparts_ = !premiers.empty();
    if (parDeparts_) {
        for (const std::uint32_t t : premiers) echelles_.push_back({{{{{t, 1}}, 1}}, apres(net, t), {}, {}, {}});
    } else {
        echelles_.push_back({{}, net.initial, {}, {}, {}});
    }
    for (Echelle& e : echelles_) e.seuils = seuils(e.marquage);
    if (std::ranges::all_of(echelles_, [](const Echelle& e) { return e.seuils.empty(); })) echelles_.clear();
    // Of several ways to begin, one may be explored to its end as it is while another one may not.
    if (echelles_.size() > 1)
        for (Echelle& e : echelles_) e.seuils.insert(e.seuils.begin(), OMEGA);
}

void Abondance::approfondir(std::uint64_t limite) {
    if (echelles_.empty()) return;
    for (Echelle& e : echelles_) descendre(e, limite);
    majorer();
}

void Abondance::descendre(Echelle& e, std::uint64_t limite) const {
    while (!e.seuils.empty()) {
        if (!e.enCours) {
            std::vector<Compte> m = e.marquage;
            for (Compte& c : m)
                if (c >= e.seuils.back()) c = OMEGA;
            e.enCours = std::make_unique<Couverture>(net_, std::move(m), 1);
            e.enCours->garderLesChemins();
        }
        bool complete = false;
        try {
            complete = e.enCours->explorer(limite, false);
            if (!complete) return;
        } catch (const Debordement&) {
            // It reaches counts that do not fit; the net need not. What takes less for unbounded may do.
        }
        e.explores += e.enCours->explores();
        if (complete) e.complete = std::move(e.enCours);
        e.enCours.reset();
        e.seuils.pop_back();
    }
}

void Abondance::majorer() {
    if (!std::ranges::all_of(echelles_, [](const Echelle& e) { return e.complete != nullptr; })) return;
    majorants_ = net_.initial;
    for (const Echelle& e : echelles_)
        for (std::uint32_t p = 0; p < majorants_.size(); ++p)
            majorants_[p] = std::max(majorants_[p], e.complete->maxima()[p]);
}

std::optional<Course> Abondance::course(std::uint32_t place) const {
    for (const Echelle& e : echelles_)
        // What takes less for unbounded, as far as it has come, shows runs that need less.
        for (const Couverture* c : {e.enCours.get(), e.complete.get()}) {
            if (c == nullptr || c->maxima()[place] != majorants_[place]) continue;
            auto suite = derouler(net_, *c, c->temoin(place), e.marquage);
            if (!suite) continue;
            suite->insert(suite->begin(), e.debut.begin(), e.debut.end());
            return suite;
        }
    return std::nullopt;
}

std::uint64_t Abondance::explores() const {
    std::uint64_t nombre = 0;
    for (const Echelle& e : echelles_) nombre += e.explores + (e.enCours ? e.enCours->explores() : 0);
    return nombre;
}

void Abondance::pourChaque(const std::function<void(const Creux&)>& f) const {
    if (parDeparts_) {
        Creux initial;
        for (std::uint32_t p = 0; p < net_.initial.size(); ++p)
            if (net_.initial[p] > 0) initial.push_back({p, net_.initial[p]});
        f(initial);
    }
    for (const Echelle& e : echelles_) e.complete->pourChaqueMaximal(f);
}

}  // namespace Reseau
