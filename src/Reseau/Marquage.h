// The marking that is being worked on: its words and how to read them.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Champs.h"

namespace Reseau {

class Marquage {
public:
    /// An empty marking. @param champs must outlive it
    explicit Marquage(const Champs& champs) : champs_(&champs), mots_(champs.mots(), 0) {}

    Compte operator[](std::uint32_t p) const { return champs_->lire(mots_.data(), p); }
    /// @param c must fit
    void poser(std::uint32_t p, Compte c) { champs_->poser(mots_.data(), p, c); }
    const Mot* mots() const { return mots_.data(); }
    Mot* mots() { return mots_.data(); }

private:
    const Champs* champs_;
    std::vector<Mot> mots_;
};

}  // namespace Reseau
