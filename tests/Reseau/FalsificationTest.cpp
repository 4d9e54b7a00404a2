// The checker of the proofs is no rubber stamp: real proofs, of all families and of random nets, are falsified line by
// line, and the checker must notice. Which falsified proofs prove nothing any more is known in three ways:
//
//   - what is claimed is false: then it must be rejected whatever stands below;
//   - the line is of a kind in which the change leaves a gap for certain (the reason stands with each);
//   - anything may have been changed, and what is accepted claims nothing but what is true.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Outils.h"
#include "Rapport.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"
#include "reseau_familles.h"

namespace {

using essai::Hasard;
using essai::tirer;
using Reseau::Large;
using Mots = std::vector<std::string>;
using Lignes = std::vector<Mots>;

#ifdef __SANITIZE_ADDRESS__
constexpr int TOURS = 1;
#else
constexpr int TOURS = 2;
#endif
constexpr std::size_t PLUS_LONG = 20'000;  // bytes of a report
constexpr std::size_t PLUS_GRAND = 300;    // places of a net; the reports of larger ones are too long as a rule

/// A net, its report with the proof in words, and what is true.
struct Epreuve {
    std::string texte;
    Reseau::Net net;
    bool verdictSeul;
    bool bornee;
    Lignes lignes;
    std::map<std::string, long long> comptes;

    const Reseau::Transition* transition(const std::string& nom) const {
        const auto t = std::ranges::find(net.transitions, nom, &Reseau::Transition::nom);
        return t == net.transitions.end() ? nullptr : &*t;
    }
    std::uint32_t place(const std::string& nom) const {
        return static_cast<std::uint32_t>(std::ranges::find(net.places, nom) - net.places.begin());
    }
};

std::string assembler(const Lignes& lignes) {
    std::string texte;
    for (const Mots& mots : lignes) {
        for (std::size_t i = 0; i < mots.size(); ++i) texte += (i == 0 ? "" : " ") + mots[i];
        texte += '\n';
    }
    return texte;
}

Lignes decouper(const std::string& texte) {
    Lignes lignes;
    std::istringstream in(texte);
    for (std::string ligne; std::getline(in, ligne);) {
        std::istringstream mots(ligne);
        lignes.emplace_back();
        for (std::string mot; mots >> mot;) lignes.back().push_back(mot);
    }
    return lignes;
}

class Falsifications : public testing::Test {
protected:
    static void SetUpTestSuite() {
        Hasard h(11);
        for (const familles::Famille& f : familles::toutes()) {
            ajouter(f.net(f.parametres[0]));
            if (!f.nom.starts_with("model") || f.nom == "model 5/2") ajouter(f.net(f.parametres[1]));
        }
        for (const familles::Serie& serie : familles::series()) {
            for (int i = 0; i < 6 && serie.noeuds == 3; ++i) ajouter(serie.net(i));
            if (serie.noeuds == 12 && serie.genre == familles::Genre::ETAGE)  // with all kinds of cases
                for (const int i : {1, 6, 8}) ajouter(serie.net(i));
            if (serie.noeuds == 5 && serie.genre == familles::Genre::LIBRE) ajouter(serie.net(4));  // with an order
        }
        ajouter(
            Reseau::lire("tr i q0 -> q1 m*1000000000\ntr a q1 m*4 -> q2 c\ntr b q2 -> q1 m*3\npl q0 (1)\n", "essai"));
        for (int i = 0; i < 60; ++i) {
            ajouter(
                Reseau::lire((i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h)).texte(), "essai"));
        }
    }
    static void TearDownTestSuite() { epreuves().clear(); }

    static std::vector<Epreuve>& epreuves() {
        static std::vector<Epreuve> toutes;
        return toutes;
    }

    static void ajouter(const Reseau::Net& net) {
        if (net.places.size() > PLUS_GRAND) return;
        for (const std::uint64_t essai : {0U, 1000U})
            for (const bool verdictSeul : {false, true}) {
                const Reseau::Rapport r =
                    Reseau::analyser(net, {.verdictSeul = verdictSeul, .preuves = true, .essai = essai});
                std::ostringstream texte;
                familles::ecrire(texte, net);
                const std::string rapport = Reseau::ecrire(net, r);
                if (rapport.size() > PLUS_LONG) continue;
                epreuves().push_back(
                    {texte.str(), net, verdictSeul, r.bornee, decouper(rapport), essai::comptesDuRapport(rapport)});
                ASSERT_EQ(verdict(epreuves().back(), epreuves().back().lignes), "");
            }
    }

