// The loop of the construction, in the order in which the header tells it.
#include "Reseau/Couverture.h"

#include <algorithm>
#include <utility>

namespace Reseau {

Couverture::Couverture(const Net& net)
    : net_(net),
      antichaine_(reserve_),
      accelerations_(net),
      besoins_(net.places.size()),
      satisfaits_(net.transitions.size(), 0),
      courant_(net.places.size()),
      maxima_(net.places.size(), 0),
      temoins_(net.places.size(), 0),
      buts_(net.places.size(), OMEGA),
      butsManques_(net.places.size()) {
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        if (net.transitions[t].effet.empty()) continue;  // changes nothing
        if (net.transitions[t].pre.empty()) sources_.push_back(t);
        for (const Poids& p : net.transitions[t].pre) besoins_[p.place].push_back({t, p.compte});
    }
}

bool Couverture::explorer(std::uint64_t limite, bool arretOmega) {
    if (!commencee_) {
        commencee_ = true;
        for (std::uint32_t p = 0; p < net_.places.size(); ++p) courant_.poser(p, net_.initial[p]);
        garder(AUCUN, AUCUN, {});
    }
    while (!frontiere_.empty()) {
        if ((arretOmega && nonBornee_) || butsManques_ == 0) return true;
        const std::uint32_t numero = frontiere_.top().numero;
        if (retires_[numero]) {
            frontiere_.pop();
            continue;
        }
        if (explores_ >= limite || noeuds_.size() / 4 >= limite) return false;
        frontiere_.pop();
        developper(numero);
    }
    return true;
}

void Couverture::viser(std::vector<Compte> buts) {
    buts_ = std::move(buts);
    butsManques_ = 0;
    for (std::size_t p = 0; p < buts_.size(); ++p) butsManques_ += maxima_[p] < buts_[p];
}

void Couverture::developper(std::uint32_t numero) {
    ++explores_;
    reserve_.lire(noeuds_[numero].adresse, courant_);
    tirables();
    for (const std::uint32_t t : tirables_) {
        if (!augmente(t)) continue;
        successeur(numero, t);
        // Its coverer stands in the frontier and is expanded in its place.
        if (retires_[numero]) break;
    }
}

/// Whether firing adds to a finite place of `courant_`; otherwise what comes of it is covered where it comes from.
bool Couverture::augmente(std::uint32_t tir) const {
    return std::ranges::any_of(net_.transitions[tir].effet,
                               [this](const Poids& e) { return e.compte > 0 && courant_[e.place] != OMEGA; });
}

/// The transitions that `courant_` enables, found from its marked places.
void Couverture::tirables() {
    tirables_ = sources_;
    const auto compter = [this](auto&& f) {
        courant_.pourChaque([&](std::uint32_t p, Compte c) {
            for (const Besoin& b : besoins_[p])
                if (c >= b.compte) f(b.transition);
        });
    };
    compter([this](std::uint32_t t) {
        if (++satisfaits_[t] == net_.transitions[t].pre.size()) tirables_.push_back(t);
    });
    compter([this](std::uint32_t t) { satisfaits_[t] = 0; });
}

void Couverture::successeur(std::uint32_t parent, std::uint32_t tir) {
    for (const Poids& e : net_.transitions[tir].effet) courant_.poser(e.place, somme(courant_[e.place], e.compte));
    std::vector<std::uint32_t> appliquees;
    accelerations_.appliquer(courant_, appliquees);
    if (!connu()) {
        const std::uint32_t omegas = courant_.omegas();
        if (!incomparables_) accelerer(parent, tir, appliquees);
        if (courant_.omegas() == omegas || !connu()) garder(parent, tir, std::move(appliquees));
    }
    courant_.annuler();
}

bool Couverture::connu() {
    const auto egale = [this](std::uint32_t n) { return reserve_.egale(noeuds_[n].adresse, courant_); };
    return registre_.contient(Registre::empreinte(courant_), egale) ||
           (!incomparables_ && antichaine_.couvre(courant_));
}

