#include "Reseau/Tir.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <stdexcept>
#include <utility>

namespace Reseau {

namespace {

constexpr std::uint32_t AUCUNE = ~std::uint32_t{0};
constexpr std::uint64_t ESSAIS = 8;
constexpr std::size_t BLOCS = 4000;                     // in one run
constexpr std::size_t MEMOIRE = 600;                    // the longest sequence that is recognised as repeatable
constexpr std::size_t COURTE = 32;                      // the longest that is repeated at its first sight
constexpr std::size_t DETOURS = 400;                    // markings looked at for one detour
constexpr std::uint64_t TRAVAIL_PAR_ESSAI = 2'000'000;  // transitions looked at

/// A number that depends on both arguments in every bit (the finaliser of splitmix64).
std::uint64_t melanger(std::uint64_t graine, std::uint64_t n) {
    std::uint64_t x = graine * 0x9E3779B97F4A7C15U + n;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

void appliquer(const Transition& t, Compte fois, std::vector<Compte>& m) {
    for (const Poids& e : t.effet) m[e.place] = somme(m[e.place], produit(e.compte, fois));
}

bool deplace(const Transition& t) {
    return t.effet.size() == 2 && t.effet[0].compte == -t.effet[1].compte && std::abs(t.effet[0].compte) == 1;
}

}  // namespace

Tireur::Tireur(const Net& net)
    : net_(net),
      minorants_(net.initial),
      depassees_(net.places.size(), false),
      origines_(net.places.size(), {0, 0}),
      courses_(1),
      besoin_(net.places.size(), 0),
      effet_(net.places.size(), 0),
      parTour_(net.transitions.size(), 0) {}

bool Tireur::tirable(std::uint32_t t, const std::vector<Compte>& m) const {
    return std::ranges::all_of(net_.transitions[t].pre, [&m](const Poids& p) { return m[p.place] >= p.compte; });
}

void Tireur::realiser(const std::vector<Compte>& comptes, std::uint32_t place, Compte but) {
    if (ordre_.empty()) ordonner();
    place_ = place;
    but_ = but;
    for (std::uint64_t graine = 0; graine < ESSAIS && travail_ > 0; ++graine) {
        reserve_ = std::min(TRAVAIL_PAR_ESSAI, travail_);
        travail_ -= reserve_;
        bool complete = false;
        try {
            complete = essayer(comptes, graine);
        } catch (const Depassement& e) {
            depasser(e);
        } catch (const Debordement&) {
            // What this run fires does not fit; it says nothing about the others.
        }
        if (progres_) courses_.push_back(std::move(course_));
        travail_ += reserve_;
        if (complete) return;
    }
}

/// One greedy attempt; @return whether it reached the goal or made every firing. Its preferences stay the same
/// throughout, so that what is done once is done again and fired in bulk.
bool Tireur::essayer(const std::vector<Compte>& comptes, std::uint64_t graine) {
    marquage_ = net_.initial;
    reste_ = comptes;
    credit_.assign(comptes.size(), 0);
    trace_.clear();
    course_.clear();
    progres_ = false;
    while (course_.size() < BLOCS && depenser(reste_.size())) {
        if (minorants_[place_] >= but_) return true;
        const std::uint32_t t = choisir(graine);
        if (t == AUCUNE) {
            if (std::ranges::all_of(reste_, [](Compte c) { return c <= 0; })) return true;
            if (!detour(true) && !detour(false)) return false;
            continue;
        }
        oublier();
        prefixer({t, 1});
        trace_.push_back({t, repetitions()});
        tirer({trace_.back()}, 1);
        if (repeter(graine % 2 == 0)) trace_.clear();
    }
    return false;
}

bool Tireur::depenser(std::uint64_t travail) {
    reserve_ -= std::min(reserve_, travail);
    return reserve_ > 0;
}

/// The best liked of the transitions that can be fired here and leave the others a way; any of them when none does.
std::uint32_t Tireur::choisir(std::uint64_t graine) {
    std::vector<std::pair<std::uint64_t, std::uint32_t>> choix;
    for (std::uint32_t t = 0; t < reste_.size(); ++t)
        if (reste_[t] > 0 && tirable(t, marquage_)) choix.emplace_back(rang(t, graine), t);
    if (choix.empty()) return AUCUNE;
    std::ranges::sort(choix, [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first > b.first : a.second < b.second;
    });
    if (choix.size() == 1) return choix[0].second;
    const auto bonne = std::ranges::find_if(choix, [this](const auto& c) { return laisseUnChemin(c.second); });
    return bonne == choix.end() ? choix[0].second : bonne->second;
}

/// Whether everything that is left to be fired after `tir` can still be marked, as far as firing without taking tells:
/// as in Fleury's algorithm for Euler's walks, a bridge is crossed last.
bool Tireur::laisseUnChemin(std::uint32_t tir) {
    std::vector<bool> marquee(marquage_.size());
    for (std::size_t p = 0; p < marquee.size(); ++p) marquee[p] = marquage_[p] > 0;
    for (const Poids& e : net_.transitions[tir].effet) marquee[e.place] = marquage_[e.place] + e.compte > 0;
    std::vector<std::uint32_t> attendent;
    for (std::uint32_t t = 0; t < reste_.size(); ++t)
        if (reste_[t] > (t == tir ? 1 : 0)) attendent.push_back(t);
    for (bool change = true; change && !attendent.empty();) {
        depenser(attendent.size());
        const auto parties = std::erase_if(attendent, [&](std::uint32_t t) {
            const Transition& tr = net_.transitions[t];
            if (!std::ranges::all_of(tr.pre, [&marquee](const Poids& p) { return marquee[p.place]; })) return false;
            for (const Poids& p : tr.post) marquee[p.place] = true;
            return true;
        });
        change = parties > 0;
    }
    return attendent.empty();
}

/// How much an attempt likes a transition: the more firings are left; or the earlier it can be fired at all, so that
/// what produces is done before what consumes; or by a random ranking.
std::uint64_t Tireur::rang(std::uint32_t t, std::uint64_t graine) const {
    switch (graine / 2) {
        case 0:
            return static_cast<std::uint64_t>(reste_[t]);
        case 1:
            return net_.transitions.size() - ordre_[t] + 1;
        default:
            return melanger(graine, t) | 1;
    }
}

/// Ranks the transitions in the order in which they become possible when firing takes nothing away.
void Tireur::ordonner() {
    std::vector<bool> marquee(net_.places.size());
    for (std::size_t p = 0; p < marquee.size(); ++p) marquee[p] = net_.initial[p] > 0;
    ordre_.assign(net_.transitions.size(), net_.transitions.size());
    std::size_t rang = 0;
    for (bool change = true; change;) {
        change = false;
        std::vector<std::uint32_t> neuves;
        for (std::uint32_t t = 0; t < ordre_.size(); ++t)
            if (ordre_[t] == ordre_.size() &&
                std::ranges::all_of(net_.transitions[t].pre, [&](const Poids& p) { return marquee[p.place]; }))
                neuves.push_back(t);
        for (const std::uint32_t t : neuves) {
            ordre_[t] = rang;
            for (const Poids& p : net_.transitions[t].post) marquee[p.place] = true;
            change = true;
        }
        ++rang;
    }
}

/// Puts one more step before the sequence that is being weighed: what it needs, and what it leaves of the later needs.
void Tireur::prefixer(const Elan& elan) {
    const Transition& t = net_.transitions[elan.transition];
    tours_.push_back(elan.transition);
    parTour_[elan.transition] = somme(parTour_[elan.transition], elan.fois);
    for (const Poids& e : t.effet) {
        touchees_.push_back(e.place);  // first, so that `oublier` finds it also after a sum that does not fit
        const Compte change = produit(e.compte, elan.fois);
        besoin_[e.place] = std::max<Compte>(0, somme(besoin_[e.place], -change));
        effet_[e.place] = somme(effet_[e.place], change);
    }
    for (const Poids& p : t.pre) {
        touchees_.push_back(p.place);
        // The need is met before the first of the firings in a row and, where each takes something, before the last.
        const Compte perte = std::max<Compte>(0, -valeur(t.effet, p.place));
        besoin_[p.place] = std::max(besoin_[p.place], somme(p.compte, produit(perte, elan.fois - 1)));
    }
}

/// How many times the weighed sequence can be gone through in a row from here within the firings left and those
/// credited: the marking meets its need before the first time and, where its effect is negative, still before the last.
Compte Tireur::repetitions() const {
    Compte fois = OMEGA - 1;
    for (const std::uint32_t t : tours_) fois = std::min(fois, somme(reste_[t], credit_[t]) / parTour_[t]);
    for (const std::uint32_t p : touchees_) {
        if (marquage_[p] < besoin_[p]) return 0;
        if (effet_[p] < 0) fois = std::min(fois, (marquage_[p] - besoin_[p]) / -effet_[p] + 1);
    }
    return fois;
}

void Tireur::oublier() {
    for (const std::uint32_t p : touchees_) besoin_[p] = effet_[p] = 0;
    for (const std::uint32_t t : tours_) parTour_[t] = 0;
    touchees_.clear();
    tours_.clear();
}

/// Goes through the end of the trail as many times more as possible: a sequence that stands there twice or, when
/// `avide`, any short one.
bool Tireur::repeter(bool avide) {
    const auto memes = [](const Elan& a, const Elan& b) { return a.transition == b.transition && a.fois == b.fois; };
    const auto fin = [this](std::size_t longueur) { return trace_.end() - static_cast<std::ptrdiff_t>(longueur); };
    oublier();
    for (std::size_t longueur = 1; avide && longueur <= std::min(trace_.size(), COURTE); ++longueur) {
        prefixer(*fin(longueur));
        depenser(longueur);
        if (repeterFin(longueur, 2)) return true;
    }
    for (std::size_t longueur = 1; longueur <= std::min(trace_.size() / 2, MEMOIRE); ++longueur) {
        if (!std::equal(fin(longueur), trace_.end(), fin(2 * longueur), memes)) continue;
        oublier();
        for (std::size_t i = 1; i <= longueur; ++i) prefixer(*fin(i));
        depenser(longueur);
        if (repeterFin(longueur, 1)) return true;
    }
    return false;
}

/// Goes through the last `longueur` steps of the trail, which have been weighed, again, if that can be done `minimum`
/// times.
bool Tireur::repeterFin(std::size_t longueur, Compte minimum) {
    const Compte fois = repetitions();
    if (fois < minimum) return false;
    tirer({trace_.end() - static_cast<std::ptrdiff_t>(longueur), trace_.end()}, fois);
    return true;
}

void Tireur::tirer(std::vector<Elan> sequence, Compte fois) {
    Bloc bloc{std::move(sequence), fois};
    parcourir(net_, bloc, marquage_);
    for (const Elan& e : bloc.elans) {
        const Compte tirs = produit(e.fois, fois);
        const Compte compris = std::min(reste_[e.transition], tirs);
        reste_[e.transition] -= compris;
        credit_[e.transition] = std::max<Compte>(0, credit_[e.transition] - (tirs - compris));
    }
    noter(bloc);
}

/// Appends a block that has led to `marquage_`, and remembers what has been reached.
void Tireur::noter(const Bloc& bloc) {
    course_.push_back(bloc);
    for (const Elan& elan : bloc.elans)
        for (const Poids& e : net_.transitions[elan.transition].effet) {
            if (marquage_[e.place] <= minorants_[e.place]) continue;
            minorants_[e.place] = marquage_[e.place];
            origines_[e.place] = {courses_.size(), course_.size()};
            progres_ = true;
        }
}

/// Compares the end of the last run with the markings after each of its blocks, the last one first: where one is
/// covered, what comes after it can be repeated for ever.
void Tireur::pomper() {
    const Course& run = courses_.back();
    std::vector<Compte> fin = net_.initial;
    for (const Bloc& bloc : run) parcourir(net_, bloc, fin);
    std::vector<Compte> m = fin;
    for (std::size_t i = run.size(); i-- > 0;) {
        parcourir(net_, {run[i].elans, -run[i].fois}, m);  // back
        if (!std::ranges::equal(m, fin, std::ranges::less_equal())) continue;
        bool neuve = false;
        for (std::size_t p = 0; p < m.size() && !neuve; ++p) neuve = m[p] < fin[p] && minorants_[p] != OMEGA;
        if (neuve) pomper(i, run.size());
    }
}

void Tireur::pomper(Course course) {
    courses_.push_back(std::move(course));
    const std::size_t avant = pompes_.size();
    pomper();
    if (pompes_.size() == avant) courses_.pop_back();
}

void Tireur::pomper(std::size_t debut, std::size_t fin) {
    const std::size_t numero = courses_.size() - 1;
    Pompe pompe{numero, debut, fin, {}, {}};
    std::vector<Compte> m = net_.initial;
    for (std::size_t i = 0; i < debut; ++i) parcourir(net_, courses_[numero][i], m);
    const std::vector<Compte> avant = m;
    for (std::size_t i = debut; i < fin; ++i) parcourir(net_, courses_[numero][i], m);
    for (std::uint32_t p = 0; p < m.size(); ++p) {
        if (avant[p] > 0) pompe.besoin.push_back({p, avant[p]});
        if (avant[p] == m[p]) continue;
        pompe.monte.push_back(p);
        if (minorants_[p] == OMEGA) continue;
        minorants_[p] = OMEGA;
        origines_[p] = {numero, fin, pompes_.size()};
    }
    pompes_.push_back(std::move(pompe));
}

void Tireur::depasser(const Depassement& depassement) {
    for (const std::uint32_t p : depassement.places) depassees_[p] = true;
}

void Tireur::adopter(Course course) {
    marquage_ = net_.initial;
    course_.clear();
    progres_ = false;
    for (const Bloc& bloc : course) {
        parcourir(net_, bloc, marquage_);
        noter(bloc);
    }
    if (progres_) courses_.push_back(std::move(course_));
}

/// Nothing that is left can be fired here: walks to the nearest marking where something can, if there is one near. The
/// transitions of the way are credited as many firings as that is left with, since it may well take that many such
/// ways. With `deplacements` the way is only of transitions that move one token from a place to another: a control
/// token finds its way around, and nothing else is used up.
bool Tireur::detour(bool deplacements) {
    struct Etape {
        std::vector<Compte> marquage;
        std::size_t avant;
        std::uint32_t transition;
    };
    std::vector<Etape> etapes{{marquage_, 0, AUCUNE}};
    std::set<std::vector<Compte>> vus{marquage_};
    for (std::size_t i = 0; i < etapes.size() && etapes.size() < DETOURS && depenser(reste_.size()); ++i)
        for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
            if (!tirable(t, etapes[i].marquage)) continue;
            if (reste_[t] > 0) {
                std::vector<std::uint32_t> chemin;
                for (std::size_t e = i; e != 0; e = etapes[e].avant) chemin.push_back(etapes[e].transition);
                std::ranges::reverse(chemin);
                for (const std::uint32_t c : chemin) {
                    credit_[c] = std::max(credit_[c], reste_[t]);
                    trace_.push_back({c, 1});
                    tirer({trace_.back()}, 1);
                }
                return true;
            }
            if (deplacements && !deplace(net_.transitions[t])) continue;
            std::vector<Compte> suivant = etapes[i].marquage;
            appliquer(net_.transitions[t], 1, suivant);
            depenser(suivant.size());
            if (vus.insert(suivant).second) etapes.push_back({std::move(suivant), i, t});
        }
    return false;
}

Course Tireur::course(const Origine& origine, std::size_t debut) const {
    const auto entiere = courses_[origine.course].begin();
    return {entiere + static_cast<std::ptrdiff_t>(debut), entiere + static_cast<std::ptrdiff_t>(origine.blocs)};
}

Course Tireur::cycle(const Pompe& pompe) const {
    const auto debut = courses_[pompe.course].begin();
    return {debut + static_cast<std::ptrdiff_t>(pompe.debut), debut + static_cast<std::ptrdiff_t>(pompe.fin)};
}

Course Tireur::tige(const Pompe& pompe) const {
    const Course& entiere = courses_[pompe.course];
    return {entiere.begin(), entiere.begin() + static_cast<std::ptrdiff_t>(pompe.debut)};
}

/// Fires a transition `fois` times in a row; it moves every place by the same amount each time, so when it is enabled
/// the first time and the last it is enabled in between.
void Tireur::suivre(const Elan& elan, std::vector<Compte>& m) const {
    const Transition& t = net_.transitions[elan.transition];
    const bool premiere = tirable(elan.transition, m);
    appliquer(t, elan.fois - 1, m);
    if (!premiere || !tirable(elan.transition, m)) throw std::logic_error("a run cannot be fired");
    appliquer(t, 1, m);
}

Creux Tireur::arrivee(const Course& course) const {
    std::vector<Compte> m = net_.initial;
    for (const Bloc& b : course) {
        for (const Elan& e : b.elans) suivre(e, m);
        if (b.fois == 1) continue;
        parcourir(net_, {b.elans, b.fois - 2}, m);  // what one transition moves in all need not fit
        for (const Elan& e : b.elans) suivre(e, m);
    }
    Creux v;
    for (std::uint32_t p = 0; p < m.size(); ++p)
        if (m[p] != 0) v.push_back({p, m[p]});
    return v;
}

}  // namespace Reseau
