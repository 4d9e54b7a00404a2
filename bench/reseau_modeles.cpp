// How many random models of the editor's shape the analyser answers within a time: `reseau_modeles [SECONDS [MODELS]]`
// prints, for each kind of rules and number of nodes, of how many of MODELS (10) fixed models the verdict alone and all
// bounds are found within SECONDS (3) of processor time, and the median and the largest of these times. With a third
// argument, a folder, the models of which not all bounds are found are written there.
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
std::optional<double> mesurer(const Reseau::Net& net, bool verdictSeul, unsigned secondes) {
    return aPart([&] {
        limiter(secondes, secondes);
        const std::clock_t debut = std::clock();
        Reseau::analyser(net, {.verdictSeul = verdictSeul});
        return static_cast<double>(std::clock() - debut) / CLOCKS_PER_SEC;
    });
}

void garder(const std::string& fichier, const Reseau::Net& net) {
    std::ofstream out(fichier);
    familles::ecrire(out, net);
}

/// The models of one kind of which one question is answered.
class Repondus {
public:
    void ajouter(double duree) { durees_.push_back(duree); }
    int nombre() const { return static_cast<int>(durees_.size()); }
    void imprimer(int modeles) {
        std::ranges::sort(durees_);
        std::printf(" | %4d/%-3d", nombre(), modeles);
        if (durees_.empty())
            std::printf(" %8s %8s", "", "");
        else
            std::printf(" %8.3f %8.3f", durees_[durees_.size() / 2], durees_.back());
    }

private:
    std::vector<double> durees_;  // seconds
};

}  // namespace

int main(int argc, char** argv) {
    const unsigned secondes = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 3;
    const int modeles = argc > 2 ? std::atoi(argv[2]) : 10;
    int total = 0;
    int tousVerdicts = 0;
    int toutesBornes = 0;
    std::printf("%-20s %6s | %8s %8s %8s | %8s %8s %8s\n", "rules put", "nodes", "verdict", "median", "longest",
                "bounds", "median", "longest");
    for (const familles::Serie& serie : familles::series()) {
        Repondus verdicts;
        Repondus bornes;
        for (int i = 0; i < modeles; ++i) {
            const Reseau::Net net = serie.net(i);
            if (const auto duree = mesurer(net, true, secondes)) verdicts.ajouter(*duree);
            if (const auto duree = mesurer(net, false, secondes))
                bornes.ajouter(*duree);
            else if (argc > 3)
                garder(std::string(argv[3]) + "/" + std::to_string(static_cast<int>(serie.genre)) + "-" +
                           std::to_string(serie.noeuds) + "-" + std::to_string(i) + ".net",
                       net);
        }
        std::printf("%-20s %6d", serie.regles.c_str(), serie.noeuds);
        verdicts.imprimer(modeles);
        bornes.imprimer(modeles);
        std::printf("\n");
        std::fflush(stdout);
        total += modeles;
        tousVerdicts += verdicts.nombre();
        toutesBornes += bornes.nombre();
    }
    std::printf("of %d models the verdict on %d, all bounds of %d\n", total, tousVerdicts, toutesBornes);
    return 0;
}
