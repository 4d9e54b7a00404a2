// Composition of steps into one acceleration, and their use on a marking.
//
// Walking the sequence forwards, `effet_[p]` is the change of place p so far and `pre_[p]` what the start
// must hold for every step so far to be possible: a step that needs n raises it to n - effet_[p]. A pumped
// place has effect OMEGA from there on and then meets every later need. A step that needs OMEGA of a place
// whose change so far is finite needs OMEGA at the start.
#include "Reseau/Acceleration.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "Reseau/Marquage.h"

namespace Reseau {

namespace {

// No sum of 64-bit counts along a run that fits in memory comes near it.
constexpr Large INFINI = static_cast<Large>(1) << 126;

constexpr std::size_t PAIRES = 1'000'000;  // arcs of those that are looked at
constexpr std::size_t RETENUES = 4096;     // of them

/// Whether two transitions in a row take nothing away and add something.
bool rendentTout(const Creux& un, const Creux& autre) {
    bool ajoutent = false;
    auto b = autre.begin();
    for (const Poids& a : un) {
        for (; b != autre.end() && b->place < a.place; ++b) {
            if (b->compte < 0) return false;
            ajoutent = true;
        }
        const bool commune = b != autre.end() && b->place == a.place;
        const Large somme = Large{a.compte} + (commune ? b->compte : 0);
        if (somme < 0) return false;
        ajoutent = ajoutent || somme > 0;
        if (commune) ++b;
    }
    return std::all_of(b, autre.end(), [](const Poids& p) { return p.compte > 0; }) && (ajoutent || b != autre.end());
}

/// What a transition needs where it can be repeated.
void besoins(const Transition& t, Creux& resultat) {
    resultat = t.pre;
    for (Poids& p : resultat)
        if (valeur(t.effet, p.place) < 0) p.compte = OMEGA;
}

/// Whether `forte` does wherever it can be repeated what `faible` does, and can be wherever that one can.
bool subsume(const Acceleration& forte, const Acceleration& faible) {
    return std::ranges::includes(forte.pompes, faible.pompes) &&
           std::ranges::all_of(forte.pre, [&](const Poids& p) { return p.compte <= valeur(faible.pre, p.place); });
}

}  // namespace

Accelerations::Accelerations(const Net& net)
    : net_(net),
      demandes_(net.places.size(), 0),
      attentes_(net.places.size()),
      parPompe_(net.places.size()),
      pre_(net.places.size(), 0),
      effet_(net.places.size(), 0),
      touchee_(net.places.size(), 0) {
    for (const Transition& tir : net.transitions)
        for (const Poids& p : tir.pre) ++demandes_[p.place];
    chercherLesPaires();
    inscrireLesCandidats();
}

/// Looks for pairs among the transitions that take something and those that bring it back: where the fewest do.
void Accelerations::chercherLesPaires() {
    std::vector<Listes<std::uint32_t>::Entree> apports;
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t)
        for (const Poids& e : net_.transitions[t].effet)
            if (e.compte > 0) apports.emplace_back(e.place, t);
    const Listes<std::uint32_t> producteurs(net_.places.size(), apports);
    std::size_t reste = PAIRES;
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        std::optional<std::span<const std::uint32_t>> rares;
        for (const Poids& e : net_.transitions[t].effet)
            if (e.compte < 0 && (!rares || producteurs[e.place].size() < rares->size())) rares = producteurs[e.place];
        if (!rares) continue;
        for (const std::uint32_t u : *rares) {
            const std::size_t arcs = net_.transitions[t].effet.size() + net_.transitions[u].effet.size();
            if (arcs > reste) return;
            reste -= arcs;
            if (!rendentTout(net_.transitions[t].effet, net_.transitions[u].effet)) continue;
            if (paires_.size() == RETENUES) return;
            paires_.push_back(composer({{Pas::TIR, t}, {Pas::TIR, u}}));
        }
    }
}

