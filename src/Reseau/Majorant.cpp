// Depth-first search over the cases. Variables of the program: the transitions, then one for each place (its marking),
// then one for each constraint of the cases in force.
#include "Reseau/Majorant.h"

#include <algorithm>

#include "Reseau/Tir.h"

namespace Reseau {

namespace {

constexpr std::uint64_t CASES_DENSES = 300'000;        // places times transitions
constexpr std::uint64_t TRAVAIL = 4'000'000;           // entries of the dictionary rewritten for one question
constexpr std::size_t NOEUDS = 32;                     // of one proof
constexpr std::uint64_t CASES_EN_MEMOIRE = 5'000'000;  // of the dictionaries of all cases in force

/// floor(a / b) for b > 0.
Large plancher(Large a, Large b) { return a / b - (a % b < 0 ? 1 : 0); }

std::uint64_t cases(const Net& net) { return (net.places.size() + 1) * (net.transitions.size() + 1); }

struct SansBorne {};

}  // namespace

struct Majorants::Question {
    const std::vector<std::uint32_t>& places;
    Simplexe::Forme forme;
    Large minorant;
    Tireur* tireur;
    Large borne;  // the largest of the closed cases
    std::vector<Cas> preuve;
    std::vector<Simplexe::Variable> contraintes;  // of the cases in force
    std::uint64_t profondeur;
    std::size_t noeuds;  // that the proof may have
};

namespace {

Simplexe programme(const Net& net, std::uint64_t* travail) {
    Simplexe s(static_cast<std::uint32_t>(net.transitions.size()), travail);
    std::vector<Simplexe::Forme> formes(net.places.size());
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t)
        for (const Poids& e : net.transitions[t].effet) formes[e.place].emplace_back(t, e.compte);
    for (std::size_t p = 0; p < formes.size(); ++p) s.contraindre(net.initial[p], formes[p]);
    return s;
}

}  // namespace

Majorants::Majorants(const Net& net) : net_(net), initial_(programme(net, &travail_)) {}

bool Majorants::possible(const Net& net) { return cases(net) <= CASES_DENSES; }

std::optional<Majoration> Majorants::majorer(const std::vector<std::uint32_t>& places, Large minorant, Tireur* tireur,
                                             unsigned effort, std::uint64_t& depense) {
    Question q{places, {}, minorant, tireur, -1, {}, {}, 0, NOEUDS << (2 * effort)};
    for (const std::uint32_t p : places)
        q.forme.emplace_back(static_cast<Simplexe::Variable>(net_.transitions.size()) + p, 1);
    travail_ = travail(effort);
    std::optional<Majoration> resultat = chercher(q);
    depense += travail(effort) - travail_;
    return resultat;
}

std::uint64_t Majorants::travail(unsigned effort) { return TRAVAIL << (2 * effort); }

/// Searches the cases. When that is given up, the linear bound without any case stands, if there is one.
std::optional<Majoration> Majorants::chercher(Question& q) {
    std::optional<Majoration> lineaire;
    try {
        Simplexe racine = initial_;
        if (racine.maximiser(q.forme) == Simplexe::Issue::OPTIMUM) {
            clore(racine, q, Simplexe::Issue::OPTIMUM);
            lineaire = {q.borne, std::move(q.preuve)};
            q.borne = -1;
            q.preuve.clear();
        }
        resoudre(racine, q);
        return Majoration{q.borne, std::move(q.preuve)};
    } catch (const SansBorne&) {
        return std::nullopt;
    } catch (const Abandon&) {
        return lineaire;
    }
}

void Majorants::resoudre(Simplexe& s, Question& q) {
    const Simplexe::Issue issue = s.maximiser(q.forme);
    if (issue == Simplexe::Issue::IMPOSSIBLE) return clore(s, q, issue);

    const Large d = s.denominateur();
    const bool infinie = issue == Simplexe::Issue::INFINI;
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    if (!infinie && plancher(s.optimum(), d) <= q.minorant) return clore(s, q, issue);
    if (q.preuve.size() >= q.noeuds || (q.profondeur + 1) * cases(net_) > CASES_EN_MEMOIRE) {
        if (infinie) throw SansBorne();
        return clore(s, q, issue);
    }

    std::vector<bool> tirees(transitions);
    for (std::uint32_t t = 0; t < transitions; ++t) tirees[t] = s.valeur(t) > 0 || (infinie && s.grandit(t));
    Cas entree;
    entree.places = jamaisMarquees(tirees);
    const std::vector<bool> dansQ = [&] {
        std::vector<bool> v(net_.places.size(), false);
        for (const std::uint32_t p : entree.places) v[p] = true;
        return v;
    }();
    for (std::uint32_t t = 0; t < transitions; ++t)
        if (tirees[t] && touche(net_.transitions[t].pre, dansQ)) {
            entree.genre = Cas::ENTREE;
            return distinguer(s, q, std::move(entree));
        }
    if (infinie) throw SansBorne();

    if (q.tireur != nullptr && q.places.size() == 1) {
        std::vector<Compte> comptes(transitions);
        for (std::uint32_t t = 0; t < transitions; ++t)
            comptes[t] = static_cast<Compte>(std::min<Large>(s.valeur(t) / d, OMEGA - 1));
        q.tireur->realiser(comptes, q.places[0],
                           static_cast<Compte>(std::min<Large>(plancher(s.optimum(), d), OMEGA - 1)));
        q.minorant = std::max<Large>(q.minorant, q.tireur->minorants()[q.places[0]]);
        if (plancher(s.optimum(), d) <= q.minorant) return clore(s, q, issue);
    }
    for (std::uint32_t t = 0; t < transitions; ++t)
        if (s.valeur(t) % d != 0) {
            Cas seuil;
            seuil.genre = Cas::SEUIL;
            seuil.transition = t;
            const Large k = s.valeur(t) / d;
            if (k >= OMEGA) throw Abandon();
            seuil.seuil = static_cast<Compte>(k);
            return distinguer(s, q, std::move(seuil));
        }
    clore(s, q, issue);
}

