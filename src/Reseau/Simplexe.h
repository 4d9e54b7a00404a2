// Exact linear programming in integers. A dictionary expresses the basic variables by the others,
//
//     d[i] * basic[i] = T[i][0] + sum over j of T[i][j] * nonbasic[j],
//
// with integer entries and a denominator d[i] > 0 for each line, in lowest terms. All variables are non-negative.
// Entries are 128 bits wide and every product is checked; a program whose entries grow beyond them is given up with an
// exception, so there is no rounding anywhere and no wrong answer.
//
// Source: V. Chvatal, "Linear Programming" (1983), for dictionaries, the primal and the dual method.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "Reseau/Compte.h"

namespace Reseau {

/// Thrown when a program is given up: an entry beyond 128 bits, or too much work.
struct Abandon {};

/// In lowest terms, with a positive denominator.
struct Fraction {
    Large numerateur;
    Large denominateur;
    bool entiere() const { return denominateur == 1; }
    Large plancher() const { return numerateur / denominateur - (numerateur % denominateur < 0 ? 1 : 0); }
    Large plafond() const { return numerateur / denominateur + (numerateur % denominateur > 0 ? 1 : 0); }
};

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

    /// Maximises the same form again, after OPTIMUM and with constraints added since: the dual method, which needs few
    /// steps.
    /// @return IMPOSSIBLE or OPTIMUM
    /// @throws Abandon, and is then of no further use
    Issue reoptimiser();

    /// The value of a variable.
    Fraction valeur(Variable v) const;
    /// The largest value found; after IMPOSSIBLE its numerator is the negative number of `multiplicateurs`.
    Fraction optimum() const;
    /// After OPTIMUM: the non-negative multipliers y with denominator * forme + sum of y[v] * v = numerator as an
    /// identity, for the fraction `optimum`.
    /// After IMPOSSIBLE: those with sum of y[v] * v = a negative number.
    /// Only variables with a multiplier that is not 0 are listed.
    Forme multiplicateurs() const;
    /// The sum of multiplier * variable, for variables that are zero now, divided by `diviseur` and rounded.
    struct Coupe {
        Large diviseur;
        Forme multiplicateurs;
    };
    /// After OPTIMUM: what holds for integers and not for this solution, and lowers the optimum most, as far as the
    /// first step of the dual method tells. Nothing when the solution is integral, or when denominators have no small
    /// prime factor. Source: A. Caprara, M. Fischetti, A. Letchford, "On the separation of maximally violated mod-k
    /// cuts", Mathematical Programming 87 (2000).
    std::optional<Coupe> coupe() const;
    /// After INFINI: how much the variable grows along a ray on which there is no largest value.
    Fraction croissance(Variable v) const;
    /// After INFINI: whether the variable grows, or is positive already.
    bool grandit(Variable v) const;

private:
    struct Ligne {
        Large denominateur = 1;
        std::vector<Large> entrees;  // column 0 is the constant
        Large operator[](std::size_t j) const { return entrees[j]; }
        Large& operator[](std::size_t j) { return entrees[j]; }
        void reduire();
        /// Puts `autre`, which is zero but at `occupees`, in the place of a variable that stands here with
        /// `coefficient`.
        void remplacer(Large coefficient, const Ligne& autre, const std::vector<std::size_t>& occupees);
    };

    Ligne exprimer(Large constante, const Forme& forme) const;
    bool realisable();
    void pivoter(std::size_t ligne, std::size_t colonne);
    std::size_t sortante(std::size_t colonne, bool bland) const;
    std::size_t entrante(std::size_t ligne, bool bland) const;
    double baisse(const Ligne& ligne, Large diviseur, Large facteur) const;

    std::uint64_t* travail_;
    std::vector<Ligne> lignes_;       // line 0 is the objective
    std::vector<Variable> base_;      // by line; base_[0] is not used
    std::vector<Variable> horsBase_;  // by column; horsBase_[0] is not used
    struct Lieu {
        bool enBase;
        std::size_t index;
    };
    std::vector<Lieu> lieux_;  // by variable
    std::size_t temoin_ = 0;   // the line that shows IMPOSSIBLE, the column that shows INFINI
    Issue issue_ = Issue::OPTIMUM;
};

}  // namespace Reseau
