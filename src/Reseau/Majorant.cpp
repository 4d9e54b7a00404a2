#include "Reseau/Majorant.h"

#include <algorithm>

#include "Reseau/Depart.h"
#include "Reseau/Separation.h"

namespace Reseau {

namespace {

constexpr std::uint64_t CASES_DENSES = 300'000;  // places times transitions
constexpr std::uint64_t TRAVAIL = 4'000'000;     // entries of the dictionary rewritten for one question
constexpr std::size_t NOEUDS = 64;               // of one search

/// @return none when there is only one
std::vector<std::uint32_t> plusieursDeparts(const Net& net) {
    std::vector<std::uint32_t> premiers = departs(net);
    if (premiers.size() == 1) premiers.clear();
    return premiers;
}

}  // namespace

Majorants::Majorants(const Net& net)
    : equation_(net, &travail_), contradictions_(equation_), departs_(plusieursDeparts(net)) {}

std::uint64_t Majorants::construction(const Net& net) { return Equation::cases(net); }

bool Majorants::possible(const Net& net) { return Equation::cases(net) <= CASES_DENSES; }

std::uint64_t Majorants::travail(unsigned effort) { return TRAVAIL << (2 * effort); }

std::optional<Majoration> Majorants::majorer(const std::vector<std::uint32_t>& places, Large minorant, Tireur* tireur,
                                             unsigned effort, std::uint64_t& depense) {
    if (places.size() == 1)
        if (auto connue = parInvariant(places[0], minorant)) return connue;
    travail_ = travail(effort);
    Separation separation(equation_, contradictions_, departs_,
                          {places, minorant, tireur, travail(effort), NOEUDS << (2 * effort)});
    separation.chercher();
    depense += travail(effort) - travail_;
    if (places.size() == 1)
        if (auto invariant = separation.invariant()) invariants_.emplace_back(places[0], std::move(*invariant));
    const std::optional<Large> borne = separation.borne();
    if (!borne) return std::nullopt;
    return Majoration{*borne, separation.preuve(*borne), {}};
}

/// The bound that an invariant found for another place gives.
std::optional<Majoration> Majorants::parInvariant(std::uint32_t place, Large minorant) const {
    for (const auto& [autre, cas] : invariants_) {
        const auto ici = std::ranges::find(cas.multiplicateurs, place, [](const auto& m) { return m.first; });
        if (ici == cas.multiplicateurs.end() || (cas.total / ici->second) > minorant) continue;
        Cas echange = cas;
        echange.facteur = ici->second;
        std::erase_if(echange.multiplicateurs, [place](const auto& m) { return m.first == place; });
        echange.multiplicateurs.emplace_back(autre, cas.facteur);
        std::ranges::sort(echange.multiplicateurs);
        return Majoration{(cas.total / ici->second), {std::move(echange)}, {}};
    }
    return std::nullopt;
}

}  // namespace Reseau
