// The three constructions, each a class of its own whose `construire` is the paper's main loop.
#include "reseau_publies.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <tuple>
#include <utility>

namespace etalon {

namespace {

using Reseau::Compte;
using Reseau::Net;
using Reseau::OMEGA;
using Reseau::Poids;
using Reseau::Transition;
using Numero = std::size_t;
constexpr Numero AUCUN = std::numeric_limits<Numero>::max();

bool couvre(const Dense& a, const Dense& b) {
    return std::equal(a.begin(), a.end(), b.begin(), [](Compte x, Compte y) { return x >= y; });
}

bool depasse(const Dense& a, const Dense& b) { return a != b && couvre(a, b); }

bool franchissable(const Transition& t, const Dense& m) {
    return std::ranges::all_of(t.pre, [&m](const Poids& p) { return m[p.place] >= p.compte; });
}

Dense franchir(const Transition& t, Dense m) {
    for (const Poids& e : t.effet) m[e.place] = Reseau::somme(m[e.place], e.compte);
    return m;
}

/// What waits, in its order.
class Attente {
public:
    explicit Attente(Ordre ordre) : ordre_(ordre) {}

    bool vide() const { return rangs_.empty(); }
    Numero premier() const { return std::get<Numero>(*rangs_.begin()); }
    void oterLePremier() { rangs_.erase(rangs_.begin()); }
    void ajouter(Numero sommet, const Dense& m) {
        std::int64_t omegas = 0;
        double jetons = 0;
        for (const Compte c : m) {
            if (c == OMEGA)
                ++omegas;
            else
                jetons += static_cast<double>(c);
        }
        if (ordre_ != Ordre::JETONS) omegas = 0;
        if (ordre_ != Ordre::JETONS) jetons = 0;
        const std::int64_t tour = ordre_ == Ordre::LARGEUR ? prochain_ : -prochain_;
        ++prochain_;
        rangs_.emplace(-omegas, -jetons, tour, sommet);
    }

private:
    Ordre ordre_;
    std::int64_t prochain_ = 0;
    std::set<std::tuple<std::int64_t, double, std::int64_t, Numero>> rangs_;
};

/// An acceleration: what it needs of each place, OMEGA included, and the places that become omega.
struct Acceleration {
    Dense pre;
    std::vector<bool> pompe;
};

class MinCov {
public:
    MinCov(const Net& net, Ordre ordre) : net_(net), front_(ordre) {}

    std::optional<Construction> construire(std::uint64_t limite) {
        ajouter(net_.initial, AUCUN, AUCUN);
        while (!front_.vide()) {
            const Numero u = front_.premier();
            front_.oterLePremier();
            if (sommets_[u].etat != Etat::FRONT) continue;
            saturer(u);
            if (couvert(u))
                supprimer(u);
            else if (const Numero a = ancetreDepasse(u); a != AUCUN)
                accelerer(a, u);
            else
                developper(u);
            if (resultat_.successeurs > limite) return std::nullopt;
        }
        for (const Numero v : presents_) resultat_.maximaux.push_back(sommets_[v].m);
        std::ranges::sort(resultat_.maximaux);
        return std::move(resultat_);
    }

private:
    enum class Etat { FRONT, DEVELOPPE, SUPPRIME };
    struct Sommet {
        Dense m;
        Numero parent;
        std::size_t tir;                   // on the edge from the parent,
        std::vector<std::size_t> satures;  // and then these accelerations
        std::vector<Numero> enfants;
        Etat etat;
    };

    void ajouter(Dense m, Numero parent, std::size_t tir) {
        const Numero neuf = sommets_.size();
        front_.ajouter(neuf, m);
        sommets_.push_back({std::move(m), parent, tir, {}, {}, Etat::FRONT});
        presents_.push_back(neuf);
        if (parent != AUCUN) sommets_[parent].enfants.push_back(neuf);
    }

