#include "Reseau/Deroulement.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

namespace Reseau {

namespace {

constexpr std::size_t LONGUEUR = 10'000;  // of a sequence that is repeated
constexpr std::size_t PAS = 1'000'000;    // of paths that are looked at

/// A sequence of transitions, and by place what it needs and what it changes.
struct Suite {
    std::vector<std::uint32_t> tirs;
    std::vector<Compte> besoin;
    std::vector<Compte> effet;
};

class Deroulement {
public:
    Deroulement(const Net& net, const Accelerations& accelerations) : net_(net), accelerations_(accelerations) {}

    /// Puts `chemin` before what needs `besoin`, which becomes what both need.
    /// @param depart the path's first marking, as far as it is known
    /// @return the blocks, the last one first; nothing when it would be too long
    std::optional<Course> remonter(const std::vector<Pas>& chemin, std::vector<Compte> depart,
                                   std::vector<Compte>& besoin);

private:
    using Avoirs = std::vector<std::vector<Compte>>;
    Avoirs avoirs(const std::vector<Pas>& chemin, std::vector<Compte> m) const;
    const std::optional<Suite>& suite(std::uint32_t numero);
    std::optional<Suite> deroulee(const Acceleration& a);
    std::optional<Compte> repetitions(const Acceleration& a, const Suite& s, const std::vector<Compte>& avoir,
                                      const std::vector<Compte>& besoin) const;

    const Net& net_;
    const Accelerations& accelerations_;
    std::map<std::uint32_t, std::optional<Suite>> suites_;  // by acceleration
    std::size_t reste_ = PAS;
};

/// Puts a sequence, gone through `fois` times, before what needs `besoin`.
void preceder(const Suite& s, Compte fois, std::vector<Compte>& besoin) {
    for (std::size_t p = 0; p < besoin.size(); ++p) {
        const Compte perdu = s.effet[p] < 0 ? produit(fois - 1, -s.effet[p]) : 0;
        besoin[p] = std::max(somme(s.besoin[p], perdu), somme(besoin[p], produit(fois, -s.effet[p])));
    }
}

/// By acceleration of the path, what the places that it raises hold before: exact where they are finite there.
Deroulement::Avoirs Deroulement::avoirs(const std::vector<Pas>& chemin, std::vector<Compte> m) const {
    Avoirs resultat;
    for (const Pas& pas : chemin) {
        if (pas.genre == Pas::TIR) {
            for (const Poids& e : net_.transitions[pas.numero].effet) m[e.place] = somme(m[e.place], e.compte);
            continue;
        }
        std::vector<Compte>& ici = resultat.emplace_back();
        for (const std::uint32_t p : accelerations_[pas.numero].pompes) {
            ici.push_back(m[p] == OMEGA ? 0 : m[p]);
            m[p] = OMEGA;
        }
    }
    return resultat;
}

/// What an acceleration repeats, with its own accelerations repeated as often as it needs to be gone through once.
std::optional<Suite> Deroulement::deroulee(const Acceleration& a) {
    Suite s{{}, std::vector<Compte>(net_.places.size(), 0), std::vector<Compte>(net_.places.size(), 0)};
    const auto blocs = remonter(a.pas, std::vector<Compte>(net_.places.size(), OMEGA), s.besoin);
    if (!blocs) return std::nullopt;
    for (auto b = blocs->rbegin(); b != blocs->rend(); ++b) {
        if (b->fois > static_cast<Compte>((LONGUEUR - s.tirs.size()) / b->elans.size())) return std::nullopt;
        for (Compte i = 0; i < b->fois; ++i)
            for (const Elan& e : b->elans) s.tirs.push_back(e.transition);
    }
    for (const std::uint32_t t : s.tirs)
        for (const Poids& e : net_.transitions[t].effet) s.effet[e.place] = somme(s.effet[e.place], e.compte);
    return s;
}

/// Worked out once, since accelerations hold earlier ones, these still earlier ones, and so on.
const std::optional<Suite>& Deroulement::suite(std::uint32_t numero) {
    const auto connue = suites_.find(numero);
    return connue != suites_.end() ? connue->second
                                   : suites_.emplace(numero, deroulee(accelerations_[numero])).first->second;
}

/// How often the sequence is to be repeated for what its places are needed for beyond what they hold before.
std::optional<Compte> Deroulement::repetitions(const Acceleration& a, const Suite& s, const std::vector<Compte>& avoir,
                                               const std::vector<Compte>& besoin) const {
    Compte fois = 0;
    for (std::size_t i = 0; i < a.pompes.size(); ++i) {
        const Compte manque = besoin[a.pompes[i]] - avoir[i];
        if (manque <= 0) continue;
        if (s.effet[a.pompes[i]] <= 0) return std::nullopt;
        fois = std::max(fois, (manque - 1) / s.effet[a.pompes[i]] + 1);
    }
    return fois;
}

std::optional<Course> Deroulement::remonter(const std::vector<Pas>& chemin, std::vector<Compte> depart,
                                            std::vector<Compte>& besoin) {
    if (reste_ < chemin.size()) return std::nullopt;
    reste_ -= chemin.size();
    Avoirs restants = avoirs(chemin, std::move(depart));
    Course envers;
    for (auto pas = chemin.rbegin(); pas != chemin.rend(); ++pas) {
        if (pas->genre == Pas::TIR) {
            const Transition& t = net_.transitions[pas->numero];
            for (const Poids& e : t.effet) besoin[e.place] = std::max<Compte>(0, somme(besoin[e.place], -e.compte));
            for (const Poids& p : t.pre) besoin[p.place] = std::max(besoin[p.place], p.compte);
            envers.push_back({{{pas->numero, 1}}, 1});
            continue;
        }
        const Acceleration& a = accelerations_[pas->numero];
        const std::vector<Compte> avoir = std::move(restants.back());
        restants.pop_back();
        const bool inutile = std::ranges::none_of(a.pompes, [&besoin](std::uint32_t p) { return besoin[p] > 0; });
        if (inutile) continue;
        const std::optional<Suite>& s = suite(pas->numero);
        if (!s) return std::nullopt;
        const auto fois = repetitions(a, *s, avoir, besoin);
        if (!fois) return std::nullopt;
        if (*fois == 0) continue;
        preceder(*s, *fois, besoin);
        envers.push_back({{}, *fois});
        for (const std::uint32_t t : s->tirs) envers.back().elans.push_back({t, 1});
    }
    return envers;
}

}  // namespace

std::optional<Course> derouler(const Net& net, const Couverture& couverture, const Creux& but,
                               const std::vector<Compte>& depart) {
    try {
        std::vector<Compte> besoin(net.places.size(), 0);
        auto course =
            Deroulement(net, couverture.accelerations()).remonter(couverture.chemin(but), couverture.initial(), besoin);
        if (!course || !std::ranges::equal(besoin, depart, std::ranges::less_equal())) return std::nullopt;
        std::ranges::reverse(*course);
        return course;
    } catch (const Debordement&) {
        return std::nullopt;
    }
}

}  // namespace Reseau
