#include "Reseau/Course.h"

#include <algorithm>

namespace Reseau {

void parcourir(const Net& net, const Bloc& bloc, std::vector<Compte>& m) {
    std::vector<std::pair<std::uint32_t, Large>> fin;  // by place, once for each time that it is changed
    for (const Elan& elan : bloc.elans) {
        const Compte tirs = produit(elan.fois, bloc.fois);
        for (const Poids& e : net.transitions[elan.transition].effet)
            fin.emplace_back(e.place, static_cast<Large>(e.compte) * tirs);
    }
    std::ranges::stable_sort(fin, {}, [](const auto& change) { return change.first; });
    std::size_t places = 0;
    for (const auto& ici : std::vector(fin)) {
        if (places == 0 || fin[places - 1].first != ici.first) fin[places++] = {ici.first, m[ici.first]};
        if (__builtin_add_overflow(fin[places - 1].second, ici.second, &fin[places - 1].second)) throw Debordement();
    }
    fin.resize(places);
    std::vector<std::uint32_t> tropPleines;
    for (const auto& [place, jetons] : fin)
        if (jetons >= OMEGA) tropPleines.push_back(place);
    if (!tropPleines.empty()) throw Depassement(std::move(tropPleines));
    for (const auto& [place, jetons] : fin) m[place] = static_cast<Compte>(jetons);
}

}  // namespace Reseau
