// Are the analyser's answers proved? `reseau_preuves [SECONDS]` analyses, with its proof, every net of `reseau_table`
// and every model of `reseau_modeles`, each in a process of its own that has SECONDS (1) of processor time to answer;
// it checks each proof, however long that takes, and prints a line for each:
//
//   KiB             of the report with its proof
//   answer, check   seconds of processor time
//
// The exit status is 1 when a proof has been rejected.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>

#include "Reseau/Ecriture.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"
#include "a_part.h"
#include "reseau_familles.h"

namespace {

constexpr int MODELES = 10;  // of each series

struct Mesure {
    bool repondue = false;
    bool bornee = false;
    std::size_t octets = 0;
    double reponse = 0;
    double verification = 0;
    char faute[200] = "";
};

double secondesDepuis(std::clock_t debut) { return static_cast<double>(std::clock() - debut) / CLOCKS_PER_SEC; }

Mesure prouver(const Reseau::Net& net, unsigned secondes) {
    Mesure m;
    limiter(secondes, RLIM_INFINITY);
    std::clock_t debut = std::clock();
    const Reseau::Rapport r = Reseau::analyser(net, {.preuves = true, .fils = 1});
    const std::string rapport = Reseau::ecrire(net, r);
    m = {.repondue = true, .bornee = r.bornee, .octets = rapport.size(), .reponse = secondesDepuis(debut)};
    std::signal(SIGXCPU, SIG_IGN);
    std::ostringstream texte;
    familles::ecrire(texte, net);
    debut = std::clock();
    const std::string faute = essai::verifier(texte.str(), rapport, false);
    m.verification = secondesDepuis(debut);
    std::snprintf(m.faute, sizeof m.faute, "%s", faute.c_str());
    return m;
}

Mesure mesurer(const Reseau::Net& net, unsigned secondes) {
    return aPart([&] { return prouver(net, secondes); }).value_or(Mesure{});
}

class Compte {
public:
    explicit Compte(unsigned secondes) : secondes_(secondes) {
        std::printf("%-25s %10s | %5s %5s | %9s | %8s %8s %8s |\n", "net", "n", "pl.", "tr.", "verdict", "KiB",
                    "answer", "check");
    }
    void net(const std::string& nom, int n, const Reseau::Net& net) {
        const Mesure m = mesurer(net, secondes_);
        std::printf("%-25s %10d | %5zu %5zu | ", nom.c_str(), n, net.places.size(), net.transitions.size());
        if (m.repondue)
            std::printf("%9s | %8zu %8.3f %8.3f | %s\n", m.bornee ? "bounded" : "unbounded", (m.octets + 1023) / 1024,
                        m.reponse, m.verification,
                        m.faute[0] == '\0' ? "proved" : (std::string("REJECTED: ") + m.faute).c_str());
        else
            std::printf("%9s | %8s %8s %8s |\n", "-", "-", "-", "-");
        std::fflush(stdout);
        ++nets_;
        repondues_ += m.repondue ? 1 : 0;
        rejetees_ += m.faute[0] != '\0' ? 1 : 0;
    }
    int conclure() const {
        std::printf("%d nets, %d answered, %d of these proved\n", nets_, repondues_, repondues_ - rejetees_);
        return rejetees_ == 0 ? 0 : 1;
    }

private:
    unsigned secondes_;
    int nets_ = 0;
    int repondues_ = 0;
    int rejetees_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    Compte compte(argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 1);
    for (const familles::Famille& f : familles::toutes())
        for (const int n : f.parametres) compte.net(f.nom, n, f.net(n));
    for (const familles::Serie& s : familles::series())
        for (int i = 0; i < MODELES; ++i) compte.net(std::to_string(s.noeuds) + ", " + s.regles, i, s.net(i));
    return compte.conclure();
}
