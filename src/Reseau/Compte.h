// Token counts. A count is a signed 64-bit integer; the largest value stands for omega, "as many as one
// likes". Every sum and product is checked: a finite count that no longer fits throws, it never wraps and is
// never mistaken for omega.
#pragma once

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace Reseau {

using Compte = std::int64_t;

/// The unbounded count. It absorbs every finite change.
inline constexpr Compte OMEGA = std::numeric_limits<Compte>::max();

/// Thrown when a finite count leaves the 64-bit range.
struct Debordement : std::overflow_error {
    Debordement() : std::overflow_error("a token count does not fit in 64 bits") {}
};

/// Room for sums and products of counts that are compared, not kept.
__extension__ using Large = __int128;

/// Adds a * b. @return whether it fits
inline bool accumuler(Large& somme, Large a, Large b) {
    Large terme = 0;
    return !__builtin_mul_overflow(a, b, &terme) && !__builtin_add_overflow(somme, terme, &somme);
}

/// The hash of some counts and one more.
inline std::uint64_t hacher(std::uint64_t hache, Compte c) {
    const std::uint64_t h = (hache ^ static_cast<std::uint64_t>(c)) * 0x9E3779B97F4A7C15U;
    return h ^ (h >> 29);
}

/// a / b for b > 0, rounded down.
inline Large plancher(Large a, Large b) { return a / b - (a % b < 0 ? 1 : 0); }

/// a + b, where a may be OMEGA (then so is the sum) and b is finite.
/// @throws Debordement when the sum of finite counts does not fit.
inline Compte somme(Compte a, Compte b) {
    if (a == OMEGA) return OMEGA;
    Compte s = 0;
    if (__builtin_add_overflow(a, b, &s) || s == OMEGA) throw Debordement();
    return s;
}

/// a * b of finite counts.
/// @throws Debordement when it does not fit.
inline Compte produit(Compte a, Compte b) {
    Compte p = 0;
    if (__builtin_mul_overflow(a, b, &p) || p == OMEGA) throw Debordement();
    return p;
}

}  // namespace Reseau