/// The places that stay empty when only `tirees` are fired, each as often as one likes.
std::vector<std::uint32_t> Majorants::jamaisMarquees(const std::vector<bool>& tirees) const {
    std::vector<bool> vides(net_.places.size());
    for (std::size_t p = 0; p < vides.size(); ++p) vides[p] = net_.initial[p] == 0;
    for (bool change = true; change;) {
        change = false;
        for (std::size_t t = 0; t < tirees.size(); ++t) {
            if (!tirees[t] || touche(net_.transitions[t].pre, vides)) continue;
            for (const Poids& p : net_.transitions[t].post) {
                change = change || vides[p.place];
                vides[p.place] = false;
            }
        }
    }
    std::vector<std::uint32_t> places;
    for (std::uint32_t p = 0; p < vides.size(); ++p)
        if (vides[p]) places.push_back(p);
    return places;
}

bool Majorants::touche(const Creux& cote, const std::vector<bool>& places) const {
    return std::ranges::any_of(cote, [&places](const Poids& p) { return places[p.place]; });
}

void Majorants::distinguer(const Simplexe& s, Question& q, Cas cas) {
    const std::size_t enVigueur = q.contraintes.size();
    q.preuve.push_back(cas);
    ++q.profondeur;
    Simplexe premier = s;
    Simplexe second = s;
    if (cas.genre == Cas::SEUIL) {
        q.contraintes.push_back(premier.contraindre(cas.seuil, {{cas.transition, -1}}));
        resoudre(premier, q);
        q.contraintes.resize(enVigueur);
        q.contraintes.push_back(second.contraindre(-static_cast<Large>(cas.seuil) - 1, {{cas.transition, 1}}));
    } else {
        std::vector<bool> dansQ(net_.places.size(), false);
        for (const std::uint32_t p : cas.places) dansQ[p] = true;
        Simplexe::Forme entrees;
        for (std::uint32_t t = 0; t < net_.transitions.size(); ++t) {
            if (touche(net_.transitions[t].pre, dansQ))
                q.contraintes.push_back(premier.contraindre(0, {{t, -1}}));
            else if (touche(net_.transitions[t].post, dansQ))
                entrees.emplace_back(t, 1);
        }
        resoudre(premier, q);
        q.contraintes.resize(enVigueur);
        q.contraintes.push_back(second.contraindre(-1, entrees));
    }
    resoudre(second, q);
    q.contraintes.resize(enVigueur);
    --q.profondeur;
}

/// Writes down why the case is closed: the multipliers of the places and of the constraints in force. Those of the
/// transitions follow from them.
void Majorants::clore(const Simplexe& s, Question& q, Simplexe::Issue issue) {
    Cas cas;
    const auto transitions = static_cast<std::uint32_t>(net_.transitions.size());
    const auto places = static_cast<std::uint32_t>(net_.places.size());
    const bool possible = issue == Simplexe::Issue::OPTIMUM;
    cas.facteur = possible ? s.denominateur() : 0;
    cas.total = s.optimum();
    for (const auto& [v, y] : s.multiplicateurs()) {
        if (v < transitions) continue;
        const auto contrainte =
            v < transitions + places
                ? v - transitions
                : places + static_cast<std::uint32_t>(std::ranges::find(q.contraintes, v) - q.contraintes.begin());
        cas.multiplicateurs.emplace_back(contrainte, y);
    }
    std::ranges::sort(cas.multiplicateurs);
    if (possible) q.borne = std::max(q.borne, plancher(s.optimum(), s.denominateur()));
    q.preuve.push_back(std::move(cas));
}

}  // namespace Reseau
