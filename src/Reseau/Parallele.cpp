// Parallel places are found by the hash of their changes in lowest terms and then compared; so it costs two passes over
// the net's arcs, and a third one over those of the candidates.
#include "Reseau/Parallele.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

namespace Reseau {

namespace {

constexpr std::uint32_t AUCUN = ~std::uint32_t{0};

class Classement {
public:
    explicit Classement(const Net& net)
        : net_(net), diviseurs_(net.places.size(), 0), empreintes_(net.places.size(), 0) {
        for (const Transition& t : net.transitions)
            for (const Poids& e : t.effet) diviseurs_[e.place] = std::gcd(diviseurs_[e.place], e.compte);
        for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
            for (const Poids& e : net.transitions[t].effet)
                empreintes_[e.place] = hacher(hacher(empreintes_[e.place], t), e.compte / diviseurs_[e.place]);
    }

    Compte diviseur(std::uint32_t p) const { return diviseurs_[p]; }

    /// By place the one that stands for it: of its class the one with the smallest changes; of these, the one that can
    /// lose the least.
    std::vector<std::uint32_t> temoins() const;

private:
    using Ligne = std::vector<std::pair<std::uint32_t, Compte>>;  // changes in lowest terms, by transition

    std::vector<std::uint32_t> candidats() const;

    const Net& net_;
    std::vector<Compte> diviseurs_;  // by place, of its changes; 0 when there are none
    std::vector<std::uint64_t> empreintes_;
};

/// The places whose hash another one shares.
std::vector<std::uint32_t> Classement::candidats() const {
    std::vector<std::uint32_t> places;
    for (std::uint32_t p = 0; p < diviseurs_.size(); ++p)
        if (diviseurs_[p] != 0) places.push_back(p);
    std::ranges::sort(places, {}, [this](std::uint32_t p) { return empreintes_[p]; });
    std::vector<std::uint32_t> resultat;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const auto memeQue = [&](std::size_t j) { return empreintes_[places[i]] == empreintes_[places[j]]; };
        if ((i > 0 && memeQue(i - 1)) || (i + 1 < places.size() && memeQue(i + 1))) resultat.push_back(places[i]);
    }
    return resultat;
}

std::vector<std::uint32_t> Classement::temoins() const {
    std::vector<std::uint32_t> resultat(net_.places.size());
    std::iota(resultat.begin(), resultat.end(), 0U);
    std::vector<std::uint32_t> places = candidats();
    if (places.empty()) return resultat;
    std::vector<std::uint32_t> numero(net_.places.size(), AUCUN);
    for (std::uint32_t i = 0; i < places.size(); ++i) numero[places[i]] = i;
    std::vector<Ligne> lignes(places.size());
    for (std::uint32_t t = 0; t < net_.transitions.size(); ++t)
        for (const Poids& e : net_.transitions[t].effet)
            if (numero[e.place] != AUCUN) lignes[numero[e.place]].emplace_back(t, e.compte / diviseurs_[e.place]);
    std::ranges::sort(
        places, {}, [this](std::uint32_t p) { return std::tuple(diviseurs_[p], net_.initial[p] / diviseurs_[p], p); });
    std::map<Ligne, std::uint32_t> premieres;
    for (const std::uint32_t p : places)
        resultat[p] = premieres.try_emplace(std::move(lignes[numero[p]]), p).first->second;
    return resultat;
}

/// How many of `fusion.temoin` there are when `fusion.place` holds `compte` or the next larger count that it can.
Large besoin(const Net& net, const Fusion& fusion, Compte compte) {
    const Large tours = -plancher(static_cast<Large>(net.initial[fusion.place]) - compte, fusion.facteur);
    return net.initial[fusion.temoin] + tours * fusion.diviseur;
}

/// What is needed, and when `effet` is added what is put.
Creux apres(const Creux& pre, const Creux& effet) {
    Creux post;
    auto e = effet.begin();
    for (const Poids& p : pre) {
        for (; e != effet.end() && e->place < p.place; ++e) post.push_back(*e);
        const Compte change = e != effet.end() && e->place == p.place ? (e++)->compte : 0;
        if (p.compte + change != 0) post.push_back({p.place, p.compte + change});
    }
    post.insert(post.end(), e, effet.end());
    return post;
}

/// Makes `pre` need `besoin` of a place that holds so many or `pas` less or more, unless `pas` less is not enough
/// anyway.
void exiger(Creux& pre, std::uint32_t place, Large besoin, Compte pas) {
    const auto ici = std::ranges::lower_bound(pre, place, {}, &Poids::place);
    const bool present = ici != pre.end() && ici->place == place;
    if (besoin - pas < (present ? ici->compte : 0)) return;
    if (present)
        ici->compte = static_cast<Compte>(besoin);
    else
        pre.insert(ici, {place, static_cast<Compte>(besoin)});
}

class Fusionneur {
public:
    explicit Fusionneur(Net& net) : net_(net), numero_(net.places.size(), AUCUN) {
        const Classement classement(net);
        const std::vector<std::uint32_t> temoins = classement.temoins();
        for (std::uint32_t p = 0; p < temoins.size(); ++p)
            if (temoins[p] != p)
                fusions_.push_back({p, temoins[p], classement.diviseur(p), classement.diviseur(temoins[p])});
    }