/// The ancestors to compare with: all the near ones, then those at depths that are multiples of REPERE.
std::uint32_t Couverture::suivantAncetre(std::uint32_t numero, std::uint32_t pas) const {
    return pas < REPERE ? noeuds_[numero].parent : noeuds_[numero].repere;
}

/// Appends the last steps that led to `numero`, in reverse: its accelerations, then its transition.
void Couverture::pasDe(std::uint32_t numero, std::vector<Pas>& envers) const {
    if (const auto i = appliquees_.find(numero); i != appliquees_.end())
        for (auto a = i->second.rbegin(); a != i->second.rend(); ++a) envers.push_back({Pas::POMPE, *a});
    if (noeuds_[numero].tir != AUCUN) envers.push_back({Pas::TIR, noeuds_[numero].tir});
}

/// Compares `courant_`, reached from `parent` by `tir` and `appliquees`, with its ancestors until none is
/// strictly covered.
void Couverture::accelerer(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t>& appliquees) {
    bool change = true;
    while (change) {
        change = false;
        std::uint32_t pas = 0;
        for (std::uint32_t a = parent; a != AUCUN; a = suivantAncetre(a, pas++)) {
            if (!reserve_.depassee(noeuds_[a].adresse, courant_)) continue;
            std::vector<Pas> chemin;
            for (auto i = appliquees.rbegin(); i != appliquees.rend(); ++i) chemin.push_back({Pas::POMPE, *i});
            chemin.push_back({Pas::TIR, tir});
            for (std::uint32_t n = parent; n != a; n = noeuds_[n].parent) pasDe(n, chemin);
            std::ranges::reverse(chemin);
            if (accelerations_.nombre() == 0) tige_ = a;
            const std::uint32_t neuve = accelerations_.apprendre(std::move(chemin));
            pomper(accelerations_[neuve], courant_);
            appliquees.push_back(neuve);
            accelerations_.appliquer(courant_, appliquees);
            change = true;
        }
    }
}

void Couverture::garder(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> appliquees) {
    const auto numero = static_cast<std::uint32_t>(noeuds_.size());
    Noeud n{reserve_.ranger(courant_), parent, tir, AUCUN, 0};
    if (parent != AUCUN) {
        n.profondeur = noeuds_[parent].profondeur + 1;
        n.repere = noeuds_[parent].profondeur % REPERE == 0 ? parent : noeuds_[parent].repere;
    }
    noeuds_.push_back(n);
    retires_.push_back(false);
    if (!appliquees.empty()) appliquees_.emplace(numero, std::move(appliquees));

    if (!incomparables_) {
        couvertes_.clear();
        antichaine_.retirer(courant_, couvertes_);
        for (const std::uint32_t c : couvertes_) retires_[c] = true;
        antichaine_.ajouter(courant_, n.adresse, numero);
    }
    registre_.ajouter(Registre::empreinte(courant_), numero);

    std::uint64_t jetons = 0;
    courant_.pourChaque([&](std::uint32_t p, Compte c) {
        if (c > maxima_[p]) {
            if (maxima_[p] < buts_[p] && c >= buts_[p]) --butsManques_;
            maxima_[p] = c;
            temoins_[p] = numero;
        }
        if (c != OMEGA && __builtin_add_overflow(jetons, static_cast<std::uint64_t>(c), &jetons))
            jetons = ~std::uint64_t{0};
    });
    nonBornee_ = nonBornee_ || courant_.omegas() > 0;
    frontiere_.push({courant_.omegas(), numero, jetons});
}

std::vector<Pas> Couverture::chemin(std::uint32_t numero) const {
    std::vector<Pas> pas;
    for (std::uint32_t n = numero; n != AUCUN; n = noeuds_[n].parent) pasDe(n, pas);
    std::ranges::reverse(pas);
    return pas;
}

std::vector<std::uint32_t> Couverture::maximaux() const {
    std::vector<std::uint32_t> numeros;
    for (std::uint32_t n = 0; n < noeuds_.size(); ++n)
        if (!retires_[n]) numeros.push_back(n);
    return numeros;
}

}  // namespace Reseau