/// Enters every transition that adds something, and the pairs, under what they need.
void Accelerations::inscrireLesCandidats() {
    std::vector<Listes<Attente>::Entree> parBesoin;
    std::vector<Listes<Attente>::Entree> parOmega;
    const auto inscrire = [&](const Poids& besoin, const Attente& attente) {
        (besoin.compte == OMEGA ? parOmega : parBesoin).emplace_back(besoin.place, attente);
    };
    const auto tirs = static_cast<std::uint32_t>(net_.transitions.size());
    Creux ici;
    for (std::uint32_t t = 0; t < tirs; ++t) {
        const Transition& tir = net_.transitions[t];
        if (std::ranges::none_of(tir.effet, [](const Poids& e) { return e.compte > 0; })) continue;
        if (tir.pre.empty()) candidatsAEssayer_.push_back(t);
        besoins(tir, ici);
        attendre(t, ici, inscrire);
    }
    for (std::uint32_t i = 0; i < paires_.size(); ++i) attendre(tirs + i, paires_[i].pre, inscrire);
    candidatsParBesoin_ = {net_.places.size(), parBesoin};
    candidatsParOmega_ = {net_.places.size(), parOmega};
    appris_.resize(tirs + paires_.size(), false);
}

/// Has `numero` tried when one of `besoins` is met, unless the rarest other one is not: calls inscrire(need, what waits
/// for it) for each.
template <class F>
void Accelerations::attendre(std::uint32_t numero, const Creux& besoins, F&& inscrire) const {
    if (besoins.empty()) return;
    const auto [rare, suivant] = plusRares(besoins);
    for (const Poids& besoin : besoins) inscrire(besoin, Attente{numero, besoin == rare ? suivant : rare});
}

/// The needs of places that the fewest transitions need; the same one twice when there is only one.
std::pair<Poids, Poids> Accelerations::plusRares(const Creux& besoins) const {
    const auto plusRare = [this](const Poids& a, const Poids& b) { return demandes_[a.place] < demandes_[b.place]; };
    const Poids* rare = &besoins.front();
    const Poids* suivant = nullptr;
    for (const Poids& b : std::span(besoins).subspan(1)) {
        if (plusRare(b, *rare))
            suivant = std::exchange(rare, &b);
        else if (suivant == nullptr || plusRare(b, *suivant))
            suivant = &b;
    }
    return {*rare, suivant == nullptr ? *rare : *suivant};
}

void Accelerations::toucher(std::uint32_t place) {
    if (touchee_[place]) return;
    touchee_[place] = 1;
    touchees_.push_back(place);
}

void Accelerations::exiger(std::uint32_t place, Compte besoin) {
    toucher(place);
    if (effet_[place] == INFINI) return;
    if (besoin == OMEGA)
        pre_[place] = effet_[place] = INFINI;
    else
        pre_[place] = std::max(pre_[place], besoin - effet_[place]);
}

void Accelerations::ajouter(std::uint32_t place, Compte effet) {
    toucher(place);
    if (effet_[place] != INFINI) effet_[place] = effet == OMEGA ? INFINI : effet_[place] + effet;
}

void Accelerations::suivre(const Pas& p) {
    if (p.genre == Pas::TIR) {
        const Transition& t = net_.transitions[p.numero];
        for (const Poids& besoin : t.pre) exiger(besoin.place, besoin.compte);
        for (const Poids& e : t.effet) ajouter(e.place, e.compte);
    } else {
        const Acceleration& a = liste_[p.numero];
        for (const Poids& besoin : a.pre) exiger(besoin.place, besoin.compte);
        for (const std::uint32_t place : a.pompes) ajouter(place, OMEGA);
    }
}

std::uint32_t Accelerations::apprendre(std::vector<Pas> pas) { return inscrire(composer(std::move(pas))); }

/// Learns a candidate.
std::uint32_t Accelerations::apprendre(std::uint32_t candidat) {
    appris_[candidat] = true;
    if (candidat >= net_.transitions.size()) return inscrire(std::move(paires_[candidat - net_.transitions.size()]));
    return apprendre(std::vector<Pas>{{Pas::TIR, candidat}});
}