    static std::string verdict(const Epreuve& e, const Lignes& lignes) {
        return essai::verifier(e.texte, assembler(lignes), e.verdictSeul);
    }

    static void rejete(const Epreuve& e, const Lignes& fausses) {
        ASSERT_NE(verdict(e, fausses), "") << e.texte << assembler(e.lignes) << "falsified:\n" << assembler(fausses);
    }
};

bool parSousInvariant(const Mots& ligne) { return ligne.size() > 3 && ligne[3] == "subinvariant"; }
bool marquage(const Mots& ligne) { return ligne.size() > 1 && ligne[1] == ":"; }

/// The numbers of the lines that begin with `mot`.
std::vector<std::size_t> lignesDe(const Lignes& lignes, const std::string& mot) {
    std::vector<std::size_t> numeros;
    for (std::size_t i = 0; i < lignes.size(); ++i)
        if (!lignes[i].empty() && lignes[i][0] == mot) numeros.push_back(i);
    return numeros;
}

template <class T>
const T& unDe(const std::vector<T>& v, Hasard& h) {
    return v[static_cast<std::size_t>(tirer(h, static_cast<int>(v.size())))];
}

std::string decimal(Large n) { return std::to_string(static_cast<long long>(n)); }

/// Changes one thing anywhere in the proof: a line or a word comes twice, goes, changes places; a digit changes.
void brouiller(Lignes& lignes, Hasard& h) {
    if (lignes.size() < 2) return;
    const auto autre = [&] { return 1 + static_cast<std::size_t>(tirer(h, static_cast<int>(lignes.size()) - 1)); };
    const std::size_t i = autre();
    Mots& mots = lignes[i];
    if (mots.empty() || marquage(mots)) return;
    const auto mot = static_cast<std::ptrdiff_t>(tirer(h, static_cast<int>(mots.size())));
    switch (tirer(h, 8)) {
        case 0:
            lignes.erase(lignes.begin() + static_cast<std::ptrdiff_t>(i));
            break;
        case 1:
            lignes.insert(lignes.begin() + static_cast<std::ptrdiff_t>(i), Mots(lignes[i]));
            break;
        case 2:
            std::swap(mots, lignes[autre()]);
            break;
        case 3:
            mots.erase(mots.begin() + mot);
            break;
        case 4:
            mots.insert(mots.begin() + mot, std::string(mots[static_cast<std::size_t>(mot)]));
            break;
        case 5:
            std::swap(mots[static_cast<std::size_t>(mot)], unDe(std::vector<Mots*>{&mots}, h)->back());
            break;
        default: {
            std::string& m = mots[static_cast<std::size_t>(mot)];
            const std::size_t chiffre = m.find_last_of("0123456789");
            if (chiffre != std::string::npos) m[chiffre] = static_cast<char>('0' + tirer(h, 10));
        }
    }
}

TEST_F(Falsifications, AFalseVerdictIsRejectedWhateverStandsBelow) {
    Hasard h(12);
    for (int tour = 0; tour < 4 * TOURS; ++tour)
        for (const Epreuve& e : epreuves()) {
            Lignes fausses = e.lignes;
            fausses[0] = e.bornee ? Mots{"the", "net", "is", "not", "bounded"} : Mots{"the", "net", "is", "bounded"};
            for (int n = tirer(h, 4); n > 0; --n) brouiller(fausses, h);
            rejete(e, fausses);
            if (HasFatalFailure()) return;
        }
}

/// A place's bound is raised or lowered wherever it stands: marking lines, "bound", "most", and the total of a lone
/// "close".
Lignes mentir(const Epreuve& e, const std::string& place, const std::string& vrai, const std::string& faux) {
    Lignes fausses = e.lignes;
    bool montree = false;
    for (Mots& mots : fausses) {
        if (!marquage(mots)) continue;
        for (std::string& mot : mots) {
            const bool ici = mot == place + "*" + vrai || (vrai == "1" && mot == place);
            if (ici) mot = place + "*" + faux;
            montree = montree || ici;
        }
    }
    if (!montree) fausses.insert(fausses.begin() + 1, {"0", ":", place + "*" + faux});
    for (std::size_t i = 0; i < fausses.size(); ++i) {
        if (fausses[i].size() < 3 || fausses[i][0] != "bound" || fausses[i][1] != place) continue;
        fausses[i][2] = faux;
        if (i + 1 < fausses.size() && parSousInvariant(fausses[i + 1])) fausses[i + 1][1] = faux;
        if (i + 2 >= fausses.size() || fausses[i + 1][0] != "most" || fausses[i + 1].back() != "cases") continue;
        fausses[i + 1][1] = faux;
        Mots& feuille = fausses[i + 2];
        if (feuille[0] == "close" && faux != "w")
            feuille[2] = decimal(static_cast<Large>(std::stoll(feuille[1])) * std::stoll(faux));
    }
    return fausses;
}

