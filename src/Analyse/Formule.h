// The runs of a model as a formula of weak monadic second-order logic of one successor, in the language of
// `mona`.
//
// A run is a word. Position 0 holds the initial molecules, transitions stand at the odd positions from 1 on,
// and the position after each says what it produced. Every molecule is tracked as an individual: a kind "a"
// whose largest count is b has the set variables Da1 to Dab, and a position belongs to one of them where that
// molecule appears (even positions) or is consumed (odd ones). Which transition stands at a position is a
// binary number over the set variables T0, T1, ...
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace Modele {
class KLV;
}

/// The text whose models are the runs of `model`. `bounds` gives the largest count, at least 1, of every
/// molecule kind that is ever present. The text doubles with every step of a bound and can be long: its
/// length is computed first.
/// @throws std::logic_error "Formula too large" when the text would be longer than `limit` bytes (at most 1
/// GiB), before
///         anything is built.
std::string toFormule(Modele::KLV* model, const std::map<std::string, int>& bounds, std::size_t limit);
