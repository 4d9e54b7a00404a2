#include "Reseau/Course.h"

namespace Reseau {

void parcourir(const Net& net, const Bloc& bloc, std::vector<Compte>& m) {
    std::vector<Large> fin(m.begin(), m.end());
    for (const Elan& elan : bloc.elans) {
        const Compte tirs = produit(elan.fois, bloc.fois);
        for (const Poids& e : net.transitions[elan.transition].effet)
            if (__builtin_add_overflow(fin[e.place], static_cast<Large>(e.compte) * tirs, &fin[e.place]))
                throw Debordement();
    }
    std::vector<std::uint32_t> tropPleines;
    for (std::uint32_t p = 0; p < fin.size(); ++p)
        if (fin[p] >= OMEGA) tropPleines.push_back(p);
    if (!tropPleines.empty()) throw Depassement(std::move(tropPleines));
    for (std::size_t p = 0; p < fin.size(); ++p) m[p] = static_cast<Compte>(fin[p]);
}

}  // namespace Reseau
