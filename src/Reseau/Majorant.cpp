// Best-first search over the cases. Variables of the program: the transitions, then one for each place (its marking),
// then one for each constraint of the cases in force.
#include "Reseau/Majorant.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <numeric>
#include <utility>

#include "Reseau/Depart.h"
#include "Reseau/Tir.h"

namespace Reseau {

namespace {

constexpr std::uint64_t CASES_DENSES = 300'000;         // places times transitions
constexpr std::uint64_t TRAVAIL = 4'000'000;            // entries of the dictionary rewritten for one question
constexpr std::uint64_t PART = 8;                       // of it that one search of a run may take
constexpr std::uint64_t PART_DES_PAIRES = 4;            // of it that one search of an order may take
constexpr std::size_t NOEUDS = 64;                      // of one search
constexpr std::uint64_t CASES_EN_MEMOIRE = 10'000'000;  // of the dictionaries of all open cases
constexpr std::size_t COUPES = 40;                      // on the way to one case
constexpr std::size_t LIAISONS = 20;                    // rounds of connecting what a ray fires
constexpr std::size_t PLONGEE = 40;                     // programs solved for one integer solution
constexpr std::size_t RESERVES = 4;                     // pumps that are repeated to gather what another one needs,
constexpr std::size_t FOIS = 64;                        // so many times
constexpr Large INFINI = static_cast<Large>(1) << 126;

std::uint64_t cases(const Net& net) { return (net.places.size() + 1) * (net.transitions.size() + 1); }

std::vector<Contrainte> etats(const Net& net) {
    std::vector<Contrainte> contraintes;
    for (std::uint32_t p = 0; p < net.places.size(); ++p) contraintes.push_back(etat(net, p));
    return contraintes;
}

Simplexe programme(std::size_t transitions, const std::vector<Contrainte>& etats, std::uint64_t* travail) {
    Simplexe s(static_cast<std::uint32_t>(transitions), travail);
    for (const Contrainte& c : etats) s.contraindre(c.constante, c.forme);
    return s;
}

/// @return nothing when it leaves 64 bits
std::optional<Large> multipleCommun(Large a, Large b) {
    if (a % b == 0) return a;
    if (b >= OMEGA) return std::nullopt;
    const Large produit = a * (b / std::gcd(static_cast<Compte>(a), static_cast<Compte>(b)));
    return produit < OMEGA ? std::optional(produit) : std::nullopt;
}

/// `fois` times `f`, which is made an integer by `commun`.
std::optional<Compte> entiere(const Fraction& f, Large commun, Large fois) {
    Large n = 0;
    if (__builtin_mul_overflow(f.numerateur, fois * (commun / f.denominateur), &n) || n >= OMEGA) return std::nullopt;
    return static_cast<Compte>(n);
}

/// Adds a * b. @return whether it fits
bool accumuler(Large& somme, Large a, Large b) {
    Large terme = 0;
    return !__builtin_mul_overflow(a, b, &terme) && !__builtin_add_overflow(somme, terme, &somme);
}

/// A pump, repeated after its stem.
Course repeter(Course tige, const Course& cycle) {
    for (std::size_t i = 0; i < FOIS; ++i) tige.insert(tige.end(), cycle.begin(), cycle.end());
    return tige;
}

/// Whether the solution contradicts the constraint; no when that cannot be worked out in 128 bits.
bool negative(const Contrainte& c, const Simplexe& s) {
    Large total = c.constante;
    Large denominateur = 1;
    for (const auto& [t, n] : c.forme) {
        const Fraction x = s.valeur(t);
        Large terme = 0;
        if (__builtin_mul_overflow(total, x.denominateur, &total) || __builtin_mul_overflow(n, x.numerateur, &terme) ||
            __builtin_mul_overflow(terme, denominateur, &terme) || __builtin_add_overflow(total, terme, &total) ||
            __builtin_mul_overflow(denominateur, x.denominateur, &denominateur))
            return false;
    }
    return total < 0;
}

}  // namespace

/// A case: how it is closed as it stands, and the distinction that refines it, if there is one.
struct Majorants::Noeud {
    Large borne = INFINI;
    Cas fermeture;
    std::optional<Cas> distinction;
    std::uint32_t premier = 0;            // the number of its first case; the second one's is the next
    std::shared_ptr<Simplexe> programme;  // while it is open; its parent's until it is worked out
    bool resolue = false;
    std::uint32_t parent = 0;
    std::vector<Contrainte> contraintes;  // that it adds to its parent's
    std::size_t coupes = 0;               // on the way to it
    std::size_t departs = 0;              // ways to begin that have been tried before
    bool commencee = false;               // whether it is known how it begins
    bool finie = false;                   // whether it is known where the control token ends
};

struct Majorants::Question {
    const std::vector<std::uint32_t>& places;
    Simplexe::Forme forme;
    Large minorant;
    Tireur* tireur;
    std::uint64_t parCourse;  // what one search of a run may cost
    std::size_t limite;       // of nodes
    std::vector<Noeud> noeuds;
    std::priority_queue<std::pair<Large, std::uint32_t>> ouverts;  // by bound; the newest first among equals
    Large plafond = -1;  // the largest bound of the cases that are not refined any more
};

Majorants::Majorants(const Net& net)
    : net_(net),
      jeton_(Jeton::trouver(net)),
      etats_(etats(net)),
      initial_(programme(net.transitions.size(), etats_, &travail_)) {
    if (auto premiers = departs(net); premiers.size() > 1) departs_ = std::move(premiers);
    if (!jeton_) return;
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        if (jeton_->de(t) == Jeton::NULLE_PART) return;
    promenade_.emplace(net_, *jeton_);
}

/// Accounts for a copy of the program.
void Majorants::payer() const { travail_ -= std::min(travail_, cases(net_)); }

std::uint64_t Majorants::construction(const Net& net) { return cases(net); }

bool Majorants::possible(const Net& net) { return cases(net) <= CASES_DENSES; }

std::uint64_t Majorants::travail(unsigned effort) { return TRAVAIL << (2 * effort); }

std::optional<Majoration> Majorants::majorer(const std::vector<std::uint32_t>& places, Large minorant, Tireur* tireur,
                                             unsigned effort, std::uint64_t& depense) {
    if (places.size() == 1)
        if (auto connue = parInvariant(places[0], minorant)) return connue;
    Question q{places, {}, minorant, tireur, travail(effort) / PART, NOEUDS << (2 * effort), {}, {}};
    for (const std::uint32_t p : places)
        q.forme.emplace_back(static_cast<Simplexe::Variable>(net_.transitions.size()) + p, 1);
    travail_ = travail(effort);
    travailDesPaires_ = travail(effort) / PART_DES_PAIRES;
    chercher(q);
    depense += travail(effort) - travail_;
    const Large borne = std::max(q.plafond, q.ouverts.empty() ? Large{-1} : q.ouverts.top().first);
    if (borne == INFINI) return std::nullopt;
    Majoration resultat{borne, {}, {}};
    rediger(q, 0, borne, resultat.preuve);
    return resultat;
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

void Majorants::retenir(const Question& q) {
    const Noeud& racine = q.noeuds[0];
    if (q.places.size() == 1 && racine.borne != INFINI && racine.fermeture.facteur > 0)
        invariants_.emplace_back(q.places[0], racine.fermeture);
}

void Majorants::chercher(Question& q) {
    q.noeuds.emplace_back();
    try {
        Noeud& racine = q.noeuds[0];
        auto programme = std::make_shared<Simplexe>(initial_);
        const Simplexe::Issue issue = programme->maximiser(q.forme);
        if (issue == Simplexe::Issue::OPTIMUM) {
            racine.borne = programme->optimum().plancher();
            racine.fermeture = clore(*programme, issue);
        }
        racine.programme = std::move(programme);
        racine.resolue = true;
        retenir(q);
        q.ouverts.emplace(racine.borne, 0);
        while (!q.ouverts.empty()) {
            const auto [borne, numero] = q.ouverts.top();
            if (borne <= q.minorant || borne < q.plafond || q.noeuds.size() >= q.limite ||
                (q.ouverts.size() + 1) * cases(net_) > CASES_EN_MEMOIRE || travail_ == 0)
                return;
            q.ouverts.pop();
            if (!resoudre(q, numero)) continue;
            if (!traiter(q, numero)) q.plafond = std::max(q.plafond, borne);
            q.noeuds[numero].programme.reset();
        }
    } catch (const Abandon&) {
        q.plafond = std::max(q.plafond, q.noeuds[0].borne);
    }
}

/// Refines an open case.
/// @return false when its solution contradicts nothing that is known here, so that it stays as it is
bool Majorants::traiter(Question& q, std::uint32_t numero) {
    const std::shared_ptr<const Simplexe> programme = q.noeuds[numero].programme;
    const Simplexe& s = *programme;
    const bool infinie = q.noeuds[numero].borne == INFINI;
    std::optional<Cas> cas = depart(q.noeuds[numero]);
    if (!cas && infinie) cas = contradiction(s, true);
    if (!cas && infinie) {
        pomper(s, q);
        if (q.tireur != nullptr && q.tireur->pompes().empty()) cas = tropTot(s, true);
    }
    if (!cas && !infinie) cas = approfondir(q, numero, s);
    if (!cas) return false;
    q.noeuds[numero].premier = static_cast<std::uint32_t>(q.noeuds.size());
    const Jeton* jeton = jeton_ ? &*jeton_ : nullptr;
    if (cas->genre == Cas::COUPE) {
        ouvrir(q, numero, {coupe(*cas, enVigueur(q, numero), net_.transitions.size())});
        ++q.noeuds.back().coupes;
    } else {
        for (std::vector<Contrainte>& contraintes : distinguer(net_, jeton, *cas))
            ouvrir(q, numero, std::move(contraintes));
    }
    // In the second case the token ends where the solution says.
    if (cas->genre == Cas::NIVEAU) q.noeuds.back().finie = true;
    if (!q.noeuds[numero].commencee && q.noeuds[numero].departs < departs_.size()) {
        ++q.noeuds[q.noeuds[numero].premier].departs;
        q.noeuds.back().commencee = true;
    }
    q.noeuds[numero].distinction = std::move(cas);
    return true;
}

/// Looks for a run in a case whose solution contradicts nothing.
/// @return the distinction to go on with when none reaches its bound; or nothing
std::optional<Cas> Majorants::approfondir(Question& q, std::uint32_t numero, const Simplexe& s) {
    const Noeud& noeud = q.noeuds[numero];
    const std::optional<Simplexe> moindre = moindresTirs(s, q);
    if (auto cas = contradiction(moindre ? *moindre : s, false)) return cas;
    if (!promenade_ && (!moindre || !realiser(*moindre, q))) realiser(s, q);
    if (noeud.borne <= q.minorant) return std::nullopt;
    if (const auto rond = moindre ? entier(*moindre) : std::nullopt) {
        if (auto cas = contradiction(*rond, false)) return cas;
        if (promenade_) realiser(*rond, q);
        if (noeud.borne <= q.minorant) return std::nullopt;
        if (auto cas = tropTot(*rond, false)) return cas;
        if (auto cas = horsDOrdre(*rond)) return cas;
        if (promenade_) realiser(*rond, q, true);
        if (noeud.borne <= q.minorant) return std::nullopt;
    }
    if (noeud.coupes < COUPES)
        if (auto cas = arrondi(s)) return cas;
    if (auto cas = fraction(s)) return cas;
    if (moindre)
        if (auto cas = fraction(*moindre)) return cas;
    if (noeud.finie) return std::nullopt;
    return finDuJeton(moindre ? *moindre : s);
}

/// Adds a case of `parent`, with its parent's bound until its turn comes.
void Majorants::ouvrir(Question& q, std::uint32_t parent, std::vector<Contrainte> contraintes) {
    const auto numero = static_cast<std::uint32_t>(q.noeuds.size());
    const Noeud& de = q.noeuds[parent];
    Noeud noeud;
    noeud.borne = de.borne;
    noeud.fermeture = de.fermeture;
    noeud.programme = de.programme;
    noeud.finie = de.finie;
    noeud.coupes = de.coupes;
    noeud.departs = de.departs;
    noeud.commencee = de.commencee;
    noeud.parent = parent;
    noeud.contraintes = std::move(contraintes);
    q.ouverts.emplace(noeud.borne, numero);
    q.noeuds.push_back(std::move(noeud));
}

/// Works out the bound of a case. One that cannot be worked out keeps its parent's.
/// @return whether it is still what the search should go on with
bool Majorants::resoudre(Question& q, std::uint32_t numero) {
    Noeud& noeud = q.noeuds[numero];
    if (noeud.resolue) return true;
    noeud.resolue = true;
    const Large avant = noeud.borne;
    try {
        auto programme = std::make_shared<Simplexe>(*noeud.programme);
        noeud.programme.reset();
        for (const Contrainte& c : noeud.contraintes) programme->contraindre(c.constante, c.forme);
        const Simplexe::Issue issue = avant == INFINI ? programme->maximiser(q.forme) : programme->reoptimiser();
        if (issue == Simplexe::Issue::OPTIMUM)
            noeud.borne = programme->optimum().plancher();
        else if (issue == Simplexe::Issue::IMPOSSIBLE)
            noeud.borne = -1;
        if (issue != Simplexe::Issue::INFINI) noeud.fermeture = clore(*programme, issue);
        if (issue == Simplexe::Issue::IMPOSSIBLE) return false;
        noeud.programme = std::move(programme);
        if (noeud.borne == avant) return true;
        q.ouverts.emplace(noeud.borne, numero);
    } catch (const Abandon&) {
        q.plafond = std::max(q.plafond, avant);
    }
    return false;
}

/// The constraints in force, in the order of their variables: of the places, then of the cases from the root down.
std::vector<const Contrainte*> Majorants::enVigueur(const Question& q, std::uint32_t numero) const {
    std::vector<std::uint32_t> lignee;
    for (; numero != 0; numero = q.noeuds[numero].parent) lignee.push_back(numero);
    std::vector<const Contrainte*> resultat;
    for (const Contrainte& c : etats_) resultat.push_back(&c);
    for (auto n = lignee.rbegin(); n != lignee.rend(); ++n)
        for (const Contrainte& c : q.noeuds[*n].contraintes) resultat.push_back(&c);
    return resultat;
}

/// There is no largest value: looks for a run that goes along the ray on which it grows, a few times, so that what can
/// be repeated shows.
void Majorants::pomper(const Simplexe& s, const Question& q) {
    if (q.tireur == nullptr) return;
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    const auto pousse =
        std::ranges::find_if(q.places, [&](std::uint32_t p) { return s.croissance(transitions + p).numerateur > 0; });
    if (pousse == q.places.end()) return;
    for (const Large fois : {4, 1}) {
        const auto comptes = leLongDuRayon(s, fois);
        if (!comptes) continue;
        Large but = net_.initial[*pousse];
        bool tient = true;
        for (const auto& [t, effet] : etats_[*pousse].forme) tient = tient && accumuler(but, effet, (*comptes)[t]);
        if (!tient) continue;
        courir(q, *comptes, *pousse, static_cast<Compte>(std::min<Large>(but, OMEGA - 1)), false);
        q.tireur->pomper();
        if (q.tireur->minorants()[*pousse] == OMEGA) return;
    }
    if (!promenade_) return;
    if (const auto tour = boucle(*pousse)) tourner(q, *tour);
}

/// The firings of the solution, and those that lead along the ray as far as integers go, `fois` times.
std::optional<std::vector<Compte>> Majorants::leLongDuRayon(const Simplexe& s, Large fois) const {
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    std::optional<Large> commun = 1;
    for (std::uint32_t t = 0; t < transitions && commun; ++t)
        commun = multipleCommun(*commun, s.croissance(t).denominateur);
    if (!commun) return std::nullopt;
    std::vector<Compte> comptes(transitions);
    for (std::uint32_t t = 0; t < transitions; ++t) {
        const auto tirs = entiere(s.croissance(t), *commun, fois);
        if (!tirs || s.valeur(t).plancher() >= OMEGA - *tirs) return std::nullopt;
        comptes[t] = static_cast<Compte>(s.valeur(t).plancher() + *tirs);
    }
    return comptes;
}

/// Counts as small as may be that a way of the token back to where it stands may have which adds to `place` and takes
/// nothing: a ray of the state equation whose firings are connected.
std::optional<std::vector<Compte>> Majorants::boucle(std::uint32_t place) const {
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    try {
        payer();
        Simplexe s(transitions, &travail_);
        for (const Contrainte& c : etats_) s.contraindre(0, c.forme);
        s.contraindre(-1, etats_[place].forme);
        Simplexe::Forme tirs;
        for (std::uint32_t t = 0; t < transitions; ++t) tirs.emplace_back(t, -1);
        auto issue = s.maximiser(tirs);
        for (std::size_t essai = 0; essai < LIAISONS && issue == Simplexe::Issue::OPTIMUM; ++essai) {
            std::vector<bool> tirees(transitions);
            for (std::uint32_t t = 0; t < transitions; ++t) tirees[t] = s.valeur(t).numerateur > 0;
            const auto composantes = jeton_->composantes(tirees);
            if (composantes.size() <= 1) return entiers(s);
            for (const std::vector<bool>& u : composantes) {
                Simplexe::Forme sorties;
                for (std::uint32_t t = 0; t < transitions; ++t)
                    if (u[jeton_->de(t)] && !u[jeton_->vers(t)]) sorties.emplace_back(t, 1);
                s.contraindre(-1, sorties);
            }
            issue = s.reoptimiser();
        }
    } catch (const Abandon&) {
    }
    return std::nullopt;
}

/// The solution of a program whose constraints hold for its multiples, too, as the smallest one in integers.
std::optional<std::vector<Compte>> Majorants::entiers(const Simplexe& s) const {
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    std::optional<Large> commun = 1;
    for (std::uint32_t t = 0; t < transitions && commun; ++t)
        commun = multipleCommun(*commun, s.valeur(t).denominateur);
    if (!commun) return std::nullopt;
    std::vector<Compte> comptes;
    for (std::uint32_t t = 0; t < transitions; ++t) {
        const auto tirs = entiere(s.valeur(t), *commun, 1);
        if (!tirs) return std::nullopt;
        comptes.push_back(*tirs);
    }
    return comptes;
}

/// Looks for a run to where the token can go once around with these counts and be back with no less: near the start, or
/// near the end of a pump that has gathered what it gives.
void Majorants::tourner(const Question& q, const std::vector<Compte>& tour) {
    std::vector<Course> debuts{{}};
    const std::vector<Tireur::Pompe>& pompes = q.tireur->pompes();
    for (auto p = pompes.rbegin(); p != pompes.rend() && debuts.size() <= RESERVES; ++p)
        debuts.push_back(repeter(q.tireur->tige(*p), q.tireur->cycle(*p)));
    const std::size_t avant = pompes.size();
    for (const Course& debut : debuts) {
        const std::uint64_t accorde = std::min(travail_, q.parCourse / debuts.size());
        std::uint64_t reste = accorde;
        try {
            if (auto course = promenade_->tourner(tour, debut, reste)) q.tireur->pomper(std::move(*course));
        } catch (const Debordement&) {
            // What a move fires does not fit; it says nothing about the others.
        }
        travail_ -= accorde - reste;
        if (pompes.size() > avant) return;
    }
}

/// The next way to begin: this one, or another one.
std::optional<Cas> Majorants::depart(const Noeud& noeud) const {
    if (noeud.commencee || noeud.departs == departs_.size()) return std::nullopt;
    Cas cas;
    cas.genre = Cas::SEUIL;
    cas.transition = departs_[noeud.departs];
    return cas;
}

/// What the solution fires that no run does: out of a place that is never marked, or too early.
std::optional<Cas> Majorants::contradiction(const Simplexe& s, bool infinie) const {
    std::vector<bool> tirees(net_.transitions.size());
    for (std::uint32_t t = 0; t < tirees.size(); ++t)
        tirees[t] = s.valeur(t).numerateur > 0 || (infinie && s.grandit(t));
    Cas entree;
    entree.genre = Cas::ENTREE;
    entree.places = jamaisEntre(tirees);
    if (!entree.places.empty()) return entree;
    if (infinie || !jeton_) return std::nullopt;
    return jamaisQuitte(s, tirees);
}

/// A set of places, as small as may be, that are empty at the start, that `tirees` need and do not enter.
std::vector<std::uint32_t> Majorants::jamaisEntre(const std::vector<bool>& tirees) const {
    std::vector<std::uint32_t> actives;
    for (std::uint32_t t = 0; t < tirees.size(); ++t)
        if (tirees[t]) actives.push_back(t);
    // What is put into the set by a transition that needs nothing of it leaves it.
    const auto reduire = [&](std::vector<bool>& q) {
        for (bool change = true; change;) {
            change = false;
            for (const std::uint32_t t : actives) {
                if (touche(net_.transitions[t].pre, q)) continue;
                for (const Poids& p : net_.transitions[t].post) {
                    change = change || q[p.place];
                    q[p.place] = false;
                }
            }
        }
        return std::ranges::any_of(actives, [&](std::uint32_t t) { return touche(net_.transitions[t].pre, q); });
    };
    std::vector<bool> q(net_.places.size());
    for (std::size_t p = 0; p < q.size(); ++p) q[p] = net_.initial[p] == 0;
    if (!reduire(q)) return {};
    for (std::size_t p = 0; p < q.size(); ++p) {
        if (!q[p]) continue;
        std::vector<bool> moins = q;
        moins[p] = false;
        if (reduire(moins)) q = std::move(moins);
    }
    std::vector<std::uint32_t> places;
    for (std::uint32_t p = 0; p < q.size(); ++p)
        if (q[p]) places.push_back(p);
    return places;
}

/// A set of the token's places that the solution does not leave, and places that are below zero when it enters it.
std::optional<Cas> Majorants::jamaisQuitte(const Simplexe& s, const std::vector<bool>& tirees) const {
    for (const std::vector<bool>& u : jeton_->derniers(tirees)) {
        Cas cas;
        cas.genre = Cas::DEPART;
        for (std::uint32_t p = 0; p < net_.places.size(); ++p) {
            const Contrainte c = entree(net_, *jeton_, u, p);
            if (negative(c, s)) cas.bornees.push_back(p);
        }
        if (cas.bornees.empty()) continue;
        for (std::uint32_t p = 0; p < u.size(); ++p)
            if (u[p]) cas.places.push_back(p);
        return cas;
    }
    return std::nullopt;
}

/// A count of the solution that is not an integer: of the control token first, which decides most, then of a
/// transition.
std::optional<Cas> Majorants::fraction(const Simplexe& s) const {
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    Cas cas;
    if (jeton_)
        for (const std::uint32_t p : jeton_->places())
            if (!s.valeur(transitions + p).entiere()) {
                cas.genre = Cas::NIVEAU;
                cas.places = {p};
                return cas;
            }
    std::optional<Large> moindre;
    for (std::uint32_t t = 0; t < transitions; ++t) {
        if (s.valeur(t).entiere()) continue;
        const Large k = s.valeur(t).plancher();
        if (k >= OMEGA || (moindre && *moindre <= k)) continue;
        moindre = k;
        cas.genre = Cas::SEUIL;
        cas.transition = t;
        cas.seuil = static_cast<Compte>(k);
    }
    return moindre ? std::optional(cas) : std::nullopt;
}

/// What the solution contradicts because firing counts are integers.
std::optional<Cas> Majorants::arrondi(const Simplexe& s) const {
    const auto coupe = s.coupe();
    if (!coupe) return std::nullopt;
    Cas cas;
    cas.genre = Cas::COUPE;
    cas.facteur = coupe->diviseur;
    const auto transitions = static_cast<Simplexe::Variable>(net_.transitions.size());
    for (const auto& [v, y] : coupe->multiplicateurs)
        if (v >= transitions) cas.multiplicateurs.emplace_back(v - transitions, y);
    std::ranges::sort(cas.multiplicateurs);
    return cas;
}

/// A transition that is fired when what it needs is not there, the first time or the last, in whatever order the
/// solution's firings are done. On a ray firings may be repeated for ever, and there is no last one.
std::optional<Cas> Majorants::tropTot(const Simplexe& s, bool infinie) const {
    std::vector<Compte> comptes(net_.transitions.size());
    for (std::uint32_t t = 0; t < comptes.size(); ++t) {
        const Large x = infinie && s.grandit(t) && s.croissance(t).numerateur > 0 ? OMEGA : s.valeur(t).plafond();
        if (x >= OMEGA && !infinie) return std::nullopt;
        comptes[t] = static_cast<Compte>(std::min<Large>(x, OMEGA));
    }
    for (const Cas::Genre genre : {Cas::PREMIER, Cas::DERNIER}) {
        if (infinie && genre == Cas::DERNIER) continue;
        for (std::uint32_t t = 0; t < comptes.size(); ++t)
            if (comptes[t] > 0)
                if (auto cas = instant(comptes, t, genre)) return cas;
    }
    return std::nullopt;
}

/// Whether `comptes` contradict that what t needs is there when it is fired for the first or the last time: a linear
/// program over the firings that may be done before, or come after; OMEGA is as many as one likes.
std::optional<Cas> Majorants::instant(const std::vector<Compte>& comptes, std::uint32_t t, Cas::Genre genre) const {
    const bool premier = genre == Cas::PREMIER;
    const auto transitions = static_cast<std::uint32_t>(comptes.size());
    payer();
    try {
        Simplexe s(transitions, &travail_);
        for (std::uint32_t p = 0; p < net_.places.size(); ++p) {
            Large constante = net_.initial[p] - Large{valeur(net_.transitions[t].pre, p)};
            Simplexe::Forme forme;
            for (const auto& [u, effet] : etats_[p].forme) {
                if (!premier && !accumuler(constante, effet, comptes[u] - (u == t ? 1 : 0))) return std::nullopt;
                if (u != t && comptes[u] > 0) forme.emplace_back(u, premier ? effet : -effet);
            }
            s.contraindre(constante, forme);
        }
        for (std::uint32_t u = 0; u < transitions; ++u)
            if (u != t && comptes[u] > 0 && comptes[u] != OMEGA) s.contraindre(comptes[u], {{u, -1}});
        if (s.maximiser({}) != Simplexe::Issue::IMPOSSIBLE) return std::nullopt;
        Cas cas;
        cas.genre = genre;
        cas.transition = t;
        for (const auto& [v, y] : s.multiplicateurs())
            if (v >= transitions && v < transitions + net_.places.size())
                cas.multiplicateurs.emplace_back(v - transitions, y);
        std::ranges::sort(cas.multiplicateurs);
        return cas;
    } catch (const Abandon&) {
        return std::nullopt;
    }
}

/// Two firings that the solution allows in neither order. What has served before is tried first.
std::optional<Cas> Majorants::horsDOrdre(const Simplexe& s) {
    std::vector<Compte> comptes(net_.transitions.size());
    for (std::uint32_t t = 0; t < comptes.size(); ++t) {
        if (s.valeur(t).plafond() >= OMEGA) return std::nullopt;
        comptes[t] = static_cast<Compte>(s.valeur(t).plafond());
    }
    const auto tiree = [&comptes](const Cas::Evenement& e) { return comptes[e.transition] > 0; };
    std::uint64_t travail = std::min(travail_, travailDesPaires_);
    const std::uint64_t accorde = travail;
    std::optional<Cas> cas;
    try {
        const Moments moments(net_, etats_, comptes, &travail);
        std::vector<Moments::Paire> paires = paires_;
        std::erase_if(paires, [&](const Moments::Paire& p) { return !tiree(p.first) || !tiree(p.second); });
        std::ranges::copy(moments.paires(), std::back_inserter(paires));
        for (auto p = paires.begin(); p != paires.end() && !cas; ++p)
            if ((cas = moments.contredire(*p))) {
                std::erase(paires_, *p);
                paires_.insert(paires_.begin(), *p);
            }
    } catch (const Abandon&) {
        // Too much to ask for these counts.
    }
    travail_ -= accorde - travail;
    return cas;
}

/// A solution in integers, near the given one and of few firings: thresholds are set, the one with fewer firings first.
std::optional<Simplexe> Majorants::entier(Simplexe s) const {
    const auto transitions = static_cast<Simplexe::Variable>(net_.transitions.size());
    std::vector<Simplexe> pile{std::move(s)};
    for (std::size_t essai = 0; essai < PLONGEE && !pile.empty(); ++essai) {
        Simplexe haut = std::move(pile.back());
        pile.pop_back();
        std::optional<Simplexe::Variable> t;
        for (Simplexe::Variable v = 0; v < transitions; ++v)
            if (!haut.valeur(v).entiere() && (!t || haut.valeur(v).plancher() < haut.valeur(*t).plancher())) t = v;
        if (!t) return haut;
        const Large k = haut.valeur(*t).plancher();
        payer();
        try {
            Simplexe bas = haut;
            bas.contraindre(k, {{*t, -1}});
            const bool enBas = bas.reoptimiser() == Simplexe::Issue::OPTIMUM;
            haut.contraindre(-k - 1, {{*t, 1}});
            const bool enHaut = haut.reoptimiser() == Simplexe::Issue::OPTIMUM;
            const bool basDAbord = enBas && enHaut && haut.optimum().plancher() < bas.optimum().plancher();
            if (enBas && !basDAbord) pile.push_back(bas);
            if (enHaut) pile.push_back(std::move(haut));
            if (basDAbord) pile.push_back(std::move(bas));
        } catch (const Abandon&) {
        }
    }
    return std::nullopt;
}

/// Where the control token ends: there, or elsewhere.
std::optional<Cas> Majorants::finDuJeton(const Simplexe& s) const {
    if (!jeton_) return std::nullopt;
    for (const std::uint32_t p : jeton_->places()) {
        if (s.valeur(static_cast<Simplexe::Variable>(net_.transitions.size()) + p).numerateur <= 0) continue;
        Cas cas;
        cas.genre = Cas::NIVEAU;
        cas.places = {p};
        return cas;
    }
    return std::nullopt;
}

/// A solution that is as good, to the integer, and fires the least; it fires nothing in circles.
std::optional<Simplexe> Majorants::moindresTirs(const Simplexe& s, const Question& q) const {
    if (q.tireur == nullptr) return std::nullopt;
    payer();
    try {
        Simplexe moindre = s;
        Simplexe::Forme tirs;
        for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) tirs.emplace_back(t, -1);
        moindre.contraindre(-s.optimum().plancher(), q.forme);
        moindre.maximiser(tirs);
        return moindre;
    } catch (const Abandon&) {
        return std::nullopt;
    }
}

/// Looks for a run with these counts that ends with `but` tokens in `place`.
void Majorants::courir(const Question& q, const std::vector<Compte>& comptes, std::uint32_t place, Compte but,
                       bool patient) {
    if (!promenade_) return q.tireur->realiser(comptes, place, but);
    const std::uint64_t accorde = std::min(travail_, q.parCourse);
    std::uint64_t reste = accorde;
    try {
        if (auto course = promenade_->chercher(comptes, place, q.tireur->minorants()[place], but, patient, reste))
            q.tireur->adopter(std::move(*course));
    } catch (const Depassement& e) {
        q.tireur->depasser(e);
    } catch (const Debordement&) {
        // What a move fires does not fit; it says nothing about the others.
    }
    travail_ -= accorde - reste;
}

/// Whether the places are all the control token's, so that they hold one at most.
bool Majorants::unSeulJeton(const std::vector<std::uint32_t>& places) const {
    return jeton_ && std::ranges::includes(jeton_->places(), places);
}

/// Looks for runs with the counts of a solution.
/// @return false when they are no integers and nothing was looked for
bool Majorants::realiser(const Simplexe& s, Question& q, bool patient) {
    const auto premiere = static_cast<Simplexe::Variable>(net_.transitions.size());
    const auto visee =
        std::ranges::find_if(q.places, [&](std::uint32_t p) { return s.valeur(premiere + p).numerateur > 0; });
    if (q.tireur == nullptr || visee == q.places.end() || (q.places.size() != 1 && !unSeulJeton(q.places))) return true;
    std::vector<Compte> comptes(net_.transitions.size());
    bool entiers = true;
    for (std::uint32_t t = 0; t < comptes.size(); ++t) {
        entiers = entiers && s.valeur(t).entiere();
        comptes[t] = static_cast<Compte>(std::min<Large>(s.valeur(t).plancher(), OMEGA - 1));
    }
    const auto but = static_cast<Compte>(std::min<Large>(s.valeur(premiere + *visee).plancher(), OMEGA));
    if (promenade_ && !entiers) return false;
    courir(q, comptes, *visee, but, patient);
    q.minorant = std::max<Large>(q.minorant, q.tireur->minorants()[*visee]);
    return true;
}

/// Writes down why the case is closed: the multipliers of the places and of the constraints in force. Those of the
/// transitions follow from them.
Cas Majorants::clore(const Simplexe& s, Simplexe::Issue issue) const {
    Cas cas;
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    cas.facteur = issue == Simplexe::Issue::OPTIMUM ? s.optimum().denominateur : 0;
    cas.total = s.optimum().numerateur;
    for (const auto& [v, y] : s.multiplicateurs())
        if (v >= transitions) cas.multiplicateurs.emplace_back(v - transitions, y);
    std::ranges::sort(cas.multiplicateurs);
    return cas;
}

/// Writes down the proof that a case holds no more than `borne`: its own, or else that of its cases.
void Majorants::rediger(const Question& q, std::uint32_t numero, Large borne, std::vector<Cas>& preuve) const {
    const Noeud& noeud = q.noeuds[numero];
    if (noeud.borne <= borne || !noeud.distinction) {
        preuve.push_back(noeud.fermeture);
        return;
    }
    preuve.push_back(*noeud.distinction);
    for (std::uint32_t i = 0; i < noeud.distinction->suites(); ++i) rediger(q, noeud.premier + i, borne, preuve);
}

}  // namespace Reseau