Acceleration Accelerations::composer(std::vector<Pas> pas) {
    for (const Pas& p : pas) suivre(p);
    std::ranges::sort(touchees_);
    Acceleration a;
    a.pas = std::move(pas);
    for (const std::uint32_t p : touchees_) {
        const Compte besoin = effet_[p] < 0 || pre_[p] >= OMEGA ? OMEGA : static_cast<Compte>(pre_[p]);
        if (besoin > 0) a.pre.push_back({p, besoin});
        if (besoin != OMEGA && effet_[p] > 0) a.pompes.push_back(p);
        pre_[p] = effet_[p] = 0;
        touchee_[p] = 0;
    }
    touchees_.clear();
    return a;
}

/// Enters one, unless one that is known does as much with no more; those that it does as much as are tried no longer.
std::uint32_t Accelerations::inscrire(Acceleration a) {
    const std::uint32_t numero = nombre();
    liste_.push_back(std::move(a));
    const Acceleration& neuve = liste_.back();
    if (subsumee(neuve)) return numero;
    for (const std::uint32_t i : subsumees(neuve)) {
        actives_.erase(std::ranges::lower_bound(actives_, i));
        attentes_.oublier(i, liste_[i].pre);
        for (const std::uint32_t p : liste_[i].pompes) std::erase(parPompe_[p], i);
    }
    actives_.push_back(numero);
    attendre(numero, neuve.pre,
             [this](const Poids& besoin, const Attente& attente) { attentes_.de(besoin).push_back(attente); });
    for (const std::uint32_t p : neuve.pompes) parPompe_[p].push_back(numero);
    return numero;
}

/// Whether an active one pumps all that `a` pumps and needs no more: one of those that pump what the fewest pump.
bool Accelerations::subsumee(const Acceleration& a) const {
    const auto combien = [this](std::uint32_t p) { return parPompe_[p].size(); };
    return std::ranges::any_of(parPompe_[*std::ranges::min_element(a.pompes, {}, combien)],
                               [&](std::uint32_t i) { return subsume(liste_[i], a); });
}

/// The active ones that pump no more than `a` and need all that it needs: some of those that need what the fewest need.
std::vector<std::uint32_t> Accelerations::subsumees(const Acceleration& a) const {
    std::vector<std::uint32_t> toutes = actives_;
    if (!a.pre.empty()) {
        const auto combien = [this](const Poids& p) { return attentes_.nombre(p.place); };
        const std::uint32_t rare = std::ranges::min_element(a.pre, {}, combien)->place;
        toutes.clear();
        for (const auto* ici : {&attentes_.parBesoin[rare], &attentes_.parOmega[rare]})
            for (const Attente& x : *ici) toutes.push_back(x.numero);
    }
    std::erase_if(toutes, [&](std::uint32_t i) { return !subsume(a, liste_[i]); });
    return toutes;
}

/// Looks up once for each parent whether it and what comes of it has omega wherever something is raised.
template <class F>
bool Accelerations::accomplie(std::vector<Accomplie>& vues, std::uint32_t numero, F&& leve) const {
    if (parent_ == nullptr) return false;
    if (numero >= vues.size()) vues.resize(numero + 1);
    Accomplie& ici = vues[numero];
    if (ici.parent != parents_) ici = {parents_, !leve(*parent_)};
    return ici.oui;
}

bool Accelerations::leveEncore(const Acceleration& a, const Marquage& m) {
    return std::ranges::any_of(a.pompes, [&](std::uint32_t p) { return m[p] != OMEGA; });
}

bool Accelerations::candidatLeveEncore(std::uint32_t candidat, const Marquage& m) const {
    const std::size_t tirs = net_.transitions.size();
    if (candidat >= tirs) return leveEncore(paires_[candidat - tirs], m);
    return std::ranges::any_of(net_.transitions[candidat].effet,
                               [&](const Poids& e) { return e.compte > 0 && m[e.place] != OMEGA; });
}

