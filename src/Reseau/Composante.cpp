#include "Reseau/Composante.h"

#include <algorithm>

namespace Reseau {

namespace {

constexpr std::uint64_t TRAVAIL = 200'000;  // arcs followed for one place

}  // namespace

Composantes::Composantes(const Net& net)
    : net_(net), arcs_(net.places.size()), dedans_(net.places.size(), false), gains_(net.transitions.size(), 0) {
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        for (const Poids& e : net.transitions[t].effet) arcs_[e.place].push_back({t, e.compte});
}

std::optional<std::vector<std::uint32_t>> Composantes::chercher(std::uint32_t place, const std::vector<Compte>& vus,
                                                                std::uint64_t& travail) {
    const std::uint64_t accorde = std::min(travail, TRAVAIL);
    travail_ = accorde;
    borne_ = vus[place];
    ajouter(place);
    std::optional<std::vector<std::uint32_t>> resultat;
    if (jetons_ <= borne_ && completer(vus, 0)) resultat = ensemble_;
    travail -= accorde - travail_;
    revenir(0);
    if (resultat) std::ranges::sort(*resultat);
    return resultat;
}

/// Brings in places until no transition adds to the set; those before `premiere` among the ones that did do not.
bool Composantes::completer(const std::vector<Compte>& vus, std::size_t premiere) {
    if (!propager(vus)) return false;
    while (premiere < gagnantes_.size() && gains_[gagnantes_[premiere]] <= 0) ++premiere;
    if (premiere == gagnantes_.size()) return true;
    for (const std::uint32_t p : candidates(gagnantes_[premiere], vus)) {
        const std::size_t taille = ensemble_.size();
        const std::size_t gagnantes = gagnantes_.size();
        ajouter(p);
        if (completer(vus, premiere)) return true;
        if (travail_ == 0) return false;
        revenir(taille);
        gagnantes_.resize(gagnantes);
        vues_ = gagnantes;
    }
    return false;
}

/// Brings in what there is no choice about.
/// @return false when some transition adds to the set whatever comes in, or the work has become too much
bool Composantes::propager(const std::vector<Compte>& vus) {
    for (; vues_ < gagnantes_.size(); ++vues_)
        while (gains_[gagnantes_[vues_]] > 0) {
            const std::vector<std::uint32_t> possibles = candidates(gagnantes_[vues_], vus);
            if (possibles.empty() || travail_ == 0) return false;
            if (possibles.size() > 1) break;
            ajouter(possibles.front());
        }
    return true;
}

/// The places that `transition` takes from and that can come in, those with the fewest tokens first.
std::vector<std::uint32_t> Composantes::candidates(std::uint32_t transition, const std::vector<Compte>& vus) const {
    std::vector<std::uint32_t> places;
    for (const Poids& e : net_.transitions[transition].effet)
        if (e.compte < 0 && !dedans_[e.place] && vus[e.place] <= borne_ && net_.initial[e.place] <= borne_ - jetons_)
            places.push_back(e.place);
    std::ranges::stable_sort(places, {}, [this](std::uint32_t p) { return net_.initial[p]; });
    return places;
}

void Composantes::ajouter(std::uint32_t place) {
    dedans_[place] = true;
    ensemble_.push_back(place);
    jetons_ += net_.initial[place];
    travail_ -= std::min<std::uint64_t>(travail_, arcs_[place].size());
    for (const Arc& a : arcs_[place]) {
        const bool gagnait = gains_[a.transition] > 0;
        gains_[a.transition] += a.effet;
        if (!gagnait && gains_[a.transition] > 0) gagnantes_.push_back(a.transition);
    }
}

/// Takes out the last places until `taille` are left.
void Composantes::revenir(std::size_t taille) {
    while (ensemble_.size() > taille) {
        const std::uint32_t p = ensemble_.back();
        ensemble_.pop_back();
        dedans_[p] = false;
        jetons_ -= net_.initial[p];
        for (const Arc& a : arcs_[p]) gains_[a.transition] -= a.effet;
    }
    if (taille == 0) {
        gagnantes_.clear();
        vues_ = 0;
    }
}

}  // namespace Reseau
