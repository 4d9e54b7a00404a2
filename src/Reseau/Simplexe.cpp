// Feasibility first, by the dual method with a zero objective, then the primal method. Both begin with the entry that
// promises most and fall back to Bland's rule, which cannot cycle, after many pivots.
#include "Reseau/Simplexe.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace Reseau {

namespace {

constexpr Large SANS_OPPOSE = -(Large{1} << 126) - (Large{1} << 126);  // the only number whose negative does not fit

Large fois(Large a, Large b) {
    if (a == static_cast<std::int64_t>(a) && b == static_cast<std::int64_t>(b)) return a * b;
    Large p = 0;
    if (__builtin_mul_overflow(a, b, &p) || p == SANS_OPPOSE) throw Abandon();
    return p;
}

Large plus(Large a, Large b) {
    Large s = 0;
    if (__builtin_add_overflow(a, b, &s) || s == SANS_OPPOSE) throw Abandon();
    return s;
}

Large absolu(Large a) { return a < 0 ? -a : a; }

bool court(Large a) { return a == static_cast<std::int64_t>(a); }

/// The remainder and the quotient of a by b > 0, in 64 bits when they fit, which is many times faster.
Large reste(Large a, Large b) {
    if (court(a) && court(b)) return static_cast<std::int64_t>(a) % static_cast<std::int64_t>(b);
    return a % b;
}
Large quotient(Large a, Large b) {
    if (court(a) && court(b)) return static_cast<std::int64_t>(a) / static_cast<std::int64_t>(b);
    return a / b;
}

/// The greatest common divisor of non-negative numbers.
Large pgcd(Large a, Large b) {
    while (b != 0) {
        const Large r = reste(a, b);
        a = b;
        b = r;
    }
    return a;
}

constexpr Large PREMIERS[] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47};
constexpr Large GRAND = Large{1} << 32;  // of a denominator
constexpr std::uint64_t LENTE = 10;      // times as long as others takes a line of a larger denominator
constexpr Large GRANDE = 100;            // powers of these that are tried

Large modulo(Large a, Large p) {
    const Large r = reste(a, p);
    return r < 0 ? r + p : r;
}

/// A number whose product with a is the greatest common divisor of a and the small number q, modulo q.
Large inverse(Large a, Large q) {
    const Large g = pgcd(a, q);
    Large i = 1;
    while (a * i % q != g) ++i;
    return i;
}

}  // namespace

/// The greatest common divisor costs more than all else, so that it is only looked for when the numbers grow.
void Simplexe::Ligne::reduire() {
    if (denominateur < GRAND) return;
    Large g = denominateur;
    for (std::size_t j = 0; g != 1 && j < entrees.size(); ++j)
        if (entrees[j] != 0) g = pgcd(absolu(entrees[j]), g);
    if (g == 1) return;
    denominateur /= g;
    for (Large& x : entrees)
        if (x != 0) x = quotient(x, g);
}

void Simplexe::Ligne::remplacer(Large coefficient, const Ligne& autre, const std::vector<std::size_t>& occupees) {
    const Large g = pgcd(absolu(coefficient), autre.denominateur);
    const Large f = autre.denominateur / g;
    const Large h = coefficient / g;
    if (f != 1) {
        denominateur = fois(f, denominateur);
        for (Large& x : entrees)
            if (x != 0) x = fois(f, x);
    }
    for (const std::size_t j : occupees) entrees[j] = plus(entrees[j], fois(h, autre[j]));
    reduire();
}

Simplexe::Simplexe(std::uint32_t variables, std::uint64_t* travail) : travail_(travail) {
    lignes_.push_back({1, std::vector<Large>(variables + 1, 0)});
    base_.push_back(0);
    horsBase_.push_back(0);
    for (Variable v = 0; v < variables; ++v) {
        horsBase_.push_back(v);
        lieux_.push_back({false, v + 1});
    }
}

