#include "Reseau/Resolution.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include "Reseau/Conservation.h"
#include "Reseau/Prolongement.h"

namespace Reseau {

namespace {

constexpr std::uint64_t SANS_LIMITE = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t MINIMUM =
    100;                             // markings expanded in the first exploration, as far as the next ones depend on it
constexpr std::uint64_t PEU = 16;    // where one of so many waits, the exploration may be near its end,
constexpr std::uint64_t SURSIS = 8;  // and goes on to so many times its first length before anything else is asked
constexpr unsigned EFFORTS = 5;      // of the state equation,
constexpr unsigned EN_UNE = 2;       // beginning with so many more where one question is asked, not one for each place
constexpr unsigned TOURS = 8;        // of taking turns; no net is complete after so many markings that was not before
constexpr unsigned CROISSANCE = 3;   // powers of two by which a turn of the exploration is longer than the one before:
                                     // it may then cost about as much as the state equation's next one
constexpr std::uint64_t COMPOSANTES = 8'000'000;  // arcs followed in one turn
constexpr std::uint64_t COMPOSANTE = 40'000;      // and for one place on a visit
constexpr std::uint64_t VERDICT = 4000;    // for each place of the net before the state equation gives the verdict
constexpr std::size_t PROGRES = 8;         // of the places left, when visits settle one of so many they go on
constexpr std::uint64_t VISITES = 25'000;  // arcs looked at for each place in the first turn
constexpr std::size_t PROLONGEMENTS = 16;  // markings from which the way on is looked for in one turn
constexpr std::uint64_t QUESTIONS = 8;     // that may use up all their effort before the exploration has its turn
constexpr Large TOUT = static_cast<Large>(1) << 125;  // any finite bound is good enough

/// The bound of several places together, as one of `place` alone.
Majoration pour(std::uint32_t place, const std::vector<std::uint32_t>& places, const Majoration& ensemble) {
    Majoration seule = ensemble;
    for (Cas& cas : seule.preuve) {
        if (cas.genre != Cas::BORNE || cas.facteur == 0) continue;
        for (const std::uint32_t p : places) {
            if (p == place) continue;
            const auto ici = std::ranges::find(cas.multiplicateurs, p, [](const auto& m) { return m.first; });
            if (ici == cas.multiplicateurs.end())
                cas.multiplicateurs.emplace_back(p, cas.facteur);
            else
                ici->second += cas.facteur;
        }
        std::ranges::sort(cas.multiplicateurs);
    }
    return seule;
}

}  // namespace

void Resolution::essayer(const Options& options) {
    majorations.resize(net_.places.size());
    preuves_ = options.preuves;
    if (preuves_) couverture.garderLesChemins();
    fini_ = couverture.explorer(options.essai, options.verdictSeul);
}

void Resolution::finir(const Options& options) {
    if (fini_) return;
    if (!couverture.nonBornee() && conservatif(net_)) couverture.declarerIncomparables();
    const std::uint64_t premier = std::max(options.essai, MINIMUM);
    const bool presqueFinie = couverture.enAttente() * PEU <= couverture.explores();
    if (presqueFinie && couverture.explorer(premier * SURSIS, options.verdictSeul)) return;
    composantes_.emplace(net_);
    if (options.verdictSeul && !couverture.nonBornee() && majorerEnsembleParComposantes()) return;
    visites_.emplace(net_);
    if (Majorants::possible(net_)) majorants.emplace(net_);
    if (!options.verdictSeul) abondance.emplace(net_);
    for (unsigned tour = 0; tour < TOURS; ++tour) {
        majorerParComposantes();
        if (!options.verdictSeul && viser()) return;
        visiterTantQueCaAvance(tour, options.verdictSeul);
        if (options.verdictSeul ? !bornee() : viser()) return;
        if (!options.verdictSeul && majorerParAbondance(premier << tour)) return;
        const unsigned effort = options.verdictSeul ? tour + EN_UNE : tour;
        if (majorants && effort < EFFORTS) {
            if (options.verdictSeul ? majorerEnsemble(effort) : majorer(effort)) return;
            if (!options.verdictSeul && tour > 0 && majorerParPhases(effort + 1)) return;
            if (options.verdictSeul && !bornee()) return;
        }
        if (!options.verdictSeul && prolonger(premier << tour)) return;
        if (couverture.explorer(premier << (CROISSANCE * (tour + 1)), options.verdictSeul)) return;
    }
    couverture.explorer(SANS_LIMITE, options.verdictSeul);
}

/// @return whether all places together are bounded
bool Resolution::majorerEnsemble(unsigned effort) {
    std::vector<std::uint32_t> places(net_.places.size());
    std::iota(places.begin(), places.end(), 0U);
    std::uint64_t depense = 0;
    tireur.accorder(QUESTIONS * Majorants::travail(effort) / 2);
    ensemble = majorants->majorer(places, TOUT, &tireur, effort, depense);
    return ensemble.has_value();
}

/// Whether the place's bound is known.
bool Resolution::reglee(std::uint32_t place) const {
    return borne(place) == OMEGA || (majorations[place] && majorations[place]->borne == borne(place)) ||
           (abondance && abondance->majorants()[place] == borne(place));
}

/// Of all places, as far as they are known to be reached.
std::vector<Compte> Resolution::bornes() const {
    std::vector<Compte> resultat(net_.places.size());
    for (std::uint32_t p = 0; p < resultat.size(); ++p) resultat[p] = borne(p);
    return resultat;
}

std::size_t Resolution::restantes() const {
    std::size_t nombre = 0;
    for (std::uint32_t p = 0; p < net_.places.size(); ++p) nombre += reglee(p) ? 0 : 1;
    return nombre;
}

/// Visits; where the state equation cannot be asked, goes on while that settles many of the places that are left.
void Resolution::visiterTantQueCaAvance(unsigned tour, bool verdictSeul) {
    for (bool avance = true; avance;) {
        const std::size_t avant = restantes();
        visiter(tour);
        const std::size_t apres = restantes();
        if (verdictSeul || majorants || apres == 0) return;
        avance = apres * PROGRES < avant * (PROGRES - 1);
        if (plafonnee_) continue;
        plafonnee_ = plafonner();
        avance = avance || *plafonnee_;
    }
}

/// Tells the exploration what is still to be reached.
/// @return whether that is nothing any more
bool Resolution::viser() {
    std::vector<Compte> buts(net_.places.size(), OMEGA);
    for (std::uint32_t p = 0; p < net_.places.size(); ++p) {
        if (abondance) buts[p] = abondance->majorants()[p];
        if (reglee(p))
            buts[p] = 0;
        else if (majorations[p] && majorations[p]->borne < buts[p])
            buts[p] = static_cast<Compte>(majorations[p]->borne);
    }
    couverture.viser(std::move(buts));
    return couverture.explorer(0, false);
}

/// Settles places by sets whose tokens never become more; one serves all its places that have been seen with all of
/// them. The places that have not been seen marked come last: they are many, and few of them stand in an empty set.
void Resolution::majorerParComposantes() {
    std::vector<Compte> vus = bornes();
    std::uint64_t travail = COMPOSANTES;
    for (const bool vides : {false, true})
        for (std::uint32_t p = 0; p < vus.size(); ++p)
            if ((vus[p] == 0) == vides && !reglee(p)) chercherComposante(p, vus, travail);
}

/// Bounds places by any sets whose tokens never become more, where the state equation cannot be asked: then it is known
/// how many tokens are worth being brought there. One set of all places if there is one.
/// @return whether there are any
bool Resolution::plafonner() {
    std::vector<Compte> vus = bornes();
    bool trouvee = false;
    const auto retenir = [&](const std::optional<Creux>& composante) {
        if (!composante) return;
        regler(*composante);
        trouvee = true;
    };
    std::uint64_t travail = COMPOSANTES;
    retenir(composantes_->couvrir(vus, Composantes::LEGER, travail));
    if (trouvee) return true;
    travail = COMPOSANTES;
    for (std::uint32_t p = 0; p < vus.size(); ++p)
        if (!majorations[p] && !reglee(p)) retenir(composantes_->chercher(p, OMEGA - 1, vus, travail));
    return trouvee;
}

/// Settles places that stay small while others are taken for unbounded.
/// @return as `majorer`
bool Resolution::majorerParAbondance(std::uint64_t limite) {
    abondance->approfondir(limite);
    for (std::uint32_t p = 0; p < net_.places.size(); ++p) {
        if (reglee(p) || abondance->majorants()[p] == OMEGA) continue;
        const auto course = abondance->course(p);
        if (!course) continue;
        try {
            tireur.adopter(*course);
        } catch (const Depassement& e) {
            tireur.depasser(e);
        } catch (const Debordement&) {
            // What this run fires does not fit; it says nothing about the others.
        }
    }
    return viser();
}

/// Goes to the places that are not settled, and settles by a set what has been seen with all of its tokens.
void Resolution::visiter(unsigned tour) {
    std::vector<Compte> vus = bornes();
    std::uint64_t travail = COMPOSANTES;
    const auto but = [&](std::uint32_t p) {
        if (abondance && abondance->majorants()[p] == vus[p]) return vus[p];
        if (majorations[p]) return static_cast<Compte>(std::min<Large>(majorations[p]->borne, OMEGA));
        std::uint64_t part = std::min(travail, COMPOSANTE);
        travail -= part;
        const bool trouvee = vus[p] > net_.initial[p] && chercherComposante(p, vus, part);
        travail += part;
        return trouvee ? vus[p] : OMEGA;
    };
    visites_->aller(vus, but, tireur, (VISITES * net_.places.size()) << tour, plafonnee_.value_or(false));
}

/// Goes on from where most is unbounded; and then, for each part of what is left of the net without all that is known
/// to be unbounded, from where most is unbounded of the markings that are the same in that part.
/// @return as `majorer`
bool Resolution::prolonger(std::uint64_t limite) {
    if (!couverture.nonBornee()) return false;
    while (prolongerDe(couverture.plusLarge(), limite)) {
    }
    std::size_t essais = 0;
    for (const std::vector<std::uint32_t>& places : partiesSansOmegas(net_, couverture.maxima())) {
        if (essais == PROLONGEMENTS) break;
        if (std::ranges::all_of(places, [this](std::uint32_t p) { return majorations[p] || reglee(p); })) continue;
        for (const Creux& depart : couverture.plusLarges(places, PROLONGEMENTS - essais)) {
            ++essais;
            prolongerDe(depart, limite);
        }
    }
    return viser();
}

/// @return whether that shows more
bool Resolution::prolongerDe(const Creux& depart, std::uint64_t limite) {
    std::vector<Compte> vus(net_.places.size());
    for (std::uint32_t p = 0; p < vus.size(); ++p) vus[p] = reglee(p) ? OMEGA : borne(p);
    const Prolongements prolongements = Reseau::prolonger(net_, depart, vus, limite);
    prolonges_ += prolongements.explores;
    const std::vector<Compte> avant = couverture.maxima();
    for (const std::vector<std::uint32_t>& tirs : prolongements.chemins) couverture.suivre(depart, tirs);
    return couverture.maxima() != avant;
}

/// Looks for a set that settles a place.
bool Resolution::chercherComposante(std::uint32_t place, const std::vector<Compte>& vus, std::uint64_t& travail) {
    const auto composante = composantes_->chercher(place, vus[place], vus, travail);
    if (composante) regler(*composante);
    return composante.has_value();
}

/// Bounds the places of a set by all of its tokens, which settles those that have been seen with as many.
void Resolution::regler(const Creux& composante) {
    const Large jetons = poidsInitial(net_, composante);
    const auto preuve = preuves_ ? std::make_shared<const Creux>(composante) : nullptr;
    for (const Poids& p : composante) {
        std::optional<Majoration>& connue = majorations[p.place];
        if (!connue || connue->borne > jetons / p.compte) connue = Majoration{jetons / p.compte, {}, {}, preuve};
    }
}

/// Bounds all places together by a set of all, or else by several that cover them all, or by one of heavy tokens.
/// @return whether there are such sets
bool Resolution::majorerEnsembleParComposantes() {
    const std::vector<Compte>& vus = couverture.maxima();
    const std::uint64_t permis =
        Majorants::possible(net_) ? std::min(COMPOSANTES, VERDICT * net_.places.size()) : COMPOSANTES;
    std::uint64_t travail = permis;
    std::uint64_t part = permis / 2;
    std::vector<Creux> composantes;
    if (auto toutes = composantes_->couvrir(vus, Composantes::LEGER, part)) {
        composantes.push_back(std::move(*toutes));
    } else if (composantes = couvrirParPlusieurs(vus, travail); composantes.empty()) {
        part = permis / 2;
        toutes = composantes_->couvrir(vus, Composantes::PESANT, part);
        if (!toutes) return false;
        composantes.push_back(std::move(*toutes));
    }
    std::vector<Compte> poids(net_.places.size(), 0);
    Cas cas;
    cas.facteur = 1;
    for (const Creux& composante : composantes) {
        cas.total += poidsInitial(net_, composante);
        for (const Poids& q : composante) poids[q.place] += q.compte;
    }
    for (std::uint32_t p = 0; p < poids.size(); ++p)
        if (poids[p] > 1) cas.multiplicateurs.emplace_back(p, poids[p] - 1);
    ensemble = Majoration{cas.total, {}, {}};
    ensemble->preuve.push_back(std::move(cas));
    return true;
}

/// @return sets that cover all places, or none when a place has none
std::vector<Creux> Resolution::couvrirParPlusieurs(const std::vector<Compte>& vus, std::uint64_t& travail) {
    std::vector<Creux> composantes;
    std::vector<bool> couverte(vus.size(), false);
    for (std::uint32_t p = 0; p < vus.size(); ++p) {
        if (couverte[p]) continue;
        auto composante = composantes_->chercher(p, std::max<Compte>(vus[p], 1), vus, travail);  // the fewest choices
        if (!composante) composante = composantes_->chercher(p, OMEGA - 1, vus, travail);
        if (!composante) return {};
        for (const Poids& q : *composante) couverte[q.place] = true;
        composantes.push_back(std::move(*composante));
    }
    return composantes;
}

/// The places of the control token that it has not been seen in: while there is a run to any of them, it is looked for;
/// when there is none, one proof serves all.
void Resolution::majorerJeton(unsigned effort, std::uint64_t& depense) {
    while (majorants->jeton()) {
        std::vector<std::uint32_t> vides;
        for (const std::uint32_t p : majorants->jeton()->places())
            if (!reglee(p) && borne(p) == 0) vides.push_back(p);
        if (vides.size() < 2 || depense > QUESTIONS * Majorants::travail(effort)) return;
        const auto ensembleVide = majorants->majorer(vides, 0, &tireur, effort, depense);
        if (ensembleVide && ensembleVide->borne <= 0) {
            for (const std::uint32_t p : vides) majorations[p] = pour(p, vides, *ensembleVide);
            return;
        }
        if (std::ranges::all_of(vides, [this](std::uint32_t p) { return borne(p) == 0; })) return;
    }
}

/// The places of which no bound is known, where there is a control token: while a way around raises some of them, it is
/// looked for.
void Resolution::majorerEnsembleDesOuvertes(unsigned effort) {
    std::uint64_t depense = 0;
    while (majorants->jeton() && depense <= QUESTIONS * Majorants::travail(effort)) {
        std::vector<std::uint32_t> ouvertes;
        for (std::uint32_t p = 0; p < net_.places.size(); ++p)
            if (!majorations[p] && !reglee(p)) ouvertes.push_back(p);
        if (ouvertes.size() < 2) return;
        const auto ensembleOuvert = majorants->majorer(ouvertes, TOUT, &tireur, effort, depense);
        if (ensembleOuvert) {
            for (const std::uint32_t p : ouvertes) majorations[p] = pour(p, ouvertes, *ensembleOuvert);
            return;
        }
        if (std::ranges::all_of(ouvertes, [this](std::uint32_t p) { return borne(p) != OMEGA; })) return;
    }
}

/// All places, those that were asked least first, so that each has its turn.
std::vector<std::uint32_t> Resolution::parQuestions() const {
    std::vector<std::uint32_t> ordre(net_.places.size());
    std::iota(ordre.begin(), ordre.end(), 0U);
    std::ranges::stable_sort(ordre, {}, [this](std::uint32_t p) { return questions_[p]; });
    return ordre;
}

/// Bounds the places that are not settled yet.
/// @return whether every place is settled now; what is not is left to the exploration
bool Resolution::majorer(unsigned effort) {
    std::uint64_t depense = 0;
    tireur.accorder(QUESTIONS * Majorants::travail(effort) / 2);
    majorerJeton(effort, depense);
    questions_.resize(net_.places.size(), 0);
    for (const std::uint32_t p : parQuestions()) {
        if (reglee(p)) continue;
        if (depense > QUESTIONS * Majorants::travail(effort)) break;
        ++questions_[p];
        garder(p, majorants->majorer({p}, borne(p), &tireur, effort, depense));
    }
    majorerEnsembleDesOuvertes(std::min(effort + EN_UNE, EFFORTS - 1));
    return viser();
}

/// Bounds the places that are not settled yet by the net in two phases, all in turn while they may cost something.
/// @return as `majorer`
bool Resolution::majorerParPhases(unsigned effort) {
    if (!majorants->jeton()) return false;
    if (!phases_) phases_.emplace(net_, *majorants->jeton());
    if (!phases_->possible()) return false;
    std::uint64_t depense = 0;
    for (bool reste = true; reste;) {
        reste = false;
        for (const std::uint32_t p : parQuestions()) {
            if (reglee(p)) continue;
            if (depense > QUESTIONS * Majorants::travail(effort)) return viser();
            garder(p, phases_->majorer(p, borne(p), tireur, effort, depense));
            reste = true;
        }
    }
    return viser();
}

/// Keeps an upper bound that is less than the one known.
/// @throws Debordement when the place is bounded, but by more than fits
void Resolution::garder(std::uint32_t place, std::optional<Majoration> neuve) {
    std::optional<Majoration>& connue = majorations[place];
    if (neuve && (!connue || neuve->borne < connue->borne)) connue = std::move(neuve);
    if (connue && tireur.depasse(place)) throw Debordement();
}

bool Resolution::parEnsemble(std::uint32_t place) const {
    if (couverture.complete()) return true;
    return borne(place) != OMEGA && abondance && abondance->majorants()[place] == borne(place) &&
           !(majorations[place] && majorations[place]->borne == borne(place));
}

Compte Resolution::borne(std::uint32_t place) const {
    return std::max(couverture.maxima()[place], tireur.minorants()[place]);
}

bool Resolution::parCourse(std::uint32_t place) const { return tireur.minorants()[place] > couverture.maxima()[place]; }

Creux Resolution::temoin(std::uint32_t place) const {
    if (!parCourse(place)) return couverture.temoin(place);
    Creux m = tireur.arrivee(tireur.course(place));
    if (borne(place) != OMEGA) return m;
    const std::vector<std::uint32_t>& monte = tireur.pompes()[tireur.pompe(place)].monte;
    for (Poids& v : m)
        if (std::ranges::binary_search(monte, v.place)) v.compte = OMEGA;
    return m;
}

}  // namespace Reseau