/// The falsifications of which there are too many for one short test under the sanitizers, in parts.
constexpr int TRANCHES = 2;
class EnTranches : public Falsifications, public testing::WithParamInterface<int> {};

TEST_P(EnTranches, AFalseBoundIsRejectedWhateverStandsBelow) {
    Hasard h(13 + static_cast<unsigned>(GetParam()));
    int numero = 0;
    for (int tour = 0; tour < TOURS; ++tour)
        for (const Epreuve& e : epreuves())
            for (const std::string& place : e.net.places) {
                if (e.verdictSeul) break;
                if (numero++ % TRANCHES != GetParam()) continue;
                const long long compte = e.comptes.contains(place) ? e.comptes.at(place) : 0;
                const std::string vrai = compte < 0 ? "w" : std::to_string(compte);
                const Mots faux = compte < 0   ? Mots{"1", "1000000"}
                                  : compte > 0 ? Mots{"w", std::to_string(compte + 1), std::to_string(compte - 1)}
                                               : Mots{"w", "1"};
                Lignes fausses = mentir(e, place, vrai, unDe(faux, h));
                for (int n = tirer(h, 3); n > 0; --n) brouiller(fausses, h);
                if (essai::comptesDuRapport(assembler(fausses)) == e.comptes) continue;
                rejete(e, fausses);
                if (HasFatalFailure()) return;
            }
}

TEST_F(Falsifications, WhateverIsChangedWhatIsAcceptedIsTrue) {
    Hasard h(14);
    int rejetees = 0;
    int toutes = 0;
    for (int tour = 0; tour < 8 * TOURS; ++tour)
        for (const Epreuve& e : epreuves()) {
            Lignes fausses = e.lignes;
            brouiller(fausses, h);
            if (fausses == e.lignes) continue;
            ++toutes;
            if (!verdict(e, fausses).empty()) {
                ++rejetees;
                continue;
            }
            ASSERT_EQ(fausses[0], e.lignes[0]);
            ASSERT_EQ(essai::comptesDuRapport(assembler(fausses)), e.comptes) << assembler(fausses);
        }
    EXPECT_GT(toutes, 500 * TOURS);
    EXPECT_GT(rejetees, toutes / 2);
}