    /// Applies what has been learnt, until nothing changes.
    void saturer(Numero u) {
        Sommet& s = sommets_[u];
        for (std::size_t i = 0; i < accelerations_.size();) {
            const Acceleration& a = accelerations_[i];
            bool change = false;
            if (couvre(s.m, a.pre))
                for (std::size_t p = 0; p < s.m.size(); ++p)
                    if (a.pompe[p] && s.m[p] != OMEGA) {
                        s.m[p] = OMEGA;
                        change = true;
                    }
            if (change) s.satures.push_back(i);
            i = change ? 0 : i + 1;
        }
    }

    bool couvert(Numero u) const {
        return std::ranges::any_of(presents_, [&](Numero v) {
            return sommets_[v].etat == Etat::DEVELOPPE && couvre(sommets_[v].m, sommets_[u].m);
        });
    }

    Numero ancetreDepasse(Numero u) const {
        Numero a = sommets_[u].parent;
        while (a != AUCUN && !depasse(sommets_[u].m, sommets_[a].m)) a = sommets_[a].parent;
        return a;
    }

    /// Learns the path from `a` to `u`, and begins anew at `a`.
    void accelerer(Numero a, Numero u) {
        apprendre(a, u);
        for (const Numero enfant : std::exchange(sommets_[a].enfants, {})) effacer(enfant);
        oublierLesEffaces();
        sommets_[a].etat = Etat::FRONT;
        saturer(a);
        front_.ajouter(a, sommets_[a].m);
    }

    /// Composes the path's steps from the last to the first: what the start must hold, and what is gained.
    void apprendre(Numero a, Numero u) {
        Dense pre(net_.places.size(), 0);
        Dense effet(net_.places.size(), 0);  // OMEGA: pumped on the way
        const auto avant = [&](std::size_t p, Compte besoin, Compte gain) {
            if (gain == OMEGA)
                pre[p] = besoin;
            else if (pre[p] != OMEGA)
                pre[p] = std::max(besoin, pre[p] - gain);
            effet[p] = effet[p] == OMEGA || gain == OMEGA ? OMEGA : effet[p] + gain;
        };
        for (Numero v = u; v != a; v = sommets_[v].parent) {
            const Sommet& s = sommets_[v];
            for (auto i = s.satures.rbegin(); i != s.satures.rend(); ++i) {
                const Acceleration& acceleration = accelerations_[*i];
                for (std::size_t p = 0; p < pre.size(); ++p)
                    if (acceleration.pompe[p])
                        avant(p, acceleration.pre[p], OMEGA);
                    else if (acceleration.pre[p] > 0)
                        avant(p, acceleration.pre[p], 0);
            }
            const Transition& t = net_.transitions[s.tir];
            for (const Poids& b : t.pre) avant(b.place, b.compte, Reseau::valeur(t.effet, b.place));
            for (const Poids& e : t.effet)
                if (Reseau::valeur(t.pre, e.place) == 0) avant(e.place, 0, e.compte);
        }
        Acceleration neuve{std::move(pre), std::vector<bool>(net_.places.size(), false)};
        for (std::size_t p = 0; p < effet.size(); ++p) {
            if (effet[p] < 0) neuve.pre[p] = OMEGA;
            neuve.pompe[p] = effet[p] > 0 && neuve.pre[p] != OMEGA;
        }
        accelerations_.push_back(std::move(neuve));
    }

    /// Deletes everything that `u` covers, and makes its children.
    void developper(Numero u) {
        bool trouve = false;
        for (const Numero v : presents_) {
            if (v == u || sommets_[v].etat == Etat::SUPPRIME || !couvre(sommets_[u].m, sommets_[v].m)) continue;
            detacher(v);
            effacer(v);
            trouve = true;
        }
        if (trouve) oublierLesEffaces();
        sommets_[u].etat = Etat::DEVELOPPE;
        ++resultat_.explores;
        for (std::size_t t = 0; t < net_.transitions.size(); ++t) {
            if (!franchissable(net_.transitions[t], sommets_[u].m)) continue;
            ++resultat_.successeurs;
            ajouter(franchir(net_.transitions[t], sommets_[u].m), u, t);
        }
    }

