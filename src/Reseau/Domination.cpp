// What dominates a transition puts into each place that it puts into, and needs none that it does not. So every
// transition is filed under the pairs of the rarest place that it needs and a place that it puts into, and it is looked
// for under the places that the dominated one needs and the rarest of those that it puts into.
#include "Reseau/Domination.h"

#include <algorithm>
#include <tuple>

namespace Reseau {

namespace {

constexpr std::uint64_t TRAVAIL = 4'000'000;  // transitions compared
constexpr std::uint32_t AUCUNE = ~std::uint32_t{0};

/// Whether `a` holds no less than `b` in any place; what they do not list is zero.
bool couvre(const Creux& a, const Creux& b) {
    auto i = a.begin();
    for (const Poids& p : b) {
        for (; i != a.end() && i->place < p.place; ++i)
            if (i->compte < 0) return false;
        const bool ici = i != a.end() && i->place == p.place;
        if ((ici ? i->compte : 0) < p.compte) return false;
        if (ici) ++i;
    }
    return std::all_of(i, a.end(), [](const Poids& p) { return p.compte >= 0; });
}

bool domine(const Transition& a, const Transition& b) { return couvre(b.pre, a.pre) && couvre(a.effet, b.effet); }

class Recherche {
public:
    explicit Recherche(const Net& net)
        : net_(net), besoins_(net.places.size(), 0), apports_(net.places.size(), 0), la_(net.transitions.size(), true) {
        for (const Transition& t : net.transitions) {
            for (const Poids& p : t.pre) ++besoins_[p.place];
            for (const Poids& e : t.effet) apports_[e.place] += e.compte > 0 ? 1 : 0;
        }
        for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
            const std::uint32_t besoin = rare(net.transitions[t].pre, besoins_);
            for (const Poids& e : net.transitions[t].effet)
                if (e.compte > 0) registre_.emplace_back(besoin, e.place, t);
        }
        std::ranges::sort(registre_);
    }

    std::vector<Dominee> dominees() {
        std::vector<Dominee> resultat;
        for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
            const std::uint32_t apport = rare(net_.transitions[t].effet, apports_);
            const std::uint32_t par = apport == AUCUNE ? AUCUNE : dominante(t, apport);
            if (apport != AUCUNE && par == AUCUNE) continue;
            la_[t] = false;
            resultat.push_back({t, apport == AUCUNE ? std::nullopt : std::optional(par)});
        }
        return resultat;
    }

private:
    using Fiche = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;  // needed, put into, transition

    /// The place with a positive entry that has the lowest frequency.
    static std::uint32_t rare(const Creux& v, const std::vector<std::uint32_t>& frequences) {
        std::uint32_t choisie = AUCUNE;
        for (const Poids& p : v)
            if (p.compte > 0 && (choisie == AUCUNE || frequences[p.place] < frequences[choisie])) choisie = p.place;
        return choisie;
    }

    std::uint32_t dominante(std::uint32_t t, std::uint32_t apport) {
        for (const Poids& p : net_.transitions[t].pre)
            if (const std::uint32_t par = parmi(t, p.place, apport); par != AUCUNE) return par;
        return parmi(t, AUCUNE, apport);
    }

    std::uint32_t parmi(std::uint32_t t, std::uint32_t besoin, std::uint32_t apport) {
        const Transition& dominee = net_.transitions[t];
        for (auto i = std::ranges::lower_bound(registre_, Fiche{besoin, apport, 0}); i != registre_.end(); ++i) {
            const auto [b, a, autre] = *i;
            if (b != besoin || a != apport || travail_ == 0) break;
            --travail_;
            if (autre == t || !la_[autre] || !domine(net_.transitions[autre], dominee)) continue;
            if (autre < t || !domine(dominee, net_.transitions[autre])) return autre;
        }
        return AUCUNE;
    }

    const Net& net_;
    std::vector<std::uint32_t> besoins_;  // by place, how many transitions need it
    std::vector<std::uint32_t> apports_;  // by place, how many put into it in the balance
    std::vector<bool> la_;                // transitions that are not dropped
    std::vector<Fiche> registre_;
    std::uint64_t travail_ = TRAVAIL;
};

}  // namespace

std::vector<Dominee> dominees(const Net& net) { return Recherche(net).dominees(); }

}  // namespace Reseau