/// How often a run fires each transition; nothing when it uses accelerations or is not well-formed.
using Tirs = std::map<std::string, Large>;
std::optional<Tirs> tirs(const Mots& course) {
    Tirs resultat;
    Tirs bloc;
    bool dansBloc = false;
    try {
        for (std::string mot : course) {
            if (mot[0] == '*') return std::nullopt;
            if (mot[0] == '(') {
                if (dansBloc) return std::nullopt;
                dansBloc = true;
                mot = mot.substr(1);
            }
            if (!dansBloc) {
                ++resultat[mot];
                continue;
            }
            const std::size_t fin = mot.find(')');
            const std::string elan = mot.substr(0, fin);
            const std::size_t etoile = elan.rfind('*');
            if (etoile == std::string::npos) return std::nullopt;
            bloc[elan.substr(0, etoile)] += std::stoll(elan.substr(etoile + 1));
            if (fin == std::string::npos) continue;
            for (const auto& [t, n] : bloc) resultat[t] += n * std::stoll(mot.substr(fin + 2));
            bloc.clear();
            dansBloc = false;
        }
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
    if (dansBloc) return std::nullopt;
    return resultat;
}

/// What a run adds to each place in all; nothing when it names no transition.
std::optional<std::vector<Large>> effet(const Epreuve& e, const Mots& course) {
    const auto fois = tirs(course);
    if (!fois) return std::nullopt;
    std::vector<Large> somme(e.net.places.size(), 0);
    for (const auto& [nom, n] : *fois) {
        const Reseau::Transition* t = e.transition(nom);
        if (t == nullptr) return std::nullopt;
        for (const Reseau::Poids& p : t->effet) somme[p.place] += n * p.compte;
    }
    return somme;
}

/// One step goes, comes twice, becomes another transition, or is fired once more or less often; or the end goes.
Mots changerCourse(const Epreuve& e, Mots course, Hasard& h) {
    if (course.empty()) return e.net.transitions.empty() ? course : Mots{unDe(e.net.transitions, h).nom};
    const auto i = static_cast<std::size_t>(tirer(h, static_cast<int>(course.size())));
    const auto ici = course.begin() + static_cast<std::ptrdiff_t>(i);
    std::string& mot = course[i];
    switch (tirer(h, 5)) {
        case 0:
            course.erase(ici);
            break;
        case 1:
            course.insert(ici, std::string(mot));
            break;
        case 2:
            course.erase(ici, course.end());
            break;
        case 3:
            if (mot[0] != '(' && mot[0] != '*' && mot.find(')') == std::string::npos)
                mot = unDe(e.net.transitions, h).nom;
            break;
        default: {
            const std::size_t etoile = mot.rfind('*');
            if (etoile == std::string::npos || etoile == 0) break;
            const long long fois = std::stoll(mot.substr(etoile + 1));
            mot = mot.substr(0, etoile + 1) + std::to_string(fois > 1 && tirer(h, 2) == 0 ? fois - 1 : fois + 1);
        }
    }
    return course;
}

Mots apres(const Mots& mots, std::size_t debut) {
    return {mots.begin() + static_cast<std::ptrdiff_t>(debut), mots.end()};
}

/// Falsifies one line of a kind so that there is a gap for certain. Nothing when there is no such line.
using Faussaire = std::function<std::optional<Lignes>(const Epreuve&, Hasard&)>;

std::optional<Lignes> sansMot(const Epreuve& e, const std::string& genre, Hasard& h) {
    Lignes fausses = e.lignes;
    std::vector<std::size_t> numeros = lignesDe(fausses, genre);
    std::erase_if(numeros, [&](std::size_t i) { return fausses[i].size() < 2; });
    if (numeros.empty()) return std::nullopt;
    Mots& mots = fausses[unDe(numeros, h)];
    mots.erase(mots.begin() + 1 + tirer(h, static_cast<int>(mots.size()) - 1));
    return fausses;
}

std::optional<Lignes> sansLigne(const Epreuve& e, const std::string& genre, Hasard& h) {
    Lignes fausses = e.lignes;
    const std::vector<std::size_t> numeros = lignesDe(fausses, genre);
    if (numeros.empty()) return std::nullopt;
    fausses.erase(fausses.begin() + static_cast<std::ptrdiff_t>(unDe(numeros, h)));
    return fausses;
}

/// A count of a member of the set is lowered: the reachable marking, or limit of some, that it stands for is covered by
/// no other member, since the set is minimal.
std::optional<Lignes> ensembleMoindre(const Epreuve& e, Hasard& h) {
    Lignes fausses = e.lignes;
    std::vector<std::size_t> numeros = lignesDe(fausses, "set");
    std::erase_if(numeros, [&](std::size_t i) { return fausses[i].size() < 2; });
    if (numeros.empty()) return std::nullopt;
    Mots& mots = fausses[unDe(numeros, h)];
    std::string& mot = mots[1 + static_cast<std::size_t>(tirer(h, static_cast<int>(mots.size()) - 1))];
    const std::size_t etoile = mot.rfind('*');
    const std::string n = mot.substr(etoile + 1);
    mot = mot.substr(0, etoile + 1) + (n == "w" ? "1000" : std::to_string(std::stoll(n) - 1));
    return fausses;
}

/// A member of the set goes, and another one of the same part stays.
std::optional<Lignes> ensembleIncomplet(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "set");
    std::erase_if(numeros, [&](std::size_t i) {
        const auto membre = [&](std::size_t j) { return j < e.lignes.size() && e.lignes[j][0] == "set"; };
        return !membre(i - 1) && !membre(i + 1);
    });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    fausses.erase(fausses.begin() + static_cast<std::ptrdiff_t>(unDe(numeros, h)));
    return fausses;
}

