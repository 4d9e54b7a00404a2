// Text that grows by what is written to it, as a stream does. The report is made without the streams of the standard
// library: to get those ready takes longer than most nets do.
#pragma once

#include <charconv>
#include <concepts>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "Reseau/Compte.h"

namespace Reseau {

class Texte {
public:
    Texte& operator<<(std::string_view mots) {
        texte_ += mots;
        return *this;
    }

    Texte& operator<<(char c) {
        texte_ += c;
        return *this;
    }

    /// The number in decimal.
    template <std::integral Entier>
    Texte& operator<<(Entier n) {
        char chiffres[std::numeric_limits<Entier>::digits10 + 2];
        return *this << std::string_view(chiffres, std::to_chars(chiffres, std::end(chiffres), n).ptr);
    }

    /// The number in decimal. It is above the smallest one of its type.
    Texte& operator<<(Large n) {
        if (n < 0) return *this << '-' << -n;
        if (n >= 10) *this << n / 10;
        return *this << static_cast<char>('0' + static_cast<int>(n % 10));
    }

    std::string prendre() && { return std::move(texte_); }

private:
    std::string texte_;
};

}  // namespace Reseau
