#include "Reseau/Parties.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace Reseau {

namespace {

class Decoupeur {
public:
    explicit Decoupeur(const Net& net)
        : net_(net),
          retenues_(net.transitions.size(), true),
          constante_(net.places.size(), true),
          chef_(net.places.size()) {}

    std::vector<bool> mortes() {
        while (retirerMortes()) {
        }
        std::vector<bool> resultat = retenues_;
        resultat.flip();
        return resultat;
    }

    std::vector<Partie> decouper() {
        mortes();
        retirerSuperflues();
        return parties();
    }

private:
    bool retirerMortes();
    void marquer(std::vector<bool>& tirable) const;
    void retirerSuperflues();
    std::vector<Partie> parties();
    std::uint32_t chef(std::uint32_t p);
    void trouverConstantes();
    Creux sansConstantes(const Creux& cote) const;

    const Net& net_;
    std::vector<bool> retenues_;   // transitions
    std::vector<bool> constante_;  // places
    std::vector<std::uint32_t> chef_;
};

/// Marks the transitions that can be fired when firing takes nothing away.
void Decoupeur::marquer(std::vector<bool>& tirable) const {
    std::vector<std::vector<std::uint32_t>> attendent(net_.places.size());
    std::vector<std::size_t> manques(net_.transitions.size());
    std::vector<bool> marquee(net_.places.size(), false);
    std::vector<std::uint32_t> prets;
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        if (!retenues_[t]) continue;
        for (const Poids& p : net_.transitions[t].pre) attendent[p.place].push_back(t);
        manques[t] = net_.transitions[t].pre.size();
        if (manques[t] == 0) prets.push_back(t);
    }
    const auto arriver = [&](std::uint32_t place) {
        if (marquee[place]) return;
        marquee[place] = true;
        for (const std::uint32_t t : attendent[place])
            if (--manques[t] == 0) prets.push_back(t);
    };
    for (std::uint32_t p = 0; p < net_.places.size(); ++p)
        if (net_.initial[p] > 0) arriver(p);
    while (!prets.empty()) {
        const std::uint32_t t = prets.back();
        prets.pop_back();
        tirable[t] = true;
        for (const Poids& p : net_.transitions[t].post) arriver(p.place);
    }
}

void Decoupeur::trouverConstantes() {
    constante_.assign(net_.places.size(), true);
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t)
        if (retenues_[t])
            for (const Poids& e : net_.transitions[t].effet) constante_[e.place] = false;
}

/// @return whether a transition was found to be dead that was not known to be
bool Decoupeur::retirerMortes() {
    std::vector<bool> tirable(net_.transitions.size(), false);
    marquer(tirable);
    bool change = tirable != retenues_;
    retenues_ = tirable;
    trouverConstantes();
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        if (!retenues_[t]) continue;
        const bool affamee = std::ranges::any_of(net_.transitions[t].pre, [this](const Poids& p) {
            return constante_[p.place] && p.compte > net_.initial[p.place];
        });
        if (affamee) {
            retenues_[t] = false;
            change = true;
        }
    }
    return change;
}

void Decoupeur::retirerSuperflues() {
    using Cote = std::vector<std::pair<std::uint32_t, Compte>>;
    std::map<std::pair<Cote, Cote>, std::uint32_t> vues;
    const auto cote = [](const Creux& v) {
        Cote c;
        for (const Poids& p : v) c.emplace_back(p.place, p.compte);
        return c;
    };
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        if (!retenues_[t]) continue;
        const Transition& tr = net_.transitions[t];
        retenues_[t] = !tr.effet.empty() && vues.try_emplace({cote(sansConstantes(tr.pre)), cote(tr.effet)}, t).second;
    }
}

Creux Decoupeur::sansConstantes(const Creux& cote) const {
    Creux v = cote;
    std::erase_if(v, [this](const Poids& p) { return constante_[p.place]; });
    return v;
}

/// Union and find, with path halving.
std::uint32_t Decoupeur::chef(std::uint32_t p) {
    while (chef_[p] != p) p = chef_[p] = chef_[chef_[p]];
    return p;
}

std::vector<Partie> Decoupeur::parties() {
    std::iota(chef_.begin(), chef_.end(), 0U);
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        if (!retenues_[t]) continue;
        const std::uint32_t ancre = net_.transitions[t].effet.front().place;
        for (const Poids& p : sansConstantes(net_.transitions[t].pre)) chef_[chef(p.place)] = chef(ancre);
        for (const Poids& p : net_.transitions[t].effet) chef_[chef(p.place)] = chef(ancre);
    }
    std::vector<Partie> resultat;
    std::map<std::uint32_t, std::size_t> partieDe;  // by representative
    std::vector<std::uint32_t> numero(net_.places.size());
    for (std::uint32_t p = 0; p < net_.places.size(); ++p) {
        if (constante_[p]) continue;
        const auto [i, neuve] = partieDe.try_emplace(chef(p), resultat.size());
        if (neuve) resultat.emplace_back();
        Partie& partie = resultat[i->second];
        numero[p] = static_cast<std::uint32_t>(partie.places.size());
        partie.places.push_back(p);
        partie.net.places.emplace_back();
        partie.net.initial.push_back(net_.initial[p]);
    }
    const auto renumeroter = [&numero](Creux cote) {
        for (Poids& p : cote) p.place = numero[p.place];
        return cote;
    };
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
        if (!retenues_[t]) continue;
        const Transition& tr = net_.transitions[t];
        Partie& partie = resultat[partieDe.at(chef(tr.effet.front().place))];
        partie.transitions.push_back(t);
        partie.net.transitions.push_back(
            {"", renumeroter(sansConstantes(tr.pre)), renumeroter(sansConstantes(tr.post)), renumeroter(tr.effet)});
    }
    std::ranges::stable_sort(resultat, {}, [](const Partie& p) { return p.places.size() + p.transitions.size(); });
    return resultat;
}

}  // namespace

std::vector<bool> transitionsMortes(const Net& net) { return Decoupeur(net).mortes(); }

std::vector<Partie> decouper(const Net& net) { return Decoupeur(net).decouper(); }

}  // namespace Reseau