Simplexe::Ligne Simplexe::exprimer(Large constante, const Forme& forme) const {
    Ligne ligne;
    ligne.entrees.assign(horsBase_.size(), 0);
    ligne[0] = plus(constante, 0);
    for (const auto& [v, coefficient] : forme) {
        const Lieu lieu = lieux_[v];
        if (!lieu.enBase) {
            ligne[lieu.index] = plus(ligne[lieu.index], fois(coefficient, ligne.denominateur));
            continue;
        }
        const Ligne& de = lignes_[lieu.index];
        std::vector<std::size_t> occupees;
        for (std::size_t j = 0; j < de.entrees.size(); ++j)
            if (de[j] != 0) occupees.push_back(j);
        ligne.remplacer(fois(coefficient, ligne.denominateur), de, occupees);
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
    Ligne& r = lignes_[ligne];
    const Large signe = r[colonne] < 0 ? -1 : 1;
    const Large pivot = signe * r[colonne];
    for (Large& x : r.entrees) x = -signe * x;
    r[colonne] = signe * r.denominateur;
    r.denominateur = pivot;
    r.reduire();
    std::vector<std::size_t> occupees;
    for (std::size_t j = 0; j < r.entrees.size(); ++j)
        if (r[j] != 0) occupees.push_back(j);
    for (std::size_t i = 0; i < lignes_.size(); ++i) {
        Ligne& t = lignes_[i];
        if (i == ligne || t[colonne] == 0) continue;
        const Large c = t[colonne];
        t[colonne] = 0;
        t.remplacer(c, r, occupees);
        fait += t.denominateur == 1      ? occupees.size()
                : t.denominateur < GRAND ? t.entrees.size() + occupees.size()
                                         : LENTE * t.entrees.size();
    }
    *travail_ -= std::min(*travail_, fait);
    std::swap(base_[ligne], horsBase_[colonne]);
    lieux_[base_[ligne]] = {true, ligne};
    lieux_[horsBase_[colonne]] = {false, colonne};
}

/// Makes every constant non-negative by the dual method; the objective is zero, so any entering variable will do.
/// @return false when a line shows that none can: it is a negative constant plus non-positive multiples
bool Simplexe::realisable() {
    lignes_[0] = exprimer(0, {});
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
std::size_t Simplexe::sortante(std::size_t colonne, bool bland) const {
    std::size_t choix = 0;
    for (std::size_t i = 1; i < lignes_.size(); ++i) {
        if (lignes_[i][colonne] >= 0) continue;
        if (choix == 0) {
            choix = i;
            continue;
        }
        const Large ici = fois(lignes_[i][0], -lignes_[choix][colonne]);
        const Large meilleur = fois(lignes_[choix][0], -lignes_[i][colonne]);
        if (ici > meilleur) continue;
        // Among equals the smallest pivot, which keeps the entries small.
        const bool prefere = bland ? base_[i] < base_[choix] : lignes_[i][colonne] > lignes_[choix][colonne];
        if (ici < meilleur || prefere) choix = i;
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
        const std::size_t ligne = sortante(colonne, tours >= patience);
        if (ligne == 0) {
            temoin_ = colonne;
            return issue_ = Issue::INFINI;
        }
        pivoter(ligne, colonne);
    }
}

/// The nonbasic variable that keeps the objective's coefficients non-positive when the one of `ligne` leaves; 0 when
/// the line shows that there is no solution.
std::size_t Simplexe::entrante(std::size_t ligne, bool bland) const {
    const Ligne& r = lignes_[ligne];
    std::size_t choix = 0;
    for (std::size_t j = 1; j < r.entrees.size(); ++j) {
        if (r[j] <= 0) continue;
        if (choix == 0) {
            choix = j;
            continue;
        }
        const Large ici = fois(-lignes_[0][j], r[choix]);
        const Large meilleur = fois(-lignes_[0][choix], r[j]);
        if (ici > meilleur) continue;
        const bool prefere = bland ? horsBase_[j] < horsBase_[choix] : r[j] < r[choix];
        if (ici < meilleur || prefere) choix = j;
    }
    return choix;
}

Simplexe::Issue Simplexe::reoptimiser() {
    const std::size_t patience = 4 * (lignes_.size() + horsBase_.size());
    // Only a preference, so it may be rounded.
    const auto manque = [this](std::size_t i) {
        return -static_cast<double>(lignes_[i][0]) / static_cast<double>(lignes_[i].denominateur);
    };
    for (std::size_t tours = 0;; ++tours) {
        std::size_t ligne = 0;
        for (std::size_t i = 1; i < lignes_.size(); ++i) {
            if (lignes_[i][0] >= 0) continue;
            const bool mieux = ligne == 0 || (tours < patience ? manque(i) > manque(ligne) : base_[i] < base_[ligne]);
            if (mieux) ligne = i;
        }
        if (ligne == 0) return issue_ = Issue::OPTIMUM;
        const std::size_t colonne = entrante(ligne, tours >= patience);
        if (colonne == 0) {
            temoin_ = ligne;
            return issue_ = Issue::IMPOSSIBLE;
        }
        pivoter(ligne, colonne);
    }
}

Fraction Simplexe::valeur(Variable v) const {
    if (!lieux_[v].enBase) return {0, 1};
    const Ligne& ligne = lignes_[lieux_[v].index];
    const Large g = ligne.denominateur == 1 ? 1 : pgcd(absolu(ligne[0]), ligne.denominateur);
    return {ligne[0] / g, ligne.denominateur / g};
}

Fraction Simplexe::optimum() const {
    const Ligne& ligne = lignes_[issue_ == Issue::IMPOSSIBLE ? temoin_ : 0];
    return {ligne[0], ligne.denominateur};
}

Simplexe::Forme Simplexe::multiplicateurs() const {
    const Ligne& ligne = lignes_[issue_ == Issue::IMPOSSIBLE ? temoin_ : 0];
    Forme y;
    for (std::size_t j = 1; j < ligne.entrees.size(); ++j)
        if (ligne[j] != 0) y.emplace_back(horsBase_[j], -ligne[j]);
    if (issue_ == Issue::IMPOSSIBLE) y.emplace_back(base_[temoin_], ligne.denominateur);
    return y;
}

/// By how much the cut that `ligne` gives lowers the optimum at least. Only a preference, so it may be rounded.
double Simplexe::baisse(const Ligne& ligne, Large diviseur, Large facteur) const {
    const auto ceQuiReste = [&](std::size_t j) {
        return static_cast<double>(modulo(modulo(ligne[j], diviseur) * facteur, diviseur));
    };
    const double manque = static_cast<double>(diviseur) - ceQuiReste(0);
    double moindre = std::numeric_limits<double>::infinity();
    for (std::size_t j = 1; j < ligne.entrees.size(); ++j)
        if (const double r = ceQuiReste(j); r > 0)
            moindre = std::min(moindre, -static_cast<double>(lignes_[0][j]) * manque / r);
    return moindre;
}

/// A line, times what makes its denominator a small power q of a prime that its constant is no multiple of: when it is
/// rounded, the multiples of q among its coefficients vanish, the constant does not. The same holds for what is
/// a multiple of it modulo q; of these one is taken whose constant is rounded most.
std::optional<Simplexe::Coupe> Simplexe::coupe() const {
    const Ligne* meilleure = nullptr;
    Large diviseur = 0;
    Large facteur = 0;
    double plusGrande = -1;
    for (std::size_t i = 1; i < lignes_.size(); ++i) {
        const Ligne& ligne = lignes_[i];
        if (ligne.denominateur == 1) continue;
        for (const Large p : PREMIERS) {
            Large q = p;
            while (q < GRANDE && ligne.denominateur % q == 0 && ligne[0] % q == 0) q *= p;
            if (ligne.denominateur % q != 0 || ligne[0] % q == 0) continue;
            const Large c = inverse(modulo(ligne[0], q), q);
            const double ici = baisse(ligne, q, c);
            *travail_ -= std::min<std::uint64_t>(*travail_, ligne.entrees.size());
            if (ici <= plusGrande) continue;
            plusGrande = ici;
            meilleure = &ligne;
            diviseur = q;
            facteur = c;
        }
    }
    if (meilleure == nullptr) return std::nullopt;
    Coupe resultat{diviseur, {}};
    for (std::size_t j = 1; j < horsBase_.size(); ++j)
        if (const Large r = modulo(modulo((*meilleure)[j], diviseur) * facteur, diviseur); r != 0)
            resultat.multiplicateurs.emplace_back(horsBase_[j], r);
    return resultat;
}

Fraction Simplexe::croissance(Variable v) const {
    const Lieu lieu = lieux_[v];
    if (!lieu.enBase) return {lieu.index == temoin_ ? 1 : 0, 1};
    const Ligne& ligne = lignes_[lieu.index];
    const Large g = pgcd(absolu(ligne[temoin_]), ligne.denominateur);
    return {ligne[temoin_] / g, ligne.denominateur / g};
}

bool Simplexe::grandit(Variable v) const {
    const Lieu lieu = lieux_[v];
    if (!lieu.enBase) return lieu.index == temoin_;
    return lignes_[lieu.index][0] > 0 || lignes_[lieu.index][temoin_] > 0;
}

}  // namespace Reseau
