#include "Reseau/Jeton.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Reseau {

namespace {

constexpr unsigned ESSAIS = 100;  // ways to go on that are tried where the propagation leaves a choice

enum class Etat : char { INCONNU, DEDANS, DEHORS };

class Recherche {
public:
    explicit Recherche(const Net& net) : net_(net) {}

    std::optional<std::vector<Etat>> depuis(std::uint32_t depart) {
        std::vector<Etat> etats(net_.places.size(), Etat::INCONNU);
        for (std::uint32_t p = 0; p < etats.size(); ++p)
            if (net_.initial[p] > 0) etats[p] = Etat::DEHORS;
        etats[depart] = Etat::DEDANS;
        essais_ = ESSAIS;
        return completer(std::move(etats));
    }

private:
    std::optional<std::vector<Etat>> completer(std::vector<Etat> etats);
    bool propager(std::vector<Etat>& etats);
    bool accorder(const Creux& cote, const Creux& autre, std::vector<Etat>& etats);
    bool fixer(const Poids& p, Etat etat, std::vector<Etat>& etats);

    const Net& net_;
    unsigned essais_ = 0;
    bool change_ = false;
    std::vector<std::uint32_t> choix_;  // the places one of which a transition puts the token on
};

bool Recherche::fixer(const Poids& p, Etat etat, std::vector<Etat>& etats) {
    Etat& ici = etats[p.place];
    if (ici != Etat::INCONNU) return ici == etat;
    change_ = true;
    ici = etat;
    return true;
}

/// One side of a transition holds the token when the other one does, in one place.
/// @return false when that cannot be
bool Recherche::accorder(const Creux& cote, const Creux& autre, std::vector<Etat>& etats) {
    const auto dedans = [&etats](const Poids& p) { return etats[p.place] == Etat::DEDANS; };
    const auto possible = [&etats](const Poids& p) { return etats[p.place] != Etat::DEHORS && p.compte == 1; };
    const auto ici = std::ranges::find_if(cote, dedans);
    if (ici == cote.end()) {
        if (!std::ranges::all_of(cote, [&etats](const Poids& p) { return etats[p.place] == Etat::DEHORS; }))
            return true;
        return std::ranges::all_of(autre, [&](const Poids& p) { return fixer(p, Etat::DEHORS, etats); });
    }
    if (ici->compte != 1) return false;
    for (const Poids& p : cote)
        if (p.place != ici->place && !fixer(p, Etat::DEHORS, etats)) return false;
    if (std::ranges::any_of(autre, dedans)) return true;
    std::vector<std::uint32_t> choix;
    for (const Poids& p : autre)
        if (possible(p)) choix.push_back(p.place);
    if (choix.empty()) return false;
    if (choix.size() == 1) return fixer({choix[0], 1}, Etat::DEDANS, etats);
    if (choix_.empty()) choix_ = std::move(choix);
    return true;
}

bool Recherche::propager(std::vector<Etat>& etats) {
    do {
        change_ = false;
        choix_.clear();
        for (const Transition& t : net_.transitions)
            if (!accorder(t.pre, t.post, etats) || !accorder(t.post, t.pre, etats)) return false;
    } while (change_);
    return true;
}

std::optional<std::vector<Etat>> Recherche::completer(std::vector<Etat> etats) {
    if (essais_ == 0) return std::nullopt;
    --essais_;
    if (!propager(etats)) return std::nullopt;
    if (choix_.empty()) return etats;
    for (const std::uint32_t p : std::vector<std::uint32_t>(choix_)) {
        std::vector<Etat> suite = etats;
        suite[p] = Etat::DEDANS;
        if (auto complet = completer(std::move(suite))) return complet;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Jeton> Jeton::trouver(const Net& net) {
    Recherche recherche(net);
    std::optional<Jeton> meilleur;
    for (std::uint32_t p = 0; p < net.places.size(); ++p) {
        if (net.initial[p] != 1) continue;
        const auto etats = recherche.depuis(p);
        if (!etats) continue;
        Jeton jeton;
        jeton.nombre_ = net.places.size();
        jeton.depart_ = p;
        for (std::uint32_t q = 0; q < etats->size(); ++q)
            if ((*etats)[q] == Etat::DEDANS) jeton.places_.push_back(q);
        if (meilleur && meilleur->places_.size() >= jeton.places_.size()) continue;
        const auto ou = [&etats](const Creux& cote) {
            for (const Poids& c : cote)
                if ((*etats)[c.place] == Etat::DEDANS) return c.place;
            return NULLE_PART;
        };
        for (const Transition& t : net.transitions) {
            jeton.de_.push_back(ou(t.pre));
            jeton.vers_.push_back(ou(t.post));
        }
        meilleur = std::move(jeton);
    }
    return meilleur;
}

std::vector<std::vector<bool>> Jeton::composantes(const std::vector<bool>& tirees) const {
    std::vector<std::vector<std::uint32_t>> voisins(nombre_);
    for (std::uint32_t t = 0; t < tirees.size(); ++t) {
        if (!tirees[t]) continue;
        voisins[de_[t]].push_back(vers_[t]);
        voisins[vers_[t]].push_back(de_[t]);
    }
    std::vector<std::vector<bool>> resultat;
    std::vector<bool> vues(nombre_, false);
    for (const std::uint32_t premiere : places_) {
        if (vues[premiere] || voisins[premiere].empty()) continue;
        std::vector<bool> composante(nombre_, false);
        std::vector<std::uint32_t> pile{premiere};
        vues[premiere] = true;
        while (!pile.empty()) {
            const std::uint32_t p = pile.back();
            pile.pop_back();
            composante[p] = true;
            for (const std::uint32_t q : voisins[p]) {
                if (!vues[q]) pile.push_back(q);
                vues[q] = true;
            }
        }
        resultat.push_back(std::move(composante));
    }
    return resultat;
}

std::vector<std::vector<bool>> Jeton::derniers(const std::vector<bool>& tirees) const {
    std::vector<std::vector<std::uint32_t>> suivants(nombre_);
    std::set<std::uint32_t> atteintes;
    for (std::uint32_t t = 0; t < tirees.size(); ++t) {
        if (!tirees[t] || de_[t] == NULLE_PART) continue;
        suivants[de_[t]].push_back(vers_[t]);
        atteintes.insert(vers_[t]);
    }
    std::set<std::vector<bool>> ensembles;
    for (const std::uint32_t premiere : atteintes) {
        std::vector<bool> vues(suivants.size(), false);
        std::vector<std::uint32_t> pile{premiere};
        vues[premiere] = true;
        while (!pile.empty()) {
            const std::uint32_t p = pile.back();
            pile.pop_back();
            for (const std::uint32_t q : suivants[p]) {
                if (vues[q]) continue;
                vues[q] = true;
                pile.push_back(q);
            }
        }
        if (!vues[depart_]) ensembles.insert(std::move(vues));
    }
    return {ensembles.begin(), ensembles.end()};
}

}  // namespace Reseau
