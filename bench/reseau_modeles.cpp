// How many random models of the editor's shape the analyser answers within a time: `reseau_modeles [SECONDS [MODELS]]`
// prints, for each kind of rules and number of nodes, how many of MODELS (10) fixed models are answered within SECONDS
// (3) of processor time, the median and the largest of these times. With a third argument, a folder, the models that
// are not answered are written there.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "Reseau/Reseau.h"
#include "a_part.h"
#include "reseau_familles.h"

namespace {

/// @return the seconds of processor time, nothing when it was not answered
std::optional<double> mesurer(const Reseau::Net& net, unsigned secondes) {
    return aPart([&] {
        limiter(secondes, secondes);
        const std::clock_t debut = std::clock();
        Reseau::analyser(net, {});
        return static_cast<double>(std::clock() - debut) / CLOCKS_PER_SEC;
    });
}

void garder(const std::string& fichier, const Reseau::Net& net) {
    std::ofstream out(fichier);
    familles::ecrire(out, net);
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned secondes = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 3;
    const int modeles = argc > 2 ? std::atoi(argv[2]) : 10;
    int total = 0;
    int repondus = 0;
    std::printf("%-20s %6s | %8s %8s %8s\n", "rules put", "nodes", "answered", "median", "longest");
    for (const familles::Serie& serie : familles::series()) {
        std::vector<double> durees;
        for (int i = 0; i < modeles; ++i) {
            const Reseau::Net net = serie.net(i);
            if (const auto duree = mesurer(net, secondes))
                durees.push_back(*duree);
            else if (argc > 3)
                garder(std::string(argv[3]) + "/" + std::to_string(static_cast<int>(serie.genre)) + "-" +
                           std::to_string(serie.noeuds) + "-" + std::to_string(i) + ".net",
                       net);
        }
        std::ranges::sort(durees);
        std::printf("%-20s %6d | %4zu/%-3d", serie.regles.c_str(), serie.noeuds, durees.size(), modeles);
        if (!durees.empty()) std::printf(" %8.3f %8.3f", durees[durees.size() / 2], durees.back());
        std::printf("\n");
        std::fflush(stdout);
        total += modeles;
        repondus += static_cast<int>(durees.size());
    }
    std::printf("%d of %d answered\n", repondus, total);
    return 0;
}
