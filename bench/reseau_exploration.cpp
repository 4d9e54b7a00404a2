// What the exploration costs in memory and what several threads save: `reseau_exploration [RUNS [NET]]` builds
// whole coverability sets, each in a process of its own, RUNS (3) times with one thread and with two, and prints
//
//   markings     of the set, or the first ten million of them
//   waiting      to be expanded, at most
//   bytes        of one packed marking
//   packed       KiB of the set and what waits together, at their largest
//   peak         KiB of memory of its own (`Anonymous` in /proc/self/smaps_rollup, which is exact where the counters
//                behind `ru_maxrss` are not) that the process has beyond what it had before, at most, with one thread
//                and with two, in the worst run
//   ratio        of the larger peak to `packed`
//   1, 2         seconds by the wall clock with so many threads, the best of all runs; and their ratio
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "Reseau/Conservation.h"
#include "Reseau/Couverture.h"
#include "a_part.h"
#include "reseau_familles.h"

namespace {

constexpr std::uint64_t PAS = 1000;          // markings expanded between two looks at the memory, or 3 %
constexpr std::uint64_t ASSEZ = 10'000'000;  // markings at which a set is large enough

struct Mesure {
    std::uint64_t marquages = 0;
    std::uint64_t attente = 0;
    std::uint64_t octets = 0;
    std::uint64_t tasses = 0;  // bytes
    long sommet = 0;           // KiB
    double secondes = 0;
    bool finie = false;
};

long anonyme() {
    std::ifstream lu("/proc/self/smaps_rollup");
    long kio = 0;
    for (std::string mot; lu >> mot;)
        if (mot == "Anonymous:" && lu >> kio) break;
    return kio;
}

Mesure explorer(const Reseau::Net& net, unsigned fils) {
    Mesure m;
    const long avant = anonyme();
    const auto debut = std::chrono::steady_clock::now();
    Reseau::Couverture c(net, fils);
    if (Reseau::conservatif(net)) c.declarerIncomparables();
    bool complete = false;
    for (std::uint64_t limite = PAS; !complete; limite += std::max(PAS, c.maximaux() / 32)) {
        complete = c.explorer(limite, false) || c.maximaux() >= ASSEZ;
        m.octets = c.octets();
        m.attente = std::max(m.attente, c.enAttente());
        m.tasses = std::max(m.tasses, (c.maximaux() + c.enAttente()) * m.octets);
        m.sommet = std::max(m.sommet, anonyme() - avant);
    }
    m.secondes = std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count();
    m.marquages = c.maximaux();
    m.finie = true;
    return m;
}

Mesure mesurer(const Reseau::Net& net, unsigned fils) {
    return aPart([&] { return explorer(net, fils); }).value_or(Mesure{});
}

/// Twenty places in a ring, through which ten tokens wander: 29 over 10 markings.
Reseau::Net anneau() {
    constexpr std::uint32_t PLACES = 20;
    Reseau::Net net;
    for (std::uint32_t p = 0; p < PLACES; ++p) {
        net.places.push_back("p" + std::to_string(p));
        net.initial.push_back(p == 0 ? 10 : 0);
    }
    for (std::uint32_t p = 0; p < PLACES; ++p) net.ajouter("t" + std::to_string(p), {{p, 1}}, {{(p + 1) % PLACES, 1}});
    return net;
}

}  // namespace

int main(int argc, char** argv) {
    const int tours = argc > 1 ? std::atoi(argv[1]) : 3;
    const std::string seulement = argc > 2 ? argv[2] : "";
    std::vector<std::pair<std::string, Reseau::Net>> nets;
    const std::vector<std::pair<std::string, int>> choix{
        {"kanban", 4},         {"kanban", 5},  {"fms", 5},     {"readers-writers", 60}, {"readers-writers", 100},
        {"swimming pool", 20}, {"random", 61}, {"random", 95}, {"random", 86}};
    for (const auto& [nom, n] : choix) {
        const auto famille = std::ranges::find(familles::toutes(), nom, &familles::Famille::nom);
        nets.emplace_back(nom + " " + std::to_string(n), famille->net(n));
    }
    nets.emplace_back("ring 20", anneau());
    std::printf("%-19s | %3s | %10s %9s %5s %9s | %8s %8s %5s | %8s %8s %5s\n", "net", "pl.", "markings", "waiting",
                "bytes", "packed", "peak 1", "peak 2", "ratio", "1", "2", "ratio");
    for (const auto& [nom, net] : nets) {
        if (!seulement.empty() && nom != seulement) continue;
        Mesure un;
        Mesure deux;
        for (int tour = 0; tour < tours; ++tour)
            for (Mesure* m : {&un, &deux}) {
                const Mesure neuve = mesurer(net, m == &un ? 1 : 2);
                const long pire = std::max(m->sommet, neuve.sommet);
                if (!m->finie || neuve.secondes < m->secondes) *m = neuve;
                m->sommet = pire;
            }
        if (!un.finie || !deux.finie || un.marquages != deux.marquages) return 1;
        const double tasses = static_cast<double>(un.tasses) / 1024;
        const double rapport = static_cast<double>(std::max(un.sommet, deux.sommet)) / tasses;
        std::printf("%-19s | %3zu | %10lu %9lu %5lu %9.0f | %8ld %8ld %5.2f | %8.3f %8.3f %5.2f\n", nom.c_str(),
                    net.places.size(), static_cast<unsigned long>(un.marquages), static_cast<unsigned long>(un.attente),
                    static_cast<unsigned long>(un.octets), tasses, un.sommet, deux.sommet, rapport, un.secondes,
                    deux.secondes, un.secondes / deux.secondes);
        std::fflush(stdout);
    }
    return 0;
}