/// A set that is closed without a bound's last token would show a smaller bound.
std::optional<Lignes> relacheMoindre(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "most");
    std::erase_if(numeros, [&](std::size_t i) { return e.lignes[i].back() != "relaxed" || e.lignes[i - 1][2] == "0"; });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    const Mots& borne = fausses[unDe(numeros, h) - 1];
    const std::string avant = borne[1] + "*" + borne[2];
    const std::string apres = borne[1] + "*" + std::to_string(std::stoll(borne[2]) - 1);
    for (const std::size_t i : lignesDe(fausses, "relaxed")) std::ranges::replace(fausses[i], avant, apres);
    return fausses;
}

/// A transition that a run fires is called dead.
std::optional<Lignes> vivanteEnterree(const Epreuve& e, Hasard& h) {
    std::set<std::string> vivantes;
    for (const std::size_t i : lignesDe(e.lignes, "bound"))
        if (const auto fois = tirs(apres(e.lignes[i], 4)))
            for (const auto& [t, n] : *fois) vivantes.insert(t);
    const std::vector<std::size_t> mortes = lignesDe(e.lignes, "dead");
    if (vivantes.empty() || mortes.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    fausses[mortes[0]].push_back(unDe(Mots(vivantes.begin(), vivantes.end()), h));
    return fausses;
}

/// A transition that puts something is called needless, by itself or because of one that puts less into some place.
std::optional<Lignes> dominationFausse(const Epreuve& e, Hasard& h) {
    std::vector<const Reseau::Transition*> tirees;
    for (const std::size_t i : lignesDe(e.lignes, "fires"))
        for (const std::string& nom : apres(e.lignes[i], 1)) tirees.push_back(e.transition(nom));
    if (tirees.empty()) return std::nullopt;
    const Reseau::Transition& dominee = *unDe(tirees, h);
    const Reseau::Transition& par = *unDe(tirees, h);
    const bool seule = tirer(h, 2) == 0;
    const bool moins = std::ranges::any_of(
        dominee.effet, [&](const Reseau::Poids& p) { return p.compte > (seule ? 0 : valeur(par.effet, p.place)); });
    if (!moins) return std::nullopt;
    Lignes fausses = e.lignes;
    const Mots ligne = seule ? Mots{"dominated", dominee.nom} : Mots{"dominated", dominee.nom, par.nom};
    fausses.insert(fausses.begin() + static_cast<std::ptrdiff_t>(lignesDe(e.lignes, "dead").back()) + 1, ligne);
    return fausses;
}

/// A place is merged into one that a transition does not change with it.
std::optional<Lignes> fusionFausse(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "fires");
    std::erase_if(numeros, [&](std::size_t i) { return e.lignes[i].size() < 2; });
    if (numeros.empty()) return std::nullopt;
    const Reseau::Transition& t = *e.transition(unDe(apres(e.lignes[unDe(numeros, h)], 1), h));
    const std::uint32_t p = unDe(t.effet, h).place;
    const std::uint32_t q = e.place(unDe(e.net.places, h));
    if (valeur(t.effet, q) != 0) return std::nullopt;
    Lignes fausses = e.lignes;
    const Mots ligne = tirer(h, 2) == 0 ? Mots{"merge", e.net.places[p], e.net.places[q]}
                                        : Mots{"merge", e.net.places[q], e.net.places[p]};
    fausses.insert(fausses.begin() + static_cast<std::ptrdiff_t>(lignesDe(e.lignes, "dead")[0]) + 1, ligne);
    return fausses;
}

/// A run that no longer ends with the count that it is to show.
std::optional<Lignes> courseFausse(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "bound");
    std::erase_if(numeros, [&](std::size_t i) {
        return e.lignes[i][2] == "w" || e.lignes[i][3] != "by" || !tirs(apres(e.lignes[i], 4));
    });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    Mots& mots = fausses[unDe(numeros, h)];
    const Mots course = changerCourse(e, apres(mots, 4), h);
    const auto somme = effet(e, course);
    const std::uint32_t p = e.place(mots[1]);
    if (!somme || e.net.initial[p] + (*somme)[p] == std::stoll(mots[2])) return std::nullopt;
    mots.resize(4);
    mots.insert(mots.end(), course.begin(), course.end());
    return fausses;
}

