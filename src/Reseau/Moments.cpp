#include "Reseau/Moments.h"

#include <algorithm>
#include <map>

namespace Reseau {

Moments::Moments(const Net& net, const std::vector<Contrainte>& etats, const std::vector<Compte>& comptes,
                 std::uint64_t* travail)
    : net_(net), etats_(etats), comptes_(comptes), numeros_(comptes.size(), 0), programme_(0, travail) {
    for (std::uint32_t t = 0; t < comptes.size(); ++t) {
        if (comptes[t] <= 0) continue;
        numeros_[t] = static_cast<std::uint32_t>(tirees_.size());
        tirees_.push_back(t);
    }
    programme_ = Simplexe(static_cast<std::uint32_t>(2 * tirees_.size()), travail);
    for (std::uint32_t p = 0; p < net.places.size(); ++p)
        if (!avant(p, true).empty()) places_.push_back(p);
    for (const bool second : {false, true})
        for (const std::uint32_t p : places_) programme_.contraindre(etats[p].constante, avant(p, second));
    for (std::uint32_t i = 0; i < tirees_.size(); ++i)
        programme_.contraindre(comptes[tirees_[i]], {{i, -1}, {static_cast<std::uint32_t>(tirees_.size()) + i, -1}});
    programme_.maximiser({});
}

/// What the firings before a moment make of a place.
Simplexe::Forme Moments::avant(std::uint32_t place, bool second) const {
    Simplexe::Forme forme;
    for (const auto& [t, effet] : etats_[place].forme) {
        if (comptes_[t] <= 0) continue;
        forme.emplace_back(numeros_[t], effet);
        if (second) forme.emplace_back(static_cast<std::uint32_t>(tirees_.size()) + numeros_[t], effet);
    }
    return forme;
}

std::vector<Moments::Paire> Moments::paires() const {
    std::vector<Cas::Evenement> evenements;
    for (const bool exigeant : {true, false})
        for (const bool dernier : {true, false})
            for (const std::uint32_t t : tirees_)
                if ((net_.transitions[t].pre.size() > 1) == exigeant) evenements.push_back({t, dernier});
    std::vector<Paire> paires;
    for (std::size_t j = 1; j < evenements.size(); ++j)
        for (std::size_t i = 0; i < j; ++i)
            if (evenements[i].transition != evenements[j].transition) paires.emplace_back(evenements[i], evenements[j]);
    return paires;
}

std::optional<Cas> Moments::contredire(const Paire& paire) const {
    auto dabord = impossible(paire.first, paire.second);
    if (!dabord) return std::nullopt;
    auto ensuite = impossible(paire.second, paire.first);
    if (!ensuite) return std::nullopt;
    Cas cas;
    cas.genre = Cas::ORDRE;
    cas.evenements = {paire.first, paire.second};
    cas.moments = std::move(*dabord);
    for (Multiplicateurs& m : *ensuite) cas.moments.push_back(std::move(m));
    return cas;
}

/// @return when the counts do not allow this order, the multipliers of the places at either moment that show it
std::optional<std::vector<Multiplicateurs>> Moments::impossible(Cas::Evenement premier, Cas::Evenement second) const {
    const auto nombre = static_cast<std::uint32_t>(tirees_.size());
    Simplexe s = programme_;
    std::map<Simplexe::Variable, std::uint32_t> besoins[2];  // the places of the constraints on what is needed
    const auto exiger = [&](std::uint32_t t, bool plusTard) {
        for (const Poids& b : net_.transitions[t].pre)
            besoins[plusTard ? 1 : 0].emplace(
                s.contraindre(etats_[b.place].constante - b.compte, avant(b.place, plusTard)), b.place);
    };
    exiger(premier.transition, false);
    exiger(second.transition, true);
    const std::uint32_t a = numeros_[premier.transition];
    const Large tirsA = comptes_[premier.transition];
    if (premier.dernier) {
        s.contraindre(1 - tirsA, {{a, 1}});
        s.contraindre(tirsA - 1, {{a, -1}});
        s.contraindre(-tirsA, {{a, 1}, {nombre + a, 1}});
    } else {
        s.contraindre(0, {{a, -1}});
        s.contraindre(-1, {{nombre + a, 1}});
    }
    const std::uint32_t b = numeros_[second.transition];
    const Large tirsB = comptes_[second.transition];
    const Large auPlus = second.dernier ? tirsB - 1 : 0;
    s.contraindre(auPlus, {{b, -1}, {nombre + b, -1}});
    s.contraindre(-auPlus, {{b, 1}, {nombre + b, 1}});
    if (s.reoptimiser() != Simplexe::Issue::IMPOSSIBLE) return std::nullopt;
    std::map<std::uint32_t, Large> multiples[2];
    const auto places = static_cast<Simplexe::Variable>(places_.size());
    for (const auto& [v, y] : s.multiplicateurs()) {
        if (v >= 2 * nombre && v < 2 * nombre + 2 * places)
            multiples[(v - 2 * nombre) / places][places_[(v - 2 * nombre) % places]] += y;
        for (const int moment : {0, 1})
            if (const auto p = besoins[moment].find(v); p != besoins[moment].end()) multiples[moment][p->second] += y;
    }
    std::vector<Multiplicateurs> resultat;
    for (const auto& m : multiples) resultat.emplace_back(m.begin(), m.end());
    return resultat;
}

}  // namespace Reseau
