// How the exploration does beside the published constructions: `reseau_publies [SECONDS [SEEDS]]` builds the whole
// minimal coverability set of the nets of `reseau_table` and of random nets, SEEDS (20) for each size, each in a
// process of its own that ends after SECONDS (0.2) of processor time, and prints for each net that some construction
// finishes:
//
//   set       its maximal markings, the same by all that finish
//   answer    what the analyser takes for its whole answer, by all its means
//   nodes     markings of which the successors were asked for, each as often as that began anew; of a published
//             construction, in that of its orders in which they are fewest
//   s         seconds of processor time with one thread, the mean of as many runs as fit into some milliseconds; of a
//             published construction, in its fastest order
//
// and at the end, for each kind of net, on how many of them the exploration expands no more than any of the others, and
// is faster than each; on how many the whole answer is faster than each, also of those on which every other one takes a
// tenth of a millisecond or more; and of those that it and another one finish, the totals of the nodes, and the
// geometric mean of its nodes to the fewest of the others, both of one more.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <map>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "Reseau/Conservation.h"
#include "Reseau/Couverture.h"
#include "Reseau/Reseau.h"
#include "a_part.h"
#include "reseau_epreuves.h"
#include "reseau_publies.h"

namespace {

constexpr std::uint64_t SANS_LIMITE = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t ESSAI = 1000;  // markings expanded before the analyser asks whether the net conserves anything
constexpr double ASSEZ = 0.005;        // seconds that are measured at least
constexpr double LONG = 0.0001;        // seconds; less is little beside the start of a program

struct Mesure {
    std::uint64_t taille = 0;
    std::uint64_t empreinte = 0;  // of the set
    std::uint64_t bornes = 0;     // the same of the bounds
    std::uint64_t explores = SANS_LIMITE;
    double secondes = std::numeric_limits<double>::infinity();
    bool finie() const { return explores < SANS_LIMITE; }
};

std::uint64_t empreinte(const std::vector<etalon::Dense>& ensemble) {
    std::uint64_t h = 1;
    for (const etalon::Dense& m : ensemble)
        for (const Reseau::Compte c : m) h = (h ^ static_cast<std::uint64_t>(c)) * 0x9E3779B97F4A7C15U + (h >> 29);
    return h;
}

/// Keeps what there is to compare of a minimal coverability set, ascending.
void retenir(Mesure& m, const std::vector<etalon::Dense>& ensemble) {
    etalon::Dense bornes = ensemble.front();
    for (const etalon::Dense& marquage : ensemble)
        std::ranges::transform(bornes, marquage, bornes.begin(), [](auto a, auto b) { return std::max(a, b); });
    m.taille = ensemble.size();
    m.empreinte = empreinte(ensemble);
    m.bornes = empreinte({bornes});
}

/// Calls f() until that has taken long enough.
/// @return the mean of the seconds
double chronometrer(const std::function<void()>& f) {
    const std::clock_t debut = std::clock();
    for (double tours = 1;; ++tours) {
        f();
        const double secondes = static_cast<double>(std::clock() - debut) / CLOCKS_PER_SEC;
        if (secondes >= ASSEZ) return secondes / tours;
    }
}

/// The exploration as the analyser runs it on a net that nothing else decides.
void couvrir(Reseau::Couverture& c, const Reseau::Net& net) {
    std::vector<std::uint32_t> toutes(net.transitions.size());
    std::iota(toutes.begin(), toutes.end(), 0U);
    if (Reseau::sommeConstante(net, toutes)) c.declarerIncomparables();
    if (c.explorer(ESSAI, false)) return;
    if (!c.nonBornee() && Reseau::conservatif(net)) c.declarerIncomparables();
    c.explorer(SANS_LIMITE, false);
}

Mesure explorer(const Reseau::Net& net) {
    Mesure m;
    m.secondes = chronometrer([&net] {
        Reseau::Couverture c(net, 1);
        couvrir(c, net);
    });
    Reseau::Couverture c(net, 1);
    couvrir(c, net);
    m.explores = c.explores();
    std::vector<etalon::Dense> ensemble;
    c.pourChaqueMaximal([&](const Reseau::Creux& creux) {
        ensemble.emplace_back(net.places.size(), 0);
        for (const Reseau::Poids& p : creux) ensemble.back()[p.place] = p.compte;
    });
    std::ranges::sort(ensemble);
    retenir(m, ensemble);
    return m;
}

/// The verdict and all bounds; it has no set to compare.
Mesure repondre(const Reseau::Net& net) {
    Mesure m;
    Reseau::Rapport rapport;
    m.secondes = chronometrer([&] { rapport = Reseau::analyser(net, {.fils = 1}); });
    m.explores = rapport.explores;
    m.bornes = empreinte({rapport.bornes});
    return m;
}

Mesure etalonner(const Reseau::Net& net, const etalon::Publiee& publiee, etalon::Ordre ordre) {
    Mesure m;
    etalon::Construction construction;
    m.secondes = chronometrer([&] { construction = publiee.construire(net, ordre, SANS_LIMITE).value(); });
    m.explores = construction.explores;
    retenir(m, construction.maximaux);
    return m;
}

Mesure mesurer(const std::function<Mesure()>& quoi, double secondes) {
    return aPart([&] {
               limiter(RLIM_INFINITY, RLIM_INFINITY);
               finirApres(secondes);
               return quoi();
           })
        .value_or(Mesure{});
}

/// The fewest nodes and the shortest time of all orders.
Mesure mesurer(const Reseau::Net& net, const etalon::Publiee& publiee, double secondes) {
    Mesure meilleure;
    for (const etalon::Ordre ordre : publiee.ordres) {
        const Mesure m = mesurer([&] { return etalonner(net, publiee, ordre); }, secondes);
        if (!m.finie()) continue;
        if (meilleure.finie() && m.empreinte != meilleure.empreinte) std::abort();
        meilleure = {m.taille, m.empreinte, m.bornes, std::min(meilleure.explores, m.explores),
                     std::min(meilleure.secondes, m.secondes)};
    }
    return meilleure;
}

struct Bilan {
    int nets = 0;
    int pasPlus = 0;
    int plusVite = 0;
    int dabord = 0;  // the whole answer
    int longs = 0;
    int avant = 0;    // of these, the whole answer
    int communs = 0;  // finished by the exploration and by another one
    std::uint64_t explores = 0;
    std::uint64_t moindres = 0;  // the fewest of the others
    double logarithmes = 0;      // of the ratios

