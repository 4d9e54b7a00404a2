#include "Reseau/Promenade.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <span>
#include <utility>

namespace Reseau {

namespace {

struct Essai {
    std::size_t largeur;
    Compte credit;
};
constexpr Essai RAPIDES[] = {{1, 0}, {8, 0}, {16, 2}};
constexpr Essai PATIENTS[] = {{64, 4}, {256, 6}};
constexpr std::uint64_t PART = 4;    // of what is left that one of them may cost
constexpr std::size_t LARGEUR = 4;   // of the beam for a round
constexpr std::size_t PASSAGES = 6;  // of a place of the token, from where a round is tried
constexpr std::size_t COUPS = 4000;  // in one run
constexpr std::size_t MEMOIRE = 60;  // firings, of what has just been gone
constexpr std::size_t TRACES = 6;    // of these that are tried
constexpr double PERDU = 8;          // digits, for a transition that cannot be reached any more

std::uint64_t empreinte(const std::vector<Compte>& v) {
    std::uint64_t h = 0;
    for (const Compte c : v) h = hacher(h, c);
    return h;
}

}  // namespace

Promenade::Promenade(const Net& net, const Jeton& jeton)
    : net_(net),
      jeton_(jeton),
      departs_(net.places.size()),
      besoin_(net.places.size(), 0),
      effet_(net.places.size(), 0),
      parTour_(net.transitions.size(), 0) {
    for (std::uint32_t t = 0; t < net.transitions.size(); ++t) departs_[jeton.de(t)].push_back(t);
}

std::optional<Course> Promenade::chercher(const std::vector<Compte>& comptes, std::uint32_t place, Compte plancher,
                                          Compte but, bool patient, std::uint64_t& travail) {
    preparer(travail);
    place_ = place;
    but_ = but;
    mieux_ = plancher;
    std::optional<Course> meilleure;
    pourChaqueFaisceau(patient, travail, [&](std::size_t largeur) {
        if (auto trouvee = balayer({net_.initial, comptes, jeton_.depart(), 0, 0}, largeur))
            meilleure = std::move(trouvee);
        return mieux_ < but;
    });
    return meilleure;
}

std::optional<Course> Promenade::rassembler(const std::vector<Compte>& comptes, const std::vector<bool>& etapes,
                                            const std::vector<Compte>& provisions, std::uint64_t& travail) {
    preparer(travail);
    place_.reset();
    etapes_ = etapes;
    provisions_ = provisions;
    moindre_ = std::numeric_limits<double>::infinity();
    std::optional<Course> meilleure;
    pourChaqueFaisceau(false, travail, [&](std::size_t largeur) {
        if (auto trouvee = balayer({net_.initial, comptes, jeton_.depart(), 0, 0}, largeur))
            meilleure = std::move(trouvee);
        return moindre_ > 0;
    });
    etapes_.clear();
    return meilleure;
}

/// Calls f(width) for beams of growing width, each with its part of what is left, while it returns true.
template <class F>
void Promenade::pourChaqueFaisceau(bool patient, std::uint64_t& travail, F&& f) {
    for (const auto& [largeur, credit] : patient ? std::span<const Essai>(PATIENTS) : std::span<const Essai>(RAPIDES)) {
        credit_ = credit;
        part_ = travail / PART;
        travail -= part_;
        travail_ = &part_;
        const bool encore = f(largeur);
        travail += part_;
        if (!encore) return;
    }
}

void Promenade::preparer(std::uint64_t& travail) {
    travail_ = &travail;
    std::ranges::fill(besoin_, 0);
    std::ranges::fill(effet_, 0);
    std::ranges::fill(parTour_, 0);
}

/// Tries the markings around the end of `avant`, nearest first, a few for each place of the token.
std::optional<Course> Promenade::tourner(const std::vector<Compte>& comptes, const Course& avant,
                                         std::uint64_t& travail) {
    preparer(travail);
    place_.reset();
    credit_ = 0;
    struct Etape {
        std::vector<Compte> marquage;
        std::uint32_t ici;
        Bloc chemin;
    };
    std::vector<std::size_t> passages(net_.places.size(), 0);
    std::vector<Compte> debut = net_.initial;
    for (const Bloc& bloc : avant) parcourir(net_, bloc, debut);
    const auto ici = std::ranges::find_if(jeton_.places(), [&debut](std::uint32_t p) { return debut[p] > 0; });
    std::vector<Etape> etapes{{std::move(debut), *ici, {{}, 1}}};
    for (std::size_t i = 0; i < etapes.size() && *travail_ > 0; ++i) {
        const Etape etape = etapes[i];
        const bool concernee =
            std::ranges::any_of(departs_[etape.ici], [&](std::uint32_t t) { return comptes[t] > 0; });
        if (concernee)
            if (auto tour = balayer({etape.marquage, comptes, etape.ici, 0, 0}, LARGEUR)) {
                if (!etape.chemin.elans.empty()) tour->insert(tour->begin(), etape.chemin);
                tour->insert(tour->begin(), avant.begin(), avant.end());
                return tour;
            }
        for (const std::uint32_t t : departs_[etape.ici]) {
            if (!tirable(t, etape.marquage) || passages[jeton_.vers(t)] >= PASSAGES) continue;
            ++passages[jeton_.vers(t)];
            Etape suivante{etape.marquage, jeton_.vers(t), etape.chemin};
            for (const Poids& e : net_.transitions[t].effet)
                suivante.marquage[e.place] = somme(suivante.marquage[e.place], e.compte);
            suivante.chemin.elans.push_back({t, 1});
            etapes.push_back(std::move(suivante));
        }
    }
    return std::nullopt;
}

std::optional<Course> Promenade::balayer(const Etat& depart, std::size_t largeur) {
    coups_.assign(1, {});
    vus_.clear();
    arrive_.reset();
    fini_ = false;
    std::vector<Etat> faisceau{depart};
    for (std::size_t tour = 0; tour < COUPS && !faisceau.empty() && *travail_ > 0; ++tour) {
        std::vector<Etat> suivants;
        for (const Etat& etat : faisceau) {
            avancer(etat, suivants);
            if (fini_) return course(*arrive_);
        }
        std::ranges::stable_sort(suivants, {}, &Etat::manque);
        if (suivants.size() > largeur) suivants.resize(largeur);
        faisceau = std::move(suivants);
    }
    return arrive_ ? std::optional(course(*arrive_)) : std::nullopt;
}

bool Promenade::tirable(std::uint32_t t, const std::vector<Compte>& m) const {
    return std::ranges::all_of(net_.transitions[t].pre, [&m](const Poids& p) { return m[p.place] >= p.compte; });
}

void Promenade::avancer(const Etat& etat, std::vector<Etat>& suivants) {
    for (const std::uint32_t t : departs_[etat.ici]) {
        if (etat.reste[t] <= -credit_ || !tirable(t, etat.marquage)) continue;
        if (jeton_.vers(t) != etat.ici) jouer(etat, {t}, true, suivants);
        if (etat.reste[t] <= 0) continue;
        if (const Suite court = retour(etat, t, false); !court.empty()) {
            jouer(etat, court, false, suivants);
            if (const Suite large = retour(etat, t, true); large != court) jouer(etat, large, false, suivants);
        }
    }
    for (const Suite& trace : traces(etat)) jouer(etat, trace, false, suivants);
}

/// The way back to where the token is that begins with `premiere`, through what is left to be fired; the shortest, or
/// when `large` the one that is left most often. Empty when there is none.
Promenade::Suite Promenade::retour(const Etat& etat, std::uint32_t premiere, bool large) const {
    struct Arc {
        Compte rang;
        std::uint32_t transition;
        bool operator<(const Arc& b) const { return rang != b.rang ? rang < b.rang : transition > b.transition; }
    };
    std::vector<std::uint32_t> par(net_.places.size(), Jeton::NULLE_PART);
    std::priority_queue<Arc> file;
    file.push({large ? etat.reste[premiere] : 0, premiere});
    while (!file.empty()) {
        const Arc arc = file.top();
        file.pop();
        const std::uint32_t p = jeton_.vers(arc.transition);
        if (par[p] != Jeton::NULLE_PART) continue;
        par[p] = arc.transition;
        if (p == etat.ici) break;
        for (const std::uint32_t t : departs_[p])
            if (etat.reste[t] > 0 && par[jeton_.vers(t)] == Jeton::NULLE_PART)
                file.push({large ? std::min(arc.rang, etat.reste[t]) : arc.rang - 1, t});
    }
    *travail_ -= std::min<std::uint64_t>(*travail_, par.size());
    if (par[etat.ici] == Jeton::NULLE_PART) return {};
    Suite suite;
    for (std::uint32_t p = etat.ici;;) {
        suite.push_back(par[p]);
        if (par[p] == premiere) break;
        p = jeton_.de(par[p]);
    }
    std::ranges::reverse(suite);
    return suite;
}

/// What has just been gone, since the token was last here, the time before, and so on.
std::vector<Promenade::Suite> Promenade::traces(const Etat& etat) const {
    std::vector<Suite> resultat;
    Suite envers;
    for (std::size_t c = etat.avant; c != 0 && resultat.size() < TRACES; c = coups_[c].avant) {
        const Bloc& bloc = coups_[c].bloc;
        if (bloc.fois > static_cast<Compte>((MEMOIRE - envers.size()) / bloc.elans.size())) break;
        for (Compte i = 0; i < bloc.fois; ++i)
            for (auto e = bloc.elans.rbegin(); e != bloc.elans.rend(); ++e) envers.push_back(e->transition);
        if (jeton_.de(envers.back()) == etat.ici && (c != etat.avant || bloc.fois == 1))
            resultat.emplace_back(envers.rbegin(), envers.rend());
    }
    return resultat;
}

/// How many times the sequence can be gone through in a row, within what is left to be fired.
Compte Promenade::repetitions(const Etat& etat, const Suite& suite, Compte credit) {
    for (auto t = suite.rbegin(); t != suite.rend(); ++t) {
        const Transition& tr = net_.transitions[*t];
        ++parTour_[*t];
        for (const Poids& e : tr.effet) {
            besoin_[e.place] = std::max<Compte>(0, somme(besoin_[e.place], -e.compte));
            effet_[e.place] = somme(effet_[e.place], e.compte);
        }
        for (const Poids& p : tr.pre) besoin_[p.place] = std::max(besoin_[p.place], p.compte);
    }
    Compte fois = OMEGA - 1;
    for (const std::uint32_t t : suite)
        fois = std::min(fois, (etat.reste[t] + credit) / std::max<Compte>(1, parTour_[t]));
    const auto limiter = [&](std::uint32_t p) {
        if (etat.marquage[p] < besoin_[p]) fois = 0;
        if (effet_[p] < 0) fois = std::min(fois, (etat.marquage[p] - besoin_[p]) / -effet_[p] + 1);
    };
    for (const std::uint32_t t : suite) {
        for (const Poids& e : net_.transitions[t].effet) limiter(e.place);
        for (const Poids& p : net_.transitions[t].pre) limiter(p.place);
    }
    for (const std::uint32_t t : suite) {
        parTour_[t] = 0;
        for (const Poids& e : net_.transitions[t].effet) effet_[e.place] = besoin_[e.place] = 0;
        for (const Poids& p : net_.transitions[t].pre) besoin_[p.place] = 0;
    }
    return fois;
}

/// Goes through a sequence as often as possible, and once less; or when it is `seule`, once.
void Promenade::jouer(const Etat& etat, const Suite& suite, bool seule, std::vector<Etat>& suivants) {
    const Compte plus = seule ? 1 : repetitions(etat, suite, 0);
    std::vector<Compte> choix{plus, plus - 1};
    if (!seule && plus > 0 && credit_ > 0 && repetitions(etat, suite, 1) > plus) choix.push_back(plus + 1);
    for (const Compte fois : choix) {
        if (fois < 1) continue;
        Etat suivant = etat;
        Bloc bloc{{}, fois};
        for (const std::uint32_t t : suite) {
            suivant.reste[t] -= fois;
            bloc.elans.push_back({t, 1});
        }
        parcourir(net_, bloc, suivant.marquage);
        *travail_ -= std::min<std::uint64_t>(*travail_, etat.reste.size() + etat.marquage.size());
        suivant.ici = jeton_.vers(suite.back());
        if (!vus_.insert(empreinte(suivant.reste)).second) continue;
        suivant.avant = coups_.size();
        coups_.push_back({etat.avant, std::move(bloc)});
        suivant.manque = manque(suivant);
        juger(suivant);
        suivants.push_back(std::move(suivant));
    }
}

/// Whether the state is what is looked for, or comes nearer to it than any before.
void Promenade::juger(const Etat& etat) {
    if (!etapes_.empty()) {
        const double ici = insuffisance(etat);
        if (ici >= moindre_) return;
        moindre_ = ici;
        arrive_ = etat.avant;
        fini_ = ici == 0;
    } else if (place_ && etat.marquage[*place_] > mieux_) {
        mieux_ = etat.marquage[*place_];
        arrive_ = etat.avant;
        fini_ = mieux_ >= but_;
    } else if (!place_ && etat.manque == 0) {
        arrive_ = etat.avant;
        fini_ = true;
    }
}

/// Digits of what is missing of the provisions, and more where the token is not on a way.
double Promenade::insuffisance(const Etat& etat) const {
    double total = etapes_[etat.ici] ? 0 : 1;
    for (std::size_t p = 0; p < provisions_.size(); ++p)
        if (etat.marquage[p] < provisions_[p])
            total += std::log2(1 + static_cast<double>(provisions_[p] - etat.marquage[p]));
    return total;
}

double Promenade::manque(const Etat& etat) const {
    std::vector<bool> vue(net_.places.size(), false);
    std::vector<std::uint32_t> pile{etat.ici};
    vue[etat.ici] = true;
    while (!pile.empty()) {
        const std::uint32_t p = pile.back();
        pile.pop_back();
        for (const std::uint32_t t : departs_[p]) {
            if (etat.reste[t] <= 0 || vue[jeton_.vers(t)]) continue;
            vue[jeton_.vers(t)] = true;
            pile.push_back(jeton_.vers(t));
        }
    }
    double total = 0;
    for (std::uint32_t t = 0; t < etat.reste.size(); ++t) {
        if (etat.reste[t] < 0) total -= static_cast<double>(etat.reste[t]);
        if (etat.reste[t] <= 0) continue;
        total += std::log2(1 + static_cast<double>(etat.reste[t]));
        if (!vue[jeton_.de(t)]) total += PERDU;
    }
    return total;
}

Course Promenade::course(std::size_t coup) const {
    Course envers;
    for (; coup != 0; coup = coups_[coup].avant) envers.push_back(coups_[coup].bloc);
    return {envers.rbegin(), envers.rend()};
}

}  // namespace Reseau
