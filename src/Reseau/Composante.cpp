#include "Reseau/Composante.h"

#include <algorithm>
#include <utility>

namespace Reseau {

namespace {

constexpr std::uint64_t TRAVAIL = 400'000;  // arcs followed for one place

}  // namespace

Composantes::Composantes(const Net& net) : net_(net), poids_(net.places.size(), 0), gains_(net.transitions.size(), 0) {
    std::vector<Listes<Arc>::Entree> arcs;
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        for (const Poids& e : net.transitions[t].effet) arcs.push_back({e.place, {t, e.compte}});
    arcs_ = {net.places.size(), arcs};
}

std::optional<Creux> Composantes::chercher(std::uint32_t place, Compte borne, const std::vector<Compte>& vus,
                                           std::uint64_t& travail) {
    toutes_ = false;
    plusLourd_ = LEGER;
    return depuis({{place, 1}}, borne, vus, TRAVAIL, travail);
}

std::optional<Creux> Composantes::couvrir(const std::vector<Compte>& vus, Compte plusLourd, std::uint64_t& travail) {
    Creux toutes;
    for (const std::uint32_t p : avalDabord()) toutes.push_back({p, 1});
    toutes_ = true;
    plusLourd_ = plusLourd;
    return depuis(toutes, OMEGA - 1, vus, travail, travail);
}

/// All places, those that tokens come to before those that they come from, but for circles: so what the places ahead
/// weigh is known when a transition is looked at that feeds them, and each is looked at once.
std::vector<std::uint32_t> Composantes::avalDabord() const {
    const auto places = static_cast<std::uint32_t>(net_.places.size());
    std::vector<std::uint32_t> ordre;
    std::vector<bool> vus(places + net_.transitions.size(), false);  // places, and then transitions
    std::vector<std::pair<std::uint32_t, std::size_t>> pile;         // with the arcs gone along
    const auto entrer = [&](std::uint32_t noeud) {
        if (!vus[noeud]) pile.emplace_back(noeud, 0);
        vus[noeud] = true;
    };
    for (std::uint32_t p = 0; p < places; ++p)
        for (entrer(p); !pile.empty();) {
            auto& [noeud, arc] = pile.back();
            if (noeud >= places) {
                const Creux& effet = net_.transitions[noeud - places].effet;
                if (arc == effet.size())
                    pile.pop_back();
                else if (const Poids& e = effet[arc++]; e.compte > 0)
                    entrer(e.place);
            } else if (arc == arcs_[noeud].size()) {
                ordre.push_back(noeud);
                pile.pop_back();
            } else if (const Arc& a = arcs_[noeud][arc++]; a.effet < 0) {
                entrer(places + a.transition);
            }
        }
    return ordre;
}

/// The set that grows from `germe`, whose first place it is to bound.
std::optional<Creux> Composantes::depuis(const Creux& germe, Compte borne, const std::vector<Compte>& vus,
                                         std::uint64_t plus, std::uint64_t& travail) {
    const std::uint64_t accorde = std::min(travail, plus);
    travail_ = accorde;
    place_ = germe.front().place;
    borne_ = borne;
    for (const Poids& p : germe) ajouter(p);
    std::optional<Creux> resultat;
    if (jetons_ <= borne_ && completer(vus)) {
        resultat.emplace();
        for (const Poids& p : ajouts_) resultat->push_back({p.place, poids_[p.place]});
        std::ranges::sort(*resultat, {}, &Poids::place);
        resultat->erase(std::unique(resultat->begin(), resultat->end()), resultat->end());
    }
    travail -= accorde - travail_;
    revenir(0);
    return resultat;
}

/// Brings in places until no transition adds to the set. The choices are kept in a list, since there may be as many as
/// the net has places.
bool Composantes::completer(const std::vector<Compte>& vus) {
    std::vector<Choix> choix;
    std::size_t premiere = 0;  // the transitions before it among the gaining ones do not add any more
    while (true) {
        if (propager(vus)) {
            while (premiere < gagnantes_.size() && gains_[gagnantes_[premiere]] <= 0) ++premiere;
            if (premiere == gagnantes_.size()) return true;
            choix.push_back({premiere, ajouts_.size(), gagnantes_.size(), candidates(gagnantes_[premiere], vus)});
            std::ranges::reverse(choix.back().places);
        }
        if (travail_ == 0) return false;
        while (!choix.empty() && choix.back().places.empty()) choix.pop_back();
        if (choix.empty()) return false;
        Choix& dernier = choix.back();
        revenir(dernier.ajouts);
        gagnantes_.resize(dernier.gagnantes);
        vues_ = dernier.gagnantes;
        premiere = dernier.premiere;
        ajouter(dernier.places.back());
        dernier.places.pop_back();
    }
}

/// Brings in what there is no choice about.
/// @return false when some transition adds to the set whatever comes in, or the work has become too much
bool Composantes::propager(const std::vector<Compte>& vus) {
    for (; vues_ < gagnantes_.size(); ++vues_)
        while (gains_[gagnantes_[vues_]] > 0) {
            const std::vector<Poids> possibles = candidates(gagnantes_[vues_], vus);
            if (possibles.empty() || travail_ == 0) return false;
            if (possibles.size() > 1) break;
            ajouter(possibles.front());
        }
    return true;
}

/// The places that `transition` takes from and that can come in, with the weights that make it add no more, those with
/// the fewest tokens first. Where there is none, those that are in already and can weigh more; where all are in, those
/// with the fewest arcs first: what puts tokens into a place gains when they weigh more.
std::vector<Poids> Composantes::candidates(std::uint32_t transition, const std::vector<Compte>& vus) {
    depenser(net_.transitions[transition].effet.size());
    std::vector<Poids> neuves;
    std::vector<Poids> anciennes;
    for (const Poids& e : net_.transitions[transition].effet) {
        if (e.compte > 0) continue;
        const Large poids = (gains_[transition] - 1) / -static_cast<Large>(e.compte) + 1;
        if (poids + poids_[e.place] > plusLourd_) continue;
        const Poids p{e.place, static_cast<Compte>(poids)};
        if (admissible(p, vus)) (poids_[e.place] == 0 ? neuves : anciennes).push_back(p);
    }
    if (toutes_)
        std::ranges::sort(anciennes, {}, [this](const Poids& p) { return std::pair(arcs_[p.place].size(), p.place); });
    if (neuves.empty()) return anciennes;
    std::ranges::sort(neuves, {}, [this](const Poids& p) { return std::pair(net_.initial[p.place], p.place); });
    return neuves;
}

/// Whether the set, with what comes in, still bounds the place that it is looked for as it should, as far as can be
/// told.
bool Composantes::admissible(const Poids& p, const std::vector<Compte>& vus) const {
    const Large poids = static_cast<Large>(poids_[p.place]) + p.compte;
    const Large capacite = this->capacite(p.place == place_ ? poids : poids_[place_]);
    return poids * vus[p.place] <= capacite &&
           static_cast<Large>(p.compte) * net_.initial[p.place] <= capacite - jetons_;
}

void Composantes::ajouter(const Poids& p) {
    poids_[p.place] += p.compte;
    ajouts_.push_back(p);
    jetons_ += static_cast<Large>(p.compte) * net_.initial[p.place];
    depenser(arcs_[p.place].size());
    for (const Arc& a : arcs_[p.place]) {
        const bool gagnait = gains_[a.transition] > 0;
        gains_[a.transition] += static_cast<Large>(p.compte) * a.effet;
        if (!gagnait && gains_[a.transition] > 0) gagnantes_.push_back(a.transition);
    }
}

/// Takes out what came in last until `taille` are left.
void Composantes::revenir(std::size_t taille) {
    while (ajouts_.size() > taille) {
        const Poids p = ajouts_.back();
        ajouts_.pop_back();
        poids_[p.place] -= p.compte;
        jetons_ -= static_cast<Large>(p.compte) * net_.initial[p.place];
        for (const Arc& a : arcs_[p.place]) gains_[a.transition] -= static_cast<Large>(p.compte) * a.effet;
    }
    if (taille == 0) {
        gagnantes_.clear();
        vues_ = 0;
    }
}

Large poidsInitial(const Net& net, const Creux& poids) {
    Large total = 0;
    for (const Poids& p : poids) total += static_cast<Large>(p.compte) * net.initial[p.place];
    return total;
}

}  // namespace Reseau