    std::vector<Fusion> fusionner() {
        if (fusions_.empty()) return {};
        numeroter();
        garderCeQuiDeborde();
        numeroter();
        for (Transition& t : net_.transitions) remplacer(t);
        return std::move(fusions_);
    }

private:
    void numeroter() {
        std::ranges::fill(numero_, AUCUN);
        for (std::uint32_t i = 0; i < fusions_.size(); ++i) numero_[fusions_[i].place] = i;
    }
    void garderCeQuiDeborde();
    void remplacer(Transition& t) const;

    Net& net_;
    std::vector<Fusion> fusions_;
    std::vector<std::uint32_t> numero_;  // by place, of its fusion
};

/// Where a need would not fit the place stays.
void Fusionneur::garderCeQuiDeborde() {
    std::vector<bool> deborde(fusions_.size(), false);
    for (const Transition& t : net_.transitions)
        for (const Poids& p : t.pre) {
            if (numero_[p.place] == AUCUN) continue;
            const Fusion& fusion = fusions_[numero_[p.place]];
            const Large mis = besoin(net_, fusion, p.compte) + std::max<Compte>(0, valeur(t.effet, fusion.temoin));
            if (mis >= OMEGA) deborde[numero_[p.place]] = true;
        }
    std::erase_if(fusions_, [&](const Fusion& fusion) { return deborde[numero_[fusion.place]]; });
}

void Fusionneur::remplacer(Transition& t) const {
    const auto fusionnee = [this](const Poids& p) { return numero_[p.place] != AUCUN; };
    if (std::ranges::none_of(t.pre, fusionnee) && std::ranges::none_of(t.post, fusionnee)) return;
    Creux pre = t.pre;
    std::erase_if(pre, fusionnee);
    std::erase_if(t.effet, fusionnee);
    for (const Poids& p : t.pre) {
        if (!fusionnee(p)) continue;
        const Fusion& fusion = fusions_[numero_[p.place]];
        exiger(pre, fusion.temoin, besoin(net_, fusion, p.compte), fusion.diviseur);
    }
    t.pre = std::move(pre);
    t.post = apres(t.pre, t.effet);
}

}  // namespace

Compte Fusion::compte(const Net& net, Compte compte) const {
    if (compte == OMEGA) return OMEGA;
    const Large tours = (static_cast<Large>(compte) - net.initial[temoin]) / diviseur;
    const Large ici = net.initial[place] + tours * facteur;
    if (ici >= OMEGA) throw Debordement();
    return static_cast<Compte>(ici);
}

std::vector<Fusion> fusionner(Net& net) { return Fusionneur(net).fusionner(); }

}  // namespace Reseau
