// How the analyser does on every family, beside the yardstick: `reseau_table [SECONDS]` prints one line for each net.
// Each measurement runs in a process of its own, which gives its time and its peak of memory and ends after SECONDS
// (10).
// One thread works, so that processor time is what it takes.
//
//   answer    verdict and all bounds, as the program gives them
//   set       the whole minimal coverability set of the whole net, whether or not the answer needs it
//   yardstick the plain Karp-Miller tree
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include "Reseau/Conservation.h"
#include "Reseau/Couverture.h"
#include "Reseau/Reseau.h"
#include "a_part.h"
#include "reseau_familles.h"
#include "reseau_karp_miller.h"

namespace {

struct Mesure {
    bool bornee = false;
    std::uint64_t noeuds = 0;  // markings expanded, or nodes of the tree
    std::uint64_t maximaux = 0;
    std::uint64_t empreinte = 0;  // of all bounds
    double secondes = 0;
    long kibioctets = 0;  // beyond what the process starts with
    bool finie = false;
};

std::uint64_t empreinte(const std::vector<Reseau::Compte>& bornes) {
    std::uint64_t h = 1;
    for (const Reseau::Compte b : bornes) h = (h ^ static_cast<std::uint64_t>(b)) * 0x100000001B3U;
    return h;
}

void repondre(const Reseau::Net& net, Mesure& m) {
    const Reseau::Rapport r = Reseau::analyser(net, {.fils = 1});
    m = {.bornee = r.bornee, .noeuds = r.explores, .empreinte = empreinte(r.bornes)};
}

void couvrir(const Reseau::Net& net, Mesure& m) {
    Reseau::Couverture c(net, 1);
    if (Reseau::conservatif(net)) c.declarerIncomparables();
    c.explorer(std::numeric_limits<std::uint64_t>::max(), false);
    m = {
        .bornee = !c.nonBornee(), .noeuds = c.explores(), .maximaux = c.maximaux(), .empreinte = empreinte(c.maxima())};
}

void etalonner(const Reseau::Net& net, Mesure& m) {
    const etalon::Resultat r = etalon::karpMiller(net).value();
    m = {.bornee = r.bornee, .noeuds = r.noeuds, .empreinte = empreinte(r.bornes)};
}

long sommet() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

Mesure mesurer(const Reseau::Net& net, void (*quoi)(const Reseau::Net&, Mesure&), unsigned secondes) {
    const auto mesure = [&] {
        Mesure m;
        limiter(secondes, secondes);
        const long avant = sommet();
        const std::clock_t debut = std::clock();
        quoi(net, m);
        m.secondes = static_cast<double>(std::clock() - debut) / CLOCKS_PER_SEC;
        m.kibioctets = sommet() - avant;
        m.finie = true;
        return m;
    };
    return aPart(mesure).value_or(Mesure{});
}

std::string duree(const Mesure& m) {
    char texte[32];
    std::snprintf(texte, sizeof texte, "%.3f", m.secondes);
    return m.finie ? texte : "-";
}

std::string nombre(const Mesure& m, std::uint64_t n) { return m.finie ? std::to_string(n) : "-"; }

}  // namespace

int main(int argc, char** argv) {
    const unsigned secondes = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 10;
    std::printf("%-16s %10s | %5s %5s | %9s | %8s %8s %8s | %9s %9s %8s %8s | %10s %8s %8s\n", "family", "n", "pl.",
                "tr.", "verdict", "answer", "s", "KiB", "set", "expanded", "s", "KiB", "yardstick", "s", "KiB");
    for (const familles::Famille& f : familles::toutes())
        for (const int n : f.parametres) {
            const Reseau::Net net = f.net(n);
            const Mesure a = mesurer(net, repondre, secondes);
            const Mesure c = mesurer(net, couvrir, secondes);
            const Mesure e = mesurer(net, etalonner, secondes);
            const bool accord = (!a.finie || !c.finie || a.empreinte == c.empreinte) &&
                                (!a.finie || !e.finie || a.empreinte == e.empreinte);
            std::printf("%-16s %10d | %5zu %5zu | %9s | %8s %8s %8s | %9s %9s %8s %8s | %10s %8s %8s%s\n",
                        f.nom.c_str(), n, net.places.size(), net.transitions.size(),
                        !a.finie   ? "-"
                        : a.bornee ? "bounded"
                                   : "unbounded",
                        nombre(a, a.noeuds).c_str(), duree(a).c_str(),
                        nombre(a, static_cast<std::uint64_t>(a.kibioctets)).c_str(), nombre(c, c.maximaux).c_str(),
                        nombre(c, c.noeuds).c_str(), duree(c).c_str(),
                        nombre(c, static_cast<std::uint64_t>(c.kibioctets)).c_str(), nombre(e, e.noeuds).c_str(),
                        duree(e).c_str(), nombre(e, static_cast<std::uint64_t>(e.kibioctets)).c_str(),
                        accord ? "" : "  DISAGREE");
            std::fflush(stdout);
            if (!accord) return 1;
        }
    return 0;
}