/// A run begins at the start that goes on from another one, or the other way round.
std::optional<Lignes> suiteFausse(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros;
    bool premiere = true;                   // of the part
    std::optional<std::vector<Large>> fin;  // what the last run has added since the start
    for (std::size_t i = 0; i < e.lignes.size(); ++i) {
        const Mots& mots = e.lignes[i];
        if (mots[0] == "part") premiere = true;
        if (mots[0] != "bound") continue;
        if (premiere || (mots[2] != "w" && fin && (*fin)[e.place(mots[1])] != 0)) numeros.push_back(i);
        premiere = false;
        auto somme = effet(e, apres(mots, 4));
        if (mots[3] == "on" && !fin) somme.reset();
        if (mots[3] == "on" && somme)
            for (std::size_t p = 0; p < somme->size(); ++p) (*somme)[p] += (*fin)[p];
        fin = somme;
    }
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    std::string& mot = fausses[unDe(numeros, h)][3];
    mot = mot == "by" ? "on" : "by";
    return fausses;
}

/// An unbounded place whose run does without the accelerations.
std::optional<Lignes> sansAcceleration(const Epreuve& e, Hasard& h) {
    const auto acceleration = [](const std::string& mot) { return mot[0] == '*'; };
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "bound");
    std::erase_if(numeros, [&](std::size_t i) {
        return e.lignes[i][2] != "w" || std::ranges::none_of(e.lignes[i], acceleration);
    });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    std::erase_if(fausses[unDe(numeros, h)], acceleration);
    return fausses;
}

/// A cycle that takes something, or adds nothing.
std::optional<Lignes> cycleFaux(const Epreuve& e, Hasard& h) {
    const std::vector<std::size_t> numeros = lignesDe(e.lignes, "unbounded");
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    Mots& mots = fausses[unDe(numeros, h)];
    const auto cycle = std::ranges::find(mots, "cycle") + 1;
    const Mots autre = tirer(h, 4) == 0 ? Mots{} : changerCourse(e, Mots(cycle, mots.end()), h);
    const auto somme = effet(e, autre);
    if (!somme) return std::nullopt;
    const auto zero = [](Large n) { return n == 0; };
    const bool croit =
        std::ranges::all_of(*somme, [](Large n) { return n >= 0; }) && !std::ranges::all_of(*somme, zero);
    if (croit) return std::nullopt;
    mots.erase(cycle, mots.end());
    mots.insert(mots.end(), autre.begin(), autre.end());
    return fausses;
}

/// An acceleration is to raise a place that its sequence does not.
std::optional<Lignes> accelerationFausse(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "omega");
    std::erase_if(numeros, [&](std::size_t i) {
        const auto par = std::ranges::find(e.lignes[i], "by");
        return !tirs(Mots(par + 1, e.lignes[i].end()));
    });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    Mots& mots = fausses[unDe(numeros, h)];
    const auto somme = effet(e, Mots(std::ranges::find(mots, "by") + 1, mots.end()));
    const std::uint32_t p = e.place(unDe(e.net.places, h));
    if (!somme || (*somme)[p] > 0) return std::nullopt;
    mots.insert(mots.begin() + 3, e.net.places[p]);
    return fausses;
}

/// The bounds that are shown by one "close" without cases, as the number of its line.
std::vector<std::size_t> feuillesSeules(const Epreuve& e) {
    std::vector<std::size_t> numeros;
    for (const std::size_t i : lignesDe(e.lignes, "bound"))
        if (i + 2 < e.lignes.size() && e.lignes[i + 2][0] == "close" && e.lignes[i + 2][1] != "0")
            numeros.push_back(i + 2);
    return numeros;
}

