// Exact linear programming in integers. A dictionary expresses the basic variables by the others,
//
//     D * basic[i] = T[i][0] + sum over j of T[i][j] * nonbasic[j],
//
// with one common denominator D > 0 and integer entries: Edmonds' integer pivoting, in which every division comes out
// even. All variables are non-negative. Entries are 128 bits wide and every product is checked; a program whose entries
// grow beyond them is given up with an exception, so there is no rounding anywhere and no wrong answer.
//
// Sources: V. Chvatal, "Linear Programming" (1983), for dictionaries and both simplex methods; J. Edmonds, J.-F.
// Maurras, "Note sur les Q-matrices d'Edmonds", RAIRO 31 (1997), for the integer pivot.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Reseau/Compte.h"

namespace Reseau {

/// Thrown when a program is given up: an entry beyond 128 bits, or too much work.
struct Abandon {};

class Simplexe {
public:
    using Variable = std::uint32_t;
    /// A linear form: coefficients of variables.
    using Forme = std::vector<std::pair<Variable, Large>>;
    enum class Issue { OPTIMUM, INFINI, IMPOSSIBLE };

    /// A program with the variables 0 to `variables` - 1 and no constraint. `travail` is what it and all its copies may
    /// spend together, in entries rewritten; it must outlive them.
    Simplexe(std::uint32_t variables, std::uint64_t* travail);

    /// Adds `constante + forme >= 0`.
    /// @return the new variable that is equal to the left side
    Variable contraindre(Large constante, const Forme& forme);

    /// Maximises `forme`.
    /// @return IMPOSSIBLE when no point satisfies the constraints, INFINI when there is no largest value
    /// @throws Abandon, and is then of no further use
    Issue maximiser(const Forme& forme);

    Large denominateur() const { return d_; }
    /// The value of a variable times the denominator.
    Large valeur(Variable v) const;
    /// The largest value found times the denominator; after IMPOSSIBLE the negative number of `multiplicateurs`.
    Large optimum() const { return lignes_[issue_ == Issue::IMPOSSIBLE ? temoin_ : 0][0]; }
    /// After OPTIMUM: the non-negative multipliers y with D * forme + sum of y[v] * v = optimum as an identity.
    /// After IMPOSSIBLE: those with sum of y[v] * v = a negative number.
    /// Only variables with a multiplier that is not 0 are listed.
    Forme multiplicateurs() const;
    /// After INFINI: whether the variable grows, or is positive already.
    bool grandit(Variable v) const;

private:
    std::vector<Large> exprimer(Large constante, const Forme& forme) const;
    bool realisable();
    void pivoter(std::size_t ligne, std::size_t colonne);
    std::size_t sortante(std::size_t colonne) const;

    std::uint64_t* travail_;
    Large d_ = 1;
    std::vector<std::vector<Large>> lignes_;  // line 0 is the objective; column 0 the constants
    std::vector<Variable> base_;              // by line; base_[0] is not used
    std::vector<Variable> horsBase_;          // by column; horsBase_[0] is not used
    struct Lieu {
        bool enBase;
        std::size_t index;
    };
    std::vector<Lieu> lieux_;  // by variable
    std::size_t temoin_ = 0;   // the line that shows IMPOSSIBLE, the column that shows INFINI
    Issue issue_ = Issue::OPTIMUM;
};

}  // namespace Reseau
