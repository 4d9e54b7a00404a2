#include "Reseau/Visite.h"

#include <algorithm>
#include <limits>

#include "Reseau/Tir.h"

namespace Reseau {

namespace {

constexpr std::uint64_t INFINI = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t PLAFOND = 1'000'000'000;  // no way is dearer
constexpr unsigned REPRISES = 4;                  // ways tried to one place
constexpr std::uint64_t VOISINAGE = 2;            // what is at most so many times as far as the nearest is near, too
constexpr auto PRIX = &std::pair<std::uint64_t, std::uint32_t>::first;
constexpr std::uint64_t LARGESSE = 4;  // firings, as a multiple of what the way should cost

}  // namespace

Visites::Visites(const Net& net)
    : net_(net),
      buts_(net.places.size(), 0),
      prix_(net.places.size()),
      depenses_(net.transitions.size()),
      bilan_(net.places.size(), 0) {
    std::vector<Listes<Poids>::Entree> demandes;
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        for (const Poids& p : net.transitions[t].pre) demandes.push_back({p.place, {t, p.compte}});
    besoins_ = demandes.size();
    demandes_ = {net.places.size(), demandes};
}

void Visites::aller(std::vector<Compte>& vus, const But& but, Tireur& tireur, std::uint64_t travail, bool enMasse) {
    enMasse_ = enMasse;
    vus_ = &vus;
    but_ = &but;
    travail_ = travail;
    for (std::uint32_t p = 0; p < vus.size(); ++p) buts_[p] = vus[p] == OMEGA ? 0 : but(p);
    marquage_ = net_.initial;
    while (travail_ > 0) {
        const bool auDepart = course_.empty();
        detendre(AUCUNE);
        if (proches_.empty()) {
            if (auDepart) break;
            recommencer(tireur);
        } else if (const std::uint32_t place = proches_.front().second; atteindre(place)) {
            for (const auto& [prix, autre] : proches_)
                if (vise(autre)) suivreLePlan(autre, (*vus_)[autre] + 1);
        } else {
            // There is a way from the start, or none.
            buts_[place] = 0;
            if (!auDepart) remises_.push_back(place);
        }
    }
    recommencer(tireur);
}

/// Hands over the walk, and goes back to the initial marking.
void Visites::recommencer(Tireur& tireur) {
    if (!course_.empty()) {
        tireur.adopter(std::move(course_));
        for (const Cycle& c : cycles_) tireur.pomper(c.debut, c.fin);
    }
    for (const std::uint32_t p : remises_) buts_[p] = (*vus_)[p] == OMEGA ? 0 : (*but_)(p);
    remises_.clear();
    course_.clear();
    cycles_.clear();
    marquage_ = net_.initial;
}

bool Visites::depenser(std::size_t arcs) {
    travail_ -= std::min<std::uint64_t>(travail_, arcs);
    return travail_ > 0;
}

/// Works out prices until that of `but` is known, or, of no place in particular, those of the nearest ones that are
/// still to be seen, which stand in `proches_` then.
/// @return whether the price of `but` is known
bool Visites::detendre(std::uint32_t but) {
    preparer();
    proches_.clear();
    Cout moindre = INFINI / LARGESSE;
    while (!file_.empty() && depenser(1)) {
        std::ranges::pop_heap(file_, std::greater(), PRIX);
        const auto [cout, place] = file_.back();
        file_.pop_back();
        if (cout > moindre * VOISINAGE) break;
        if (prix_[place].fixe) continue;
        fixer(place);
        if (place == but) return true;
        if (but != AUCUNE || !vise(place)) continue;
        const Cout total = cout * static_cast<Cout>(std::min<Compte>((*vus_)[place] + 1 - marquage_[place], PLAFOND));
        proches_.emplace_back(total, place);
        moindre = std::min(moindre, total);
    }
    std::erase_if(proches_, [&](const auto& proche) { return proche.first > moindre * VOISINAGE; });
    std::ranges::stable_sort(proches_, {}, PRIX);
    return false;
}

/// Starts with the transitions that can be fired.
void Visites::preparer() {
    file_.clear();
    prix_.assign(prix_.size(), {INFINI, AUCUNE, false});
    for (std::uint32_t t = 0; t < depenses_.size(); ++t) {
        const Creux& pre = net_.transitions[t].pre;
        const auto attend =
            std::ranges::count_if(pre, [this](const Poids& p) { return marquage_[p.place] < p.compte; });
        depenses_[t] = {1, static_cast<std::uint32_t>(attend)};
        if (attend == 0) proposer(t);
    }
    depenser(prix_.size() + besoins_);
}

/// Offers what a transition adds to for its price.
void Visites::proposer(std::uint32_t tir) {
    const Cout cout = depenses_[tir].cout;
    depenser(net_.transitions[tir].effet.size());
    for (const Poids& e : net_.transitions[tir].effet) {
        Prix& prix = prix_[e.place];
        if (e.compte < 0 || prix.fixe || cout >= prix.cout) continue;
        prix = {cout, tir, false};
        file_.emplace_back(cout, e.place);
        std::ranges::push_heap(file_, std::greater(), PRIX);
    }
}

void Visites::fixer(std::uint32_t place) {
    Prix& prix = prix_[place];
    prix.fixe = true;
    depenser(demandes_[place].size());
    for (const auto& [tir, besoin] : demandes_[place]) {
        const Compte jetons = besoin - marquage_[place];
        if (jetons <= 0) continue;
        Depense& depense = depenses_[tir];
        const auto fois = static_cast<Cout>(std::min<Compte>(jetons, PLAFOND));
        depense.cout = std::min(PLAFOND, depense.cout + prix.cout * fois);
        if (--depense.attend == 0) proposer(tir);
    }
}

/// Goes to where `place`, whose price is known, holds more than ever.
bool Visites::atteindre(std::uint32_t place) {
    const Compte but = (*vus_)[place] + 1;
    for (unsigned essai = 0; essai < REPRISES; ++essai) {
        if (essai > 0 && !detendre(place)) return false;
        if (suivreLePlan(place, but)) return true;
    }
    return false;
}

/// Fires what brings tokens to `place`, and before it what brings what that needs; in bulk where it is known how many
/// more than one the place is to be seen with.
bool Visites::suivreLePlan(std::uint32_t place, Compte but) {
    const Cout cout = prix_[place].cout * static_cast<Cout>(std::min<Compte>(but - marquage_[place], PLAFOND));
    const bool enMasse = enMasse_ && buts_[place] != OMEGA && buts_[place] > but;
    plan_.assign(1, prix_[place].source);
    for (Cout reste = std::min(cout, PLAFOND) * LARGESSE; reste > 0;) {
        const std::uint32_t tir = plan_.back();
        if (!depenser(net_.transitions[tir].pre.size() + 1)) return false;
        const std::uint32_t absente = manque(tir);
        if (absente != AUCUNE) {
            // What was there when the prices were worked out has none, or one that leads round in a circle.
            if (!prix_[absente].fixe || prix_[absente].cout >= depenses_[tir].cout) return false;
            plan_.push_back(prix_[absente].source);
            continue;
        }
        if (!tirer(tir, enMasse ? repetitions(tir) : 1)) return false;
        if (marquage_[place] >= but) return true;
        --reste;
        if (plan_.size() > 1) plan_.pop_back();
    }
    return false;
}

/// Of the places that the transition needs more of, the dearest; AUCUNE when it can be fired.
std::uint32_t Visites::manque(std::uint32_t tir) const {
    std::uint32_t choix = AUCUNE;
    for (const Poids& p : net_.transitions[tir].pre)
        if (marquage_[p.place] < p.compte && (choix == AUCUNE || prix_[p.place].cout > prix_[choix].cout))
            choix = p.place;
    return choix;
}

/// How often a transition that can be fired can be in a row, as long as every count fits; once where it takes nothing.
Compte Visites::repetitions(std::uint32_t tir) const {
    Compte fois = OMEGA;
    bool prend = false;
    for (const Poids& e : net_.transitions[tir].effet) {
        const Compte ici = marquage_[e.place];
        const Compte reste = ici - valeur(net_.transitions[tir].pre, e.place);
        fois = std::min(fois, e.compte < 0 ? reste / -e.compte + 1 : (OMEGA - 1 - ici) / e.compte);
        prend = prend || e.compte < 0;
    }
    return prend ? std::max<Compte>(fois, 1) : 1;
}

/// @return whether every count fits
bool Visites::tirer(std::uint32_t tir, Compte fois) {
    const Creux& effet = net_.transitions[tir].effet;
    depenser(effet.size());
    for (const Poids& e : effet)
        if (e.compte > 0 && marquage_[e.place] >= OMEGA - e.compte) return false;
    for (const Poids& e : effet) marquage_[e.place] += e.compte * fois;
    const bool repetee = !course_.empty() && course_.back().elans[0].transition == tir &&
                         (cycles_.empty() || cycles_.back().fin < course_.size());
    if (repetee)
        course_.back().elans[0].fois += fois;
    else
        course_.push_back({{{tir, fois}}, 1});
    for (const Poids& e : effet)
        if (marquage_[e.place] > (*vus_)[e.place]) voir(e.place);
    return true;
}

/// Takes note of a place that holds more than ever.
void Visites::voir(std::uint32_t place) {
    Compte& vu = (*vus_)[place];
    vu = marquage_[place];
    buts_[place] = (*but_)(place);
    if (vise(place)) pomper(place);
}

/// Looks for an end of the walk that takes nothing and adds to `place`, so that it can be repeated for ever.
void Visites::pomper(std::uint32_t place) {
    std::size_t negatives = 0;
    std::size_t debut = course_.size();
    bool pompe = false;
    while (debut > 0 && !pompe && travail_ > 0) {
        const Elan& elan = course_[--debut].elans[0];
        depenser(net_.transitions[elan.transition].effet.size());
        for (const Poids& e : net_.transitions[elan.transition].effet) {
            Compte& ici = bilan_[e.place];
            negatives -= ici < 0 ? 1 : 0;
            ici += e.compte * elan.fois;
            negatives += ici < 0 ? 1 : 0;
        }
        pompe = negatives == 0 && bilan_[place] > 0;
    }
    if (pompe) cycles_.push_back({debut, course_.size()});
    for (std::size_t i = debut; i < course_.size(); ++i)
        for (const Poids& e : net_.transitions[course_[i].elans[0].transition].effet) {
            if (pompe && bilan_[e.place] > 0) {
                (*vus_)[e.place] = OMEGA;
                buts_[e.place] = 0;
            }
            bilan_[e.place] = 0;
        }
}

}  // namespace Reseau