/// The total is less than what is reached.
std::optional<Lignes> totalMoindre(const Epreuve& e, Hasard& h) {
    const std::vector<std::size_t> feuilles = feuillesSeules(e);
    if (feuilles.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    const std::size_t i = unDe(feuilles, h);
    fausses[i][2] = decimal(static_cast<Large>(std::stoll(fausses[i][1])) * std::stoll(fausses[i - 2][2]) - 1);
    return fausses;
}

/// One of the words "PLACE*Y" from the fourth on has 1 more or less, or goes.
/// @return whether there is one
bool changerPoids(Mots& mots, Hasard& h) {
    if (mots.size() < 4) return false;
    const std::size_t k = 3 + static_cast<std::size_t>(tirer(h, static_cast<int>(mots.size()) - 3));
    const std::size_t etoile = mots[k].rfind('*');
    const long long y = std::stoll(mots[k].substr(etoile + 1)) + (tirer(h, 2) == 0 ? 1 : -1);
    mots[k] = mots[k].substr(0, etoile + 1) + std::to_string(y);
    if (y == 0) mots.erase(mots.begin() + static_cast<std::ptrdiff_t>(k));
    return true;
}

/// A weighted sum of places, as the words "PLACE*Y" from the fourth on tell it.
struct Somme {
    Somme(const Epreuve& epreuve, const Mots& mots) : e(epreuve), poids(e.net.places.size(), 0) {
        for (const std::string& mot : apres(mots, 3)) {
            const std::size_t ou = mot.rfind('*');
            poids[e.place(mot.substr(0, ou))] += std::stoll(mot.substr(ou + 1));
        }
    }
    Large depart() const {
        Large total = 0;
        for (std::size_t p = 0; p < poids.size(); ++p) total += poids[p] * e.net.initial[p];
        return total;
    }
    /// Whether a transition of the part that line `i` belongs to raises it.
    bool montee(const Lignes& lignes, std::size_t i) const {
        while (lignes[i][0] != "fires") --i;
        return std::ranges::any_of(apres(lignes[i], 1), [&](const std::string& t) {
            Large gain = 0;
            for (const Reseau::Poids& p : e.transition(t)->effet) gain += poids[p.place] * p.compte;
            return gain > 0;
        });
    }

    const Epreuve& e;
    std::vector<Large> poids;
};

/// A multiplier goes or changes, so that a transition raises the sum, or the sum is larger at the start than the bound.
std::optional<Lignes> multiplicateurFaux(const Epreuve& e, Hasard& h) {
    const std::vector<std::size_t> feuilles = feuillesSeules(e);
    if (feuilles.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    const std::size_t i = unDe(feuilles, h);
    Mots& mots = fausses[i];
    if (!changerPoids(mots, h)) return std::nullopt;
    Somme somme(e, mots);
    const long long facteur = std::stoll(mots[1]);
    somme.poids[e.place(fausses[i - 2][1])] += facteur;
    const Large depart = somme.depart();
    if (!somme.montee(fausses, i) && depart / facteur <= std::stoll(fausses[i - 2][2]) && depart <= std::stoll(mots[2]))
        return std::nullopt;
    return fausses;
}

/// A weight goes or changes, so that a transition raises the sum, or the sum is another one at the start.
std::optional<Lignes> sousInvariantFaux(const Epreuve& e, Hasard& h) {
    const std::vector<std::size_t> numeros = lignesDe(e.lignes, "subinvariant");
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    const std::size_t i = unDe(numeros, h);
    if (!changerPoids(fausses[i], h)) return std::nullopt;
    const Somme somme(e, fausses[i]);
    if (!somme.montee(fausses, i) && somme.depart() == std::stoll(fausses[i][2])) return std::nullopt;
    return fausses;
}

std::optional<Lignes> totalFaux(const Epreuve& e, Hasard& h) {
    const std::vector<std::size_t> numeros = lignesDe(e.lignes, "subinvariant");
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    std::string& total = fausses[unDe(numeros, h)][2];
    total = std::to_string(std::stoll(total) + (tirer(h, 2) == 0 ? 1 : -1));
    return fausses;
}

/// A bound is said to follow from a sum in which the place is not.
std::optional<Lignes> placeHorsDeLaSomme(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "most");
    std::erase_if(numeros, [&](std::size_t i) { return !parSousInvariant(e.lignes[i]); });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    const std::size_t i = unDe(numeros, h);
    const std::string& place = fausses[i - 1][1];
    for (const std::size_t autre : lignesDe(e.lignes, "subinvariant")) {
        if (e.lignes[autre][1] != fausses[i][4] || autre > i) continue;
        std::erase_if(fausses[autre], [&](const std::string& mot) { return mot.substr(0, mot.rfind('*')) == place; });
    }
    return fausses;
}

std::optional<Lignes> mostMoindre(const Epreuve& e, Hasard& h) {
    std::vector<std::size_t> numeros = lignesDe(e.lignes, "most");
    std::erase_if(numeros, [&](std::size_t i) {
        return (e.lignes[i].back() != "cases" && !parSousInvariant(e.lignes[i])) || e.lignes[i - 1][0] != "bound";
    });
    if (numeros.empty()) return std::nullopt;
    Lignes fausses = e.lignes;
    const std::size_t i = unDe(numeros, h);
    fausses[i][1] = std::to_string(std::stoll(fausses[i - 1][2]) - 1);
    return fausses;
}

const std::vector<std::pair<std::string, Faussaire>> FAUSSAIRES{
    // Without duplicates among them, nothing else stands for the transition.
    {"a transition of a part is missing", [](auto& e, auto& h) { return sansMot(e, "fires", h); }},
    // A transition moves the token to or from the place, which is one of the part's.
    {"a place of the token is missing", [](auto& e, auto& h) { return sansMot(e, "token", h); }},
    // Then nothing shows the bound of the place. Of an unbounded part the verdict alone needs no places.
    {"a place of a part is missing",
     [](auto& e, auto& h) { return e.verdictSeul && !e.bornee ? std::nullopt : sansMot(e, "part", h); }},
    {"a part is missing", [](auto& e, auto& h) { return sansLigne(e, "part", h); }},
    // Then nothing shows the bound of the place. Of an unbounded part the verdict alone needs no places.
    {"a merge is missing",
     [](auto& e, auto& h) { return e.verdictSeul && !e.bornee ? std::nullopt : sansLigne(e, "merge", h); }},
    {"a transition is called needless that is not", dominationFausse},
    {"places are merged that do not count the same", fusionFausse},
    {"a bound is missing", [](auto& e, auto& h) { return sansLigne(e, "bound", h); }},
    {"a most is missing", [](auto& e, auto& h) { return sansLigne(e, "most", h); }},
    {"the only cycle is missing",
     [](auto& e, auto& h) {
         return lignesDe(e.lignes, "unbounded").size() == 1 ? sansLigne(e, "unbounded", h) : std::nullopt;
     }},
    // A tree in prefix notation with a line less is none.
    {"a leaf is missing", [](auto& e, auto& h) { return sansLigne(e, "close", h); }},
    {"a threshold is missing", [](auto& e, auto& h) { return sansLigne(e, "threshold", h); }},
    {"a level is missing", [](auto& e, auto& h) { return sansLigne(e, "level", h); }},
    {"an entry is missing", [](auto& e, auto& h) { return sansLigne(e, "entry", h); }},
    {"a last firing is missing", [](auto& e, auto& h) { return sansLigne(e, "last", h); }},
    {"an order is missing", [](auto& e, auto& h) { return sansLigne(e, "order", h); }},
    {"a departure is missing", [](auto& e, auto& h) { return sansLigne(e, "departure", h); }},
    {"a member of the set is too small", ensembleMoindre},
    {"a member of the set is missing", ensembleIncomplet},
    {"the relaxed set holds too little", relacheMoindre},
    {"the relaxed set is missing",
     [](auto& e, auto&) {
         Lignes fausses = e.lignes;
         const auto parties = std::erase_if(fausses, [](const Mots& l) { return l[0] == "relaxed"; });
         return parties == 0 ? std::nullopt : std::optional(fausses);
     }},
    {"a transition is buried alive", vivanteEnterree},
    {"a run ends elsewhere", courseFausse},
    {"a run begins elsewhere", suiteFausse},
    {"a run does without its accelerations", sansAcceleration},
    {"a cycle does not cover itself", cycleFaux},
    {"an acceleration raises too much", accelerationFausse},
    {"a total is too small", totalMoindre},
    {"a multiplier is wrong", multiplicateurFaux},
    {"a most is too small", mostMoindre},
    {"a subinvariant is missing", [](auto& e, auto& h) { return sansLigne(e, "subinvariant", h); }},
    {"a weight is wrong", sousInvariantFaux},
    {"a weighted sum is wrong", totalFaux},
    {"a place is not in the sum that bounds it", placeHorsDeLaSomme},
};

TEST_P(EnTranches, AGapInAnyKindOfLineIsNoticed) {
    Hasard h(15 + static_cast<unsigned>(GetParam()));
    int tranche = 0;
    for (const auto& [genre, faussaire] : FAUSSAIRES) {
        if (tranche++ % TRANCHES != GetParam()) continue;
        int nombre = 0;
        for (int tour = 0; tour < 4 * TOURS; ++tour)
            for (const Epreuve& e : epreuves()) {
                const std::optional<Lignes> fausses = faussaire(e, h);
                if (!fausses) continue;
                ++nombre;
                ASSERT_NO_FATAL_FAILURE(rejete(e, *fausses)) << genre;
            }
        EXPECT_GT(nombre, 3 * TOURS) << genre;
    }
}

INSTANTIATE_TEST_SUITE_P(Falsifications, EnTranches, testing::Range(0, TRANCHES));

}  // namespace
