// Feasibility first, by the dual method with a zero objective, then the primal method. Both begin with the entry that
// promises most and fall back to Bland's rule, which cannot cycle, after many pivots.
#include "Reseau/Simplexe.h"

#include <algorithm>

namespace Reseau {

namespace {

Large fois(Large a, Large b) {
    Large p = 0;
    if (__builtin_mul_overflow(a, b, &p)) throw Abandon();
    return p;
}

Large plus(Large a, Large b) {
    Large s = 0;
    if (__builtin_add_overflow(a, b, &s)) throw Abandon();
    return s;
}

}  // namespace

Simplexe::Simplexe(std::uint32_t variables, std::uint64_t* travail) : travail_(travail) {
    lignes_.emplace_back(variables + 1, 0);
    base_.push_back(0);
    horsBase_.push_back(0);
    for (Variable v = 0; v < variables; ++v) {
        horsBase_.push_back(v);
        lieux_.push_back({false, v + 1});
    }
}

std::vector<Large> Simplexe::exprimer(Large constante, const Forme& forme) const {
    std::vector<Large> ligne(horsBase_.size(), 0);
    ligne[0] = fois(constante, d_);
    for (const auto& [v, coefficient] : forme) {
        const Lieu lieu = lieux_[v];
        if (!lieu.enBase) {
            ligne[lieu.index] = plus(ligne[lieu.index], fois(coefficient, d_));
            continue;
        }
        const std::vector<Large>& de = lignes_[lieu.index];
        for (std::size_t j = 0; j < ligne.size(); ++j)
            if (de[j] != 0) ligne[j] = plus(ligne[j], fois(coefficient, de[j]));
    }
    return ligne;
}

Simplexe::Variable Simplexe::contraindre(Large constante, const Forme& forme) {
    const auto neuve = static_cast<Variable>(lieux_.size());
    lieux_.push_back({true, lignes_.size()});
    base_.push_back(neuve);
    lignes_.push_back(exprimer(constante, forme));
    return neuve;
}

/// Exchanges the basic variable of `ligne` with the nonbasic one of `colonne`.
void Simplexe::pivoter(std::size_t ligne, std::size_t colonne) {
    if (*travail_ == 0) throw Abandon();
    std::uint64_t fait = lignes_.size() + horsBase_.size();
    std::vector<Large>& r = lignes_[ligne];
    const Large pivot = r[colonne];
    const Large signe = pivot < 0 ? -1 : 1;
    const Large d = signe * pivot;
    for (Large& x : r) x = -signe * x;
    r[colonne] = signe * d_;
    std::vector<std::size_t> occupees;
    for (std::size_t j = 0; j < r.size(); ++j)
        if (r[j] != 0) occupees.push_back(j);
    // The quotients below come out even; a division of 128 bits is dear, and one by 1 common.
    const auto quotient = [this](Large x) { return d_ == 1 ? x : x / d_; };
    for (std::size_t i = 0; i < lignes_.size(); ++i) {
        if (i == ligne) continue;
        std::vector<Large>& t = lignes_[i];
        const Large c = t[colonne];
        t[colonne] = 0;
        // t = (d t + c r) / d_, where most entries are zero and d mostly equals d_.
        fait += d == d_ ? occupees.size() * (c != 0) : 2 * t.size();
        if (d == d_) {
            for (const std::size_t j : occupees) t[j] = plus(t[j], quotient(fois(c, r[j])));
            continue;
        }
        for (Large& x : t)
            if (x != 0) x = fois(d, x);
        if (c != 0)
            for (const std::size_t j : occupees) t[j] = plus(t[j], fois(c, r[j]));
        for (Large& x : t)
            if (x != 0) x = quotient(x);
    }
    *travail_ -= std::min(*travail_, fait);
    d_ = d;
    std::swap(base_[ligne], horsBase_[colonne]);
    lieux_[base_[ligne]] = {true, ligne};
    lieux_[horsBase_[colonne]] = {false, colonne};
}

/// Makes every constant non-negative by the dual method; the objective is zero, so any entering variable will do.
/// @return false when a line shows that none can: it is a negative constant plus non-positive multiples
bool Simplexe::realisable() {
    std::ranges::fill(lignes_[0], 0);
    while (true) {
        // Bland: the infeasible basic variable and then the entering variable of the smallest number.
        std::size_t ligne = 0;
        for (std::size_t i = 1; i < lignes_.size(); ++i)
            if (lignes_[i][0] < 0 && (ligne == 0 || base_[i] < base_[ligne])) ligne = i;
        if (ligne == 0) return true;
        std::size_t colonne = 0;
        for (std::size_t j = 1; j < horsBase_.size(); ++j)
            if (lignes_[ligne][j] > 0 && (colonne == 0 || horsBase_[j] < horsBase_[colonne])) colonne = j;
        if (colonne == 0) {
            temoin_ = ligne;
            return false;
        }
        pivoter(ligne, colonne);
    }
}

/// The basic variable that is first to reach zero when the variable of `colonne` grows; 0 when none ever does.
std::size_t Simplexe::sortante(std::size_t colonne) const {
    std::size_t choix = 0;
    for (std::size_t i = 1; i < lignes_.size(); ++i) {
        if (lignes_[i][colonne] >= 0) continue;
        if (choix == 0) {
            choix = i;
            continue;
        }
        const Large ici = fois(lignes_[i][0], -lignes_[choix][colonne]);
        const Large meilleur = fois(lignes_[choix][0], -lignes_[i][colonne]);
        if (ici < meilleur || (ici == meilleur && base_[i] < base_[choix])) choix = i;
    }
    return choix;
}

Simplexe::Issue Simplexe::maximiser(const Forme& forme) {
    if (!realisable()) return issue_ = Issue::IMPOSSIBLE;
    lignes_[0] = exprimer(0, forme);
    const std::size_t patience = 4 * (lignes_.size() + horsBase_.size());
    for (std::size_t tours = 0;; ++tours) {
        std::size_t colonne = 0;
        for (std::size_t j = 1; j < horsBase_.size(); ++j) {
            if (lignes_[0][j] <= 0) continue;
            const bool mieux = tours < patience ? colonne == 0 || lignes_[0][j] > lignes_[0][colonne]
                                                : colonne == 0 || horsBase_[j] < horsBase_[colonne];
            if (mieux) colonne = j;
        }
        if (colonne == 0) return issue_ = Issue::OPTIMUM;
        const std::size_t ligne = sortante(colonne);
        if (ligne == 0) {
            temoin_ = colonne;
            return issue_ = Issue::INFINI;
        }
        pivoter(ligne, colonne);
    }
}

Large Simplexe::valeur(Variable v) const { return lieux_[v].enBase ? lignes_[lieux_[v].index][0] : 0; }

Simplexe::Forme Simplexe::multiplicateurs() const {
    const std::vector<Large>& ligne = lignes_[issue_ == Issue::IMPOSSIBLE ? temoin_ : 0];
    Forme y;
    for (std::size_t j = 1; j < ligne.size(); ++j)
        if (ligne[j] != 0) y.emplace_back(horsBase_[j], -ligne[j]);
    if (issue_ == Issue::IMPOSSIBLE) y.emplace_back(base_[temoin_], d_);
    return y;
}

bool Simplexe::grandit(Variable v) const {
    const Lieu lieu = lieux_[v];
    if (!lieu.enBase) return lieu.index == temoin_;
    return lignes_[lieu.index][0] > 0 || lignes_[lieu.index][temoin_] > 0;
}

}  // namespace Reseau
