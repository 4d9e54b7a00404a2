#include "Reseau/Depliage.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Reseau {

Depliage::Depliage(const Net& net, const Jeton& jeton, const std::vector<std::uint32_t>& passages)
    : places_(net.places.size()), transitions_(net.transitions.size()) {
    net_.places = net.places;
    net_.initial = net.initial;
    std::iota(places_.begin(), places_.end(), 0U);
    std::iota(transitions_.begin(), transitions_.end(), 0U);
    std::vector<std::uint32_t> seconde = places_;
    for (const std::uint32_t p : jeton.places()) {
        seconde[p] = static_cast<std::uint32_t>(places_.size());
        places_.push_back(p);
        net_.places.push_back(net.places[p]);
        net_.initial.push_back(0);
    }
    const auto apres = [&seconde](Creux cote) {
        for (Poids& p : cote) p.place = seconde[p.place];
        return cote;
    };
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        const Transition& tr = net.transitions[t];
        const bool passe = std::ranges::binary_search(passages, t);
        net_.ajouter(tr.nom, tr.pre, passe ? apres(tr.post) : tr.post);
    }
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        if (jeton.de(t) == Jeton::NULLE_PART) continue;
        const Transition& tr = net.transitions[t];
        net_.ajouter(tr.nom, apres(tr.pre), apres(tr.post));
        transitions_.push_back(t);
    }
}

std::vector<std::uint32_t> Depliage::images(std::uint32_t place) const {
    std::vector<std::uint32_t> resultat;
    for (std::uint32_t p = 0; p < places_.size(); ++p)
        if (places_[p] == place) resultat.push_back(p);
    return resultat;
}

Course Depliage::replier(Course course) const {
    for (Bloc& bloc : course)
        for (Elan& elan : bloc.elans) elan.transition = transitions_[elan.transition];
    return course;
}

std::vector<std::vector<std::uint32_t>> passagesPossibles(const Net& net, const Jeton& jeton) {
    std::vector<bool> quittable(net.places.size(), false);  // and come back to
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        if (jeton.de(t) != Jeton::NULLE_PART) quittable[jeton.vers(t)] = true;
    std::vector<std::vector<std::uint32_t>> resultat(net.places.size());
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) {
        if (jeton.de(t) == Jeton::NULLE_PART || !quittable[jeton.de(t)]) continue;
        for (const Poids& e : net.transitions[t].effet)
            if (e.compte > 0 && !std::ranges::binary_search(jeton.places(), e.place)) resultat[e.place].push_back(t);
    }
    std::erase_if(resultat, [](const auto& passages) { return passages.empty(); });
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        if (jeton.de(t) != Jeton::NULLE_PART && quittable[jeton.de(t)] &&
            std::ranges::find(resultat, std::vector{t}) == resultat.end())
            resultat.push_back({t});
    return resultat;
}

}  // namespace Reseau