bool Accelerations::applicable(const Acceleration& a, const Marquage& m) {
    return leveEncore(a, m) && std::ranges::all_of(a.pre, [&](const Poids& p) { return m[p.place] >= p.compte; });
}

/// Whether the transition can be fired as often as one likes, and adds to a finite place.
bool Accelerations::repetable(const Transition& t, const Marquage& m) const {
    bool ajoute = false;
    for (const Poids& e : t.effet) {
        if (m[e.place] == OMEGA) continue;
        if (e.compte < 0) return false;
        ajoute = true;
    }
    return ajoute && std::ranges::all_of(t.pre, [&](const Poids& p) { return m[p.place] >= p.compte; });
}

bool Accelerations::repetable(std::uint32_t candidat, const Marquage& m) const {
    const std::size_t tirs = net_.transitions.size();
    return candidat < tirs ? repetable(net_.transitions[candidat], m) : applicable(paires_[candidat - tirs], m);
}

void Accelerations::appliquer(Marquage& m, std::vector<std::uint32_t>& appliquees) {
    parent_ = nullptr;
    aEssayer_ = actives_;
    propager(m, appliquees);
}

void Accelerations::appliquer(Marquage& m, const Creux& effet, std::uint32_t connues,
                              std::vector<std::uint32_t>& appliquees) {
    for (const Poids& e : effet)
        if (e.compte > 0) essayer(e.place, m);
    aEssayer_.insert(aEssayer_.end(), std::ranges::lower_bound(actives_, connues), actives_.end());
    propager(m, appliquees);
}

void Accelerations::appliquer(std::uint32_t numero, Marquage& m, std::vector<std::uint32_t>& appliquees) {
    pomper(numero, m, appliquees);
    propager(m, appliquees);
}

/// Applies what is to be tried, and then what that makes possible; what is known already first.
void Accelerations::propager(Marquage& m, std::vector<std::uint32_t>& appliquees) {
    while (true) {
        if (!aEssayer_.empty()) {
            const std::uint32_t i = aEssayer_.back();
            aEssayer_.pop_back();
            const auto leve = [&](const Marquage& parent) { return leveEncore(liste_[i], parent); };
            if (!accomplie(accomplies_, i, leve) && applicable(liste_[i], m)) pomper(i, m, appliquees);
        } else if (!candidatsAEssayer_.empty()) {
            const std::uint32_t c = candidatsAEssayer_.back();
            candidatsAEssayer_.pop_back();
            const auto leve = [&](const Marquage& parent) { return candidatLeveEncore(c, parent); };
            if (!accomplie(candidatsAccomplis_, c, leve) && repetable(c, m)) pomper(apprendre(c), m, appliquees);
        } else {
            return;
        }
    }
}

/// Puts what may have become possible because `place` has gained on what is to be tried.
void Accelerations::essayer(std::uint32_t place, const Marquage& m) {
    const auto possible = [&m](const Attente& a) { return m[a.autre.place] >= a.autre.compte; };
    const auto joindre = [&](const std::vector<Attente>& attentes) {
        for (const Attente& a : attentes)
            if (possible(a)) aEssayer_.push_back(a.numero);
    };
    const auto joindreCandidats = [&](std::span<const Attente> attentes) {
        for (const Attente& a : attentes)
            if (!appris_[a.numero] && possible(a)) candidatsAEssayer_.push_back(a.numero);
    };
    joindre(attentes_.parBesoin[place]);
    joindreCandidats(candidatsParBesoin_[place]);
    if (m[place] != OMEGA) return;
    joindre(attentes_.parOmega[place]);
    joindreCandidats(candidatsParOmega_[place]);
}

/// Raises what an acceleration pumps.
void Accelerations::pomper(std::uint32_t numero, Marquage& m, std::vector<std::uint32_t>& appliquees) {
    appliquees.push_back(numero);
    for (const std::uint32_t p : liste_[numero].pompes) {
        if (m[p] == OMEGA) continue;
        m.poser(p, OMEGA);
        essayer(p, m);
    }
}

}  // namespace Reseau