    void supprimer(Numero u) {
        detacher(u);
        effacer(u);
        oublierLesEffaces();
    }
    void detacher(Numero v) {
        if (sommets_[v].parent != AUCUN) std::erase(sommets_[sommets_[v].parent].enfants, v);
    }
    /// Marks the subtree as deleted.
    void effacer(Numero v) {
        std::vector<Numero> pile{v};
        while (!pile.empty()) {
            Sommet& s = sommets_[pile.back()];
            pile.pop_back();
            s.etat = Etat::SUPPRIME;
            s.m.clear();
            for (const Numero enfant : std::exchange(s.enfants, {})) pile.push_back(enfant);
        }
    }
    void oublierLesEffaces() {
        std::erase_if(presents_, [this](Numero v) { return sommets_[v].etat == Etat::SUPPRIME; });
    }

    const Net& net_;
    Attente front_;
    std::vector<Sommet> sommets_;
    std::vector<Numero> presents_;  // those that are not deleted
    std::vector<Acceleration> accelerations_;
    Construction resultat_;
};

class FusionDHistoires {
public:
    FusionDHistoires(const Net& net, Ordre ordre) : net_(net), aFaire_(ordre) {}

    std::optional<Construction> construire(std::uint64_t limite) {
        ajouter(net_.initial, {});
        while (!aFaire_.vide()) {
            const Numero u = aFaire_.premier();
            Sommet& s = sommets_[u];
            if (s.actif && !std::exchange(s.compte, true)) ++resultat_.explores;
            if (!s.actif || s.prochaine == net_.transitions.size()) {
                aFaire_.oterLePremier();
                continue;
            }
            const Transition& t = net_.transitions[s.prochaine++];
            if (franchissable(t, s.m)) entrer(franchir(t, s.m), u);
            if (resultat_.successeurs > limite) return std::nullopt;
        }
        for (const Numero v : actifs_) resultat_.maximaux.push_back(sommets_[v].m);
        std::ranges::sort(resultat_.maximaux);
        return std::move(resultat_);
    }

private:
    struct Sommet {
        Dense m;
        std::vector<Numero> avant;  // vertices that it was reached from
        std::size_t prochaine;      // transition
        bool actif;
        bool compte;
    };

    void entrer(Dense m, Numero depuis) {
        ++resultat_.successeurs;
        if (couvre(sommets_[depuis].m, m)) return;
        ajouterOmegas(m, depuis);
        for (const Numero v : actifs_) {
            if (!couvre(sommets_[v].m, m)) continue;
            if (sommets_[v].m == m) sommets_[v].avant.push_back(depuis);
            return;
        }
        for (const Numero v : actifs_) sommets_[v].actif = !couvre(m, sommets_[v].m);
        std::erase_if(actifs_, [this](Numero v) { return !sommets_[v].actif; });
        ajouter(std::move(m), {depuis});
    }

    /// Compares `m` with its whole history until nothing changes.
    void ajouterOmegas(Dense& m, Numero depuis) {
        for (bool change = true; change;) {
            change = false;
            ++tour_;
            pile_.assign(1, depuis);
            vus_[depuis] = tour_;
            while (!pile_.empty()) {
                const Sommet& ici = sommets_[pile_.back()];
                pile_.pop_back();
                if (couvre(m, ici.m))
                    for (std::size_t p = 0; p < m.size(); ++p)
                        if (ici.m[p] < m[p] && m[p] < OMEGA) {
                            m[p] = OMEGA;
                            change = true;
                        }
                for (const Numero v : ici.avant)
                    if (std::exchange(vus_[v], tour_) != tour_) pile_.push_back(v);
            }
        }
    }

    void ajouter(Dense m, std::vector<Numero> avant) {
        const Numero neuf = sommets_.size();
        aFaire_.ajouter(neuf, m);
        sommets_.push_back({std::move(m), std::move(avant), 0, true, false});
        actifs_.push_back(neuf);
        vus_.push_back(0);
    }

    const Net& net_;
    Attente aFaire_;
    std::vector<Sommet> sommets_;
    std::vector<Numero> actifs_;
    std::vector<std::uint64_t> vus_;  // by vertex, the last search that has been there
    std::vector<Numero> pile_;
    std::uint64_t tour_ = 0;
    Construction resultat_;
};

class ElagageMonotone {
public:
    ElagageMonotone(const Net& net, Ordre ordre) : net_(net), aFaire_(ordre) {}

