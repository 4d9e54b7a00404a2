#include "Reseau/Phases.h"

#include <algorithm>

#include "Reseau/Depliage.h"

namespace Reseau {

Phases::Phases(const Net& net, const Jeton& jeton)
    : net_(net), jeton_(jeton), passages_(passagesPossibles(net, jeton)), tours_(net.places.size(), 0) {
    // All ways make the net equally large.
    if (possible() && !Majorants::possible(Depliage(net, jeton, passages_[0]).net())) passages_.clear();
}

std::optional<Majoration> Phases::majorer(std::uint32_t place, Large minorant, Tireur& tireur, unsigned effort,
                                          std::uint64_t& depense) {
    const std::vector<std::uint32_t>& passages = passages_[tours_[place]++ % passages_.size()];
    const Depliage depliage(net_, jeton_, passages);
    Majorants majorants(depliage.net());
    depense += Majorants::construction(depliage.net());
    Tireur tireurDeplie(depliage.net());
    tireurDeplie.accorder(Majorants::travail(effort));
    const std::vector<std::uint32_t> images = depliage.images(place);
    auto majoration = majorants.majorer(images, minorant, &tireurDeplie, effort, depense);
    if (majoration) majoration->passages = passages;
    for (const std::uint32_t p : images)
        if (tireurDeplie.minorants()[p] != OMEGA && tireurDeplie.minorants()[p] > tireur.minorants()[place])
            tireur.adopter(depliage.replier(tireurDeplie.course(p)));
    return majoration;
}

}  // namespace Reseau
