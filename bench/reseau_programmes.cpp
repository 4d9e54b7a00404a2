// The analyser beside the published constructions as a user runs them: each a program that is started, reads the net
// from a file, and writes its answer. `reseau_programmes [SECONDS [SEEDS [RUNS]]]` takes the nets of `reseau_publies`,
// gives each program SECONDS (0.2) of processor time, and prints for each net that some construction finishes the
// milliseconds from the start of the program to its end, the least of RUNS (15) runs. The programs take turns in an
// order drawn anew each time, as one that has just been run starts sooner:
//
//   analyser    `tina`, which is linked statically, since that makes it start sooner
//   published   the fastest of the three constructions, each in its faster order, linked as programs mostly are
//   static      the same, linked statically as well
//
// and at the end on how many nets of each kind the analyser comes before every published one. All verdicts must agree.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "a_part.h"
#include "common/Folder.h"
#include "reseau_epreuves.h"
#include "reseau_familles.h"
#include "reseau_publies.h"

namespace {

constexpr double JAMAIS = std::numeric_limits<double>::infinity();
constexpr double ASSEZ = 0.1;  // seconds; what has run for so long is not run again

/// A copy of a program. What the linker has just written lies in memory in small pieces, and starts later.
std::string copier(const std::string& programme, const std::string& copie) {
    std::filesystem::copy_file(programme, copie);
    return copie;
}

/// A command line, and what has been seen of it.
class Programme {
public:
    explicit Programme(std::vector<std::string> commande) : commande_(std::move(commande)) {}

    /// Runs it once more, unless it has run long enough or was ended by its limit.
    /// @param reponse the file that takes what it writes
    void lancer(const std::string& reponse, double limite) {
        if (total_ > ASSEZ) return;
        const double secondes = courir(reponse, limite);
        total_ += secondes;
        if (secondes >= secondes_) return;
        secondes_ = secondes;
        std::ifstream lue(reponse);
        std::getline(lue, verdict_);
    }

    /// The least of its runs; JAMAIS when it does not end.
    double secondes() const { return secondes_; }
    const std::string& verdict() const { return verdict_; }

private:
    double courir(const std::string& reponse, double limite) const {
        std::vector<char*> arguments;
        for (const std::string& a : commande_) arguments.push_back(const_cast<char*>(a.c_str()));
        arguments.push_back(nullptr);
        const int sortie = open(reponse.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (sortie < 0) throw std::runtime_error("cannot write answers");
        const auto debut = std::chrono::steady_clock::now();
        const pid_t enfant = fork();
        if (enfant == 0) {
            finirApres(limite);
            dup2(sortie, STDOUT_FILENO);
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        int statut = 0;
        waitpid(enfant, &statut, 0);
        const double secondes = std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count();
        close(sortie);
        if (WIFEXITED(statut) && WEXITSTATUS(statut) == 127) throw std::runtime_error("cannot run " + commande_[0]);
        return WIFEXITED(statut) && WEXITSTATUS(statut) == 0 ? secondes : JAMAIS;
    }

    std::vector<std::string> commande_;
    double secondes_ = JAMAIS;
    double total_ = 0;  // JAMAIS once its limit has ended it
    std::string verdict_;
};

/// Each construction in each of its orders.
std::vector<Programme> publies(const std::string& programme, const std::string& net) {
    std::vector<Programme> resultat;
    for (std::size_t p = 0; p < etalon::publiees().size(); ++p)
        for (std::size_t o = 0; o < etalon::publiees()[p].ordres.size(); ++o)
            resultat.emplace_back(std::vector{programme, std::to_string(p), std::to_string(o), net});
    return resultat;
}

double laPlusVite(const std::vector<Programme>& programmes) {
    return std::ranges::min_element(programmes, {}, &Programme::secondes)->secondes();
}

struct Bilan {
    int nets = 0;
    int avant = 0;
    int avantStatiques = 0;
};

class Comparaison {
public:
    Comparaison(double secondes, int tours) : secondes_(secondes), tours_(tours) {
        std::printf("%-16s %10s | %5s %5s | %9s | %9s | %9s\n", "net", "n", "pl.", "tr.", "analyser", "published",
                    "static");
    }

    /// @return whether the verdicts agree
    bool comparer(const familles::Epreuve& e) {
        {
            std::ofstream net(net_);
            familles::ecrire(net, e.net);
        }
        std::vector<Programme> analyseur{Programme({analyseur_, "-C", "-g", net_})};
        std::vector<Programme> autres = publies(publie_, net_);
        std::vector<Programme> statiques = publies(publieStatique_, net_);
        std::vector<Programme*> tous;
        for (std::vector<Programme>* programmes : {&analyseur, &autres, &statiques})
            for (Programme& p : *programmes) tous.push_back(&p);
        for (int tour = 0; tour < tours_; ++tour) {
            std::ranges::shuffle(tous, hasard_);
            for (Programme* p : tous) p->lancer(reponse_, secondes_);
        }
        const double ici = laPlusVite(analyseur);
        const double autre = laPlusVite(autres);
        const double statique = laPlusVite(statiques);
        if (std::min(autre, statique) == JAMAIS) return true;
        Bilan& bilan = bilans_[e.genre];
        ++bilan.nets;
        bilan.avant += ici < autre;
        bilan.avantStatiques += ici < statique;
        std::printf("%-16s %10d | %5zu %5zu | %9.3f | %9.3f | %9.3f%s\n", e.nom.c_str(), e.n, e.net.places.size(),
                    e.net.transitions.size(), 1e3 * ici, 1e3 * autre, 1e3 * statique, ici < autre ? "" : "  LATER");
        std::fflush(stdout);
        std::set<std::string> verdicts;
        for (const std::vector<Programme>* programmes : {&analyseur, &autres, &statiques})
            for (const Programme& p : *programmes)
                if (p.secondes() < JAMAIS) verdicts.insert(p.verdict());
        return verdicts.size() == 1;
    }

    void conclure() const {
        for (const auto& [genre, b] : bilans_)
            std::printf("%s: of %d nets before every published one on %d, before those linked statically on %d\n",
                        genre.c_str(), b.nets, b.avant, b.avantStatiques);
    }

private:
    double secondes_;
    int tours_;
    std::mt19937 hasard_;
    Folder dossier_;
    std::string net_ = dossier_ / "net";
    std::string reponse_ = dossier_ / "answer";
    std::string analyseur_ = copier(TINA, dossier_ / "analyser");
    std::string publie_ = copier(PUBLIE, dossier_ / "published");
    std::string publieStatique_ = copier(PUBLIE_STATIQUE, dossier_ / "published-static");
    std::map<std::string, Bilan> bilans_;
};

}  // namespace

int main(int argc, char** argv) {
    const double secondes = argc > 1 ? std::atof(argv[1]) : 0.2;
    const int graines = argc > 2 ? std::atoi(argv[2]) : 20;
    const int tours = argc > 3 ? std::atoi(argv[3]) : 15;
    try {
        Comparaison comparaison(secondes, tours);
        if (!familles::pourChaqueEpreuve(graines,
                                         [&](const familles::Epreuve& e) { return comparaison.comparer(e); })) {
            std::printf("The verdicts differ.\n");
            return 1;
        }
        comparaison.conclure();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 2;
    }
    return 0;
}