    std::optional<Construction> construire(std::uint64_t limite) {
        ajouter(net_.initial, AUCUN);
        while (!aFaire_.vide()) {
            const Numero u = aFaire_.premier();
            Sommet& s = sommets_[u];
            if (s.actif && !std::exchange(s.compte, true)) ++resultat_.explores;
            if (!s.actif || s.prochaine == net_.transitions.size()) {
                aFaire_.oterLePremier();
                continue;
            }
            const Transition& t = net_.transitions[s.prochaine++];
            if (franchissable(t, s.m)) entrer(franchir(t, s.m), u);
            if (resultat_.successeurs > limite) return std::nullopt;
        }
        for (const Sommet& s : sommets_)
            if (s.actif) resultat_.maximaux.push_back(s.m);
        std::ranges::sort(resultat_.maximaux);
        return std::move(resultat_);
    }

private:
    struct Sommet {
        Dense m;
        Numero parent;
        std::vector<Numero> enfants;
        std::size_t prochaine;  // transition
        bool actif;
        bool compte;
    };

    void entrer(const Dense& m, Numero depuis) {
        ++resultat_.successeurs;
        Dense accelere = m;
        std::vector<Numero> ancetres;
        for (Numero a = depuis; a != AUCUN; a = sommets_[a].parent) {
            ancetres.push_back(a);
            if (!sommets_[a].actif || !couvre(m, sommets_[a].m)) continue;
            for (std::size_t p = 0; p < m.size(); ++p)
                if (sommets_[a].m[p] < m[p]) accelere[p] = OMEGA;
        }
        if (std::ranges::any_of(sommets_, [&](const Sommet& s) { return s.actif && couvre(s.m, accelere); })) return;
        std::ranges::sort(ancetres);
        std::vector<Numero> couverts;
        for (Numero y = 0; y < sommets_.size(); ++y)
            if (couvre(accelere, sommets_[y].m) && (sommets_[y].actif || !std::ranges::binary_search(ancetres, y)))
                couverts.push_back(y);
        for (const Numero y : couverts) desactiver(y);
        ajouter(std::move(accelere), depuis);
    }

    void desactiver(Numero racine) {
        std::vector<Numero> pile{racine};
        while (!pile.empty()) {
            Sommet& s = sommets_[pile.back()];
            pile.pop_back();
            s.actif = false;
            pile.insert(pile.end(), s.enfants.begin(), s.enfants.end());
        }
    }

    void ajouter(Dense m, Numero parent) {
        const Numero neuf = sommets_.size();
        aFaire_.ajouter(neuf, m);
        sommets_.push_back({std::move(m), parent, {}, 0, true, false});
        if (parent != AUCUN) sommets_[parent].enfants.push_back(neuf);
    }

    const Net& net_;
    Attente aFaire_;
    std::vector<Sommet> sommets_;
    Construction resultat_;
};

}  // namespace

std::optional<Construction> minCov(const Net& net, Ordre ordre, std::uint64_t limite) {
    return MinCov(net, ordre).construire(limite);
}

std::optional<Construction> fusionDHistoires(const Net& net, Ordre ordre, std::uint64_t limite) {
    return FusionDHistoires(net, ordre).construire(limite);
}

std::optional<Construction> elagageMonotone(const Net& net, Ordre ordre, std::uint64_t limite) {
    return ElagageMonotone(net, ordre).construire(limite);
}

const std::vector<Publiee>& publiees() {
    static const std::vector<Publiee> liste{
        {"MinCov", minCov, {Ordre::PROFONDEUR, Ordre::JETONS}},
        {"history merging", fusionDHistoires, {Ordre::PROFONDEUR, Ordre::JETONS}},
        {"monotone pruning", elagageMonotone, {Ordre::LARGEUR, Ordre::PROFONDEUR}},
    };
    return liste;
}

}  // namespace etalon