    void ajouter(std::uint64_t ici, std::uint64_t ailleurs) {
        if (ici == SANS_LIMITE || ailleurs == SANS_LIMITE) return;
        ++communs;
        explores += ici;
        moindres += ailleurs;
        logarithmes += std::log(static_cast<double>(ici + 1) / static_cast<double>(ailleurs + 1));
    }
};

class Comparaison {
public:
    explicit Comparaison(double secondes) : secondes_(secondes) {}

    void entete() const {
        std::printf("%-16s %10s | %5s %5s | %8s | %9s | %18s", "net", "n", "pl.", "tr.", "set", "answer, s",
                    "this one: nodes, s");
        for (const etalon::Publiee& p : etalon::publiees()) std::printf(" | %18s", p.nom.c_str());
        std::printf("\n");
    }

    /// @return whether all constructions agree, and the answer with them
    bool comparer(const familles::Epreuve& e) {
        const Reseau::Net& net = e.net;
        const Mesure reponse = mesurer([&net] { return repondre(net); }, secondes_);
        std::vector<Mesure> mesures{mesurer([&net] { return explorer(net); }, secondes_)};
        for (const etalon::Publiee& p : etalon::publiees()) mesures.push_back(mesurer(net, p, secondes_));
        const auto une = std::ranges::find_if(mesures, &Mesure::finie);
        if (une == mesures.end()) return true;
        const bool accord =
            (!reponse.finie() || reponse.bornes == une->bornes) &&
            std::ranges::all_of(mesures, [&](const Mesure& m) { return !m.finie() || m.empreinte == une->empreinte; });
        const auto autres = std::next(mesures.begin());
        const Mesure& ici = mesures.front();
        Bilan& bilan = bilans_[e.genre];
        const bool plus =
            std::any_of(autres, mesures.end(), [&](const Mesure& m) { return m.explores < ici.explores; });
        const double autre = std::ranges::min_element(autres, mesures.end(), {}, &Mesure::secondes)->secondes;
        const bool vite = ici.secondes < autre;
        const bool tard = autre >= LONG && reponse.secondes >= autre;
        ++bilan.nets;
        bilan.pasPlus += !plus;
        bilan.plusVite += vite;
        bilan.dabord += reponse.secondes < autre;
        bilan.longs += autre >= LONG;
        bilan.avant += autre >= LONG && !tard;
        bilan.ajouter(ici.explores, std::ranges::min_element(autres, mesures.end(), {}, &Mesure::explores)->explores);
        std::printf("%-16s %10d | %5zu %5zu | %8lu | ", e.nom.c_str(), e.n, net.places.size(), net.transitions.size(),
                    static_cast<unsigned long>(une->taille));
        if (reponse.finie())
            std::printf("%9.6f", reponse.secondes);
        else
            std::printf("%9s", "-");
        for (const Mesure& m : mesures)
            if (m.finie())
                std::printf(" | %8lu %9.6f", static_cast<unsigned long>(m.explores), m.secondes);
            else
                std::printf(" | %8s %9s", "-", "-");
        std::printf("%s%s%s%s\n", plus ? "  MORE" : "", vite ? "" : "  SLOWER", tard ? "  LATER" : "",
                    accord ? "" : "  DISAGREE");
        std::fflush(stdout);
        return accord;
    }

    void conclure() const {
        for (const auto& [genre, b] : bilans_) {
            std::printf("%s: of %d nets no more nodes than any other on %d, faster than each on %d\n", genre.c_str(),
                        b.nets, b.pasPlus, b.plusVite);
            std::printf("    the whole answer faster than each on %d; of %d that take the others long on %d\n",
                        b.dabord, b.longs, b.avant);
            if (b.communs > 0)
                std::printf("    in all %lu nodes, the best other of each %lu; ratio in the mean %.3f (of %d nets)\n",
                            static_cast<unsigned long>(b.explores), static_cast<unsigned long>(b.moindres),
                            std::exp(b.logarithmes / b.communs), b.communs);
        }
    }

private:
    double secondes_;
    std::map<std::string, Bilan> bilans_;
};

}  // namespace

int main(int argc, char** argv) {
    const double secondes = argc > 1 ? std::atof(argv[1]) : 0.2;
    const int graines = argc > 2 ? std::atoi(argv[2]) : 20;
    Comparaison comparaison(secondes);
    comparaison.entete();
    if (!familles::pourChaqueEpreuve(graines, [&](const familles::Epreuve& e) { return comparaison.comparer(e); }))
        return 1;
    comparaison.conclure();
    return 0;
}
