// The normal form of a transition: each side sorted, one entry per place, no zeros; the effect is their
// difference.
#include "Reseau/Net.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Reseau {

namespace {

void normaliser(Creux& cote) {
    std::ranges::sort(cote, {}, &Poids::place);
    auto fin = cote.begin();
    for (const Poids& p : cote) {
        if (p.compte == 0) continue;
        if (fin != cote.begin() && std::prev(fin)->place == p.place)
            std::prev(fin)->compte = somme(std::prev(fin)->compte, p.compte);
        else
            *fin++ = p;
    }
    cote.erase(fin, cote.end());
}

Creux difference(const Creux& post, const Creux& pre) {
    Creux d;
    d.reserve(post.size() + pre.size());
    auto a = post.begin();
    auto b = pre.begin();
    while (a != post.end() || b != pre.end()) {
        if (b == pre.end() || (a != post.end() && a->place < b->place)) {
            d.push_back(*a++);
        } else if (a == post.end() || b->place < a->place) {
            d.push_back({b->place, -b->compte});
            ++b;
        } else {
            if (a->compte != b->compte) d.push_back({a->place, a->compte - b->compte});
            ++a;
            ++b;
        }
    }
    return d;
}

}  // namespace

Compte valeur(const Creux& v, std::uint32_t place) {
    const auto i = std::ranges::lower_bound(v, place, {}, &Poids::place);
    return i != v.end() && i->place == place ? i->compte : 0;
}

void Net::ajouter(std::string nomTransition, Creux pre, Creux post) {
    normaliser(pre);
    normaliser(post);
    Creux effet = difference(post, pre);
    transitions.push_back({std::move(nomTransition), std::move(pre), std::move(post), std::move(effet)});
}

}  // namespace Reseau
