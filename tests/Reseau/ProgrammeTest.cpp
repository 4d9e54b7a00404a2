// The program as the editor and a person at a terminal meet it: options, report form, failures, signals,
// pipes, memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>

#include "Outils.h"
#include "Rapport.h"
#include "reseau_familles.h"

namespace {

using essai::comptesDuRapport;
using essai::lancer;
using essai::Resultat;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string EXEMPLE = "net buffer\ntr t1 q1 ma*1 -> q2 mb*1 \ntr t2 q0 -> q1 ma*2 \ntr t3 q2 -> q1 \npl q0 (1)\n";
const std::string CROISSANT = "net n\ntr t1 a -> a b\ntr t2 b*2 c -> d\npl a (1)\npl c (3)\n";

/// A net whose coverability set no machine can build.
std::string immense() {
    std::ostringstream net;
    for (int i = 0; i < 40; ++i) {
        net << "tr a" << i << " x" << i << " y" << (i + 1) % 40 << " -> y" << i << " x" << (i + 7) % 40 << '\n';
        net << "tr b" << i << " x" << i << " x" << (i + 3) % 40 << " -> y" << (i * 5) % 40 << " y" << (i + 11) % 40
            << '\n';
        net << "tr c" << i << " y" << i << "*2 -> x" << (i + 2) % 40 << " y" << (i + 21) % 40 << '\n';
        net << "pl x" << i << " (" << 1 + i % 3 << ")\n";
    }
    return net.str();
}

void erreurSans(const Resultat& r, const std::string& message) {
    EXPECT_EQ(r.statut, 2);
    EXPECT_THAT(r.sortie, IsEmpty());
    EXPECT_EQ(r.erreurs, "tina: " + message + "\n");
}

TEST(Programme, TheVerdictOfABoundedNetIsOneLine) {
    const Resultat r = lancer("-C -a -g", EXEMPLE);
    EXPECT_EQ(r.statut, 0);
    EXPECT_EQ(r.sortie, "the net is bounded\n");
    EXPECT_THAT(r.erreurs, IsEmpty());
}

TEST(Programme, TheVerdictOfAnUnboundedNetIsOneLine) {
    const Resultat r = lancer("-C -a -g", CROISSANT);
    EXPECT_EQ(r.statut, 0);
    EXPECT_EQ(r.sortie, "the net is not bounded\n");
}

TEST(Programme, NoNameOfTheUsersStandsInTheVerdict) {
    EXPECT_EQ(lancer("-C -a -g", "net {not bounded}\npl {not bounded} (1)\n").sortie, "the net is bounded\n");
}

TEST(Programme, EveryLargestCountCanBeReadFromTheMarkingLines) {
    const auto comptes = comptesDuRapport(lancer("-C -g", EXEMPLE).sortie);
    EXPECT_EQ(comptes, (std::map<std::string, long long>{{"q0", 1}, {"q1", 1}, {"q2", 1}, {"ma", 2}, {"mb", 2}}));
}

TEST(Programme, UnboundedPlacesAreWrittenWithW) {
    const auto comptes = comptesDuRapport(lancer("-C -g", CROISSANT).sortie);
    EXPECT_EQ(comptes, (std::map<std::string, long long>{{"a", 1}, {"b", -1}, {"c", 3}, {"d", 3}}));
}

TEST(Programme, OnlyMarkingLinesHoldAColonAndEmptyPlacesAreNotListed) {
    std::istringstream rapport(lancer("-C -g", EXEMPLE + "pl mz\npl my (0)\n").sortie);
    std::string ligne;
    ASSERT_TRUE(std::getline(rapport, ligne));
    EXPECT_EQ(ligne, "the net is bounded");
    int marquages = 0;
    while (std::getline(rapport, ligne)) {
        EXPECT_THAT(ligne, testing::ContainsRegex("^[0-9]+ : (q[0-2]|m[ab])"));
        EXPECT_THAT(ligne, Not(HasSubstr("mz")));
        EXPECT_THAT(ligne, Not(HasSubstr("my")));
        ++marquages;
    }
    EXPECT_GT(marquages, 0);
}

TEST(Programme, AFileArgumentIsReadInsteadOfStandardInput) {
    const Resultat r = lancer("-C -a -g entree", CROISSANT);
    EXPECT_EQ(r.sortie, "the net is not bounded\n");
    erreurSans(lancer("nulle_part", ""), "cannot open nulle_part: No such file or directory");
    erreurSans(lancer("entree entree", ""), "more than one file, entree and entree");
    erreurSans(lancer("/", ""), "/: cannot be read");
}

TEST(Programme, AnEmptyFileNameIsAnErrorAndNotStandardInput) {
    erreurSans(lancer("-C -a -g ''", EXEMPLE), "cannot open : No such file or directory");
    erreurSans(lancer("'' entree", EXEMPLE), "more than one file,  and entree");
}

TEST(Programme, HelpAndVersionAnswerOnStandardOutput) {
    EXPECT_THAT(lancer("-h", "").sortie, StartsWith("usage: tina"));
    EXPECT_EQ(lancer("--help", "").sortie, lancer("-h", "").sortie);
    EXPECT_EQ(lancer("--help", "").statut, 0);
    EXPECT_THAT(lancer("--version", "").sortie, testing::ContainsRegex("^tina [0-9]+[.][0-9]+[.][0-9]+"));
}

TEST(Programme, AnUnknownOptionIsAnError) {
    erreurSans(lancer("-C -R", EXEMPLE), "unknown option -R, see --help");
    erreurSans(lancer("--wat", EXEMPLE), "unknown option --wat, see --help");
}

TEST(Programme, AMalformedNetIsAnErrorWithItsLine) {
    erreurSans(lancer("-C -g", "net n\ntr t a b\n"), "<stdin>:2: \"->\" expected");
    erreurSans(lancer("-C -a -g entree", "pl a (x)\n"), "entree:1: a token count expected, not \"x\"");
}

TEST(Programme, ACountBeyond64BitsIsAnErrorAndNeverWraps) {
    erreurSans(lancer("-C -g", "tr t a -> b*9000000000000000000\npl a (2)\n"), "a token count does not fit in 64 bits");
    EXPECT_EQ(comptesDuRapport(lancer("-C -g", "tr t a -> b*1000000000000000000\npl a (9)\n").sortie).at("b"),
              9000000000000000000);
}

TEST(Programme, AnEmptyInputIsANetWithoutPlaces) { EXPECT_EQ(lancer("-C -g", "\n").sortie, "the net is bounded\n"); }

TEST(Programme, AFullDiskIsAnError) {
    const Resultat r = lancer("-C -g >/dev/full", EXEMPLE);
    EXPECT_EQ(r.statut, 2);
    EXPECT_EQ(r.erreurs, "tina: cannot write the report: No space left on device\n");
}

TEST(Programme, AReaderThatLeavesEndsItQuietly) {
    const Resultat r = lancer("-C -g; echo $? >&2; } | { true; }", EXEMPLE, "{ sleep 0.1; ");
    EXPECT_EQ(r.erreurs, "0\n");
    EXPECT_THAT(r.sortie, IsEmpty());
}

/// A model whose state equation is worked at for seconds.
std::string vaste() {
    std::ostringstream net;
    familles::ecrire(net, familles::modeleAuHasard(familles::Genre::ETAGE, 200, 20, 20'020, 1'000'000'000));
    return net.str();
}

/// A net whose proof is a megabyte.
std::string longue() {
    std::ostringstream net;
    familles::ecrire(net, std::ranges::find(familles::toutes(), "token ring", &familles::Famille::nom)->net(120));
    return net.str();
}

/// What the program is at when it gets a signal.
enum class Phase { LECTURE, EQUATION, EXPLORATION, FILS, ECRITURE };

/// The running analyser, its standard input and output in the test's hands.
class Analyse {
public:
    explicit Analyse(Phase phase) {
        EXPECT_EQ(pipe(entree_) | pipe(sortie_) | pipe(erreurs_), 0);
        processus_ = fork();
        if (processus_ == 0) {
            dup2(entree_[0], STDIN_FILENO);
            dup2(sortie_[1], STDOUT_FILENO);
            dup2(erreurs_[1], STDERR_FILENO);
            for (const auto& tube : {entree_, sortie_, erreurs_}) {
                close(tube[0]);
                close(tube[1]);
            }
            execl(TINA, TINA, "-C", phase == Phase::ECRITURE ? "-v" : "-g", nullptr);
            _exit(127);
        }
        close(entree_[0]);
        close(sortie_[1]);
        close(erreurs_[1]);
    }
    ~Analyse() {
        if (entree_[1] >= 0) close(entree_[1]);
        close(sortie_[0]);
        close(erreurs_[0]);
    }

    void donner(const std::string& net) {
        for (std::size_t ecrit = 0; ecrit < net.size();) {
            const ssize_t n = write(entree_[1], net.data() + ecrit, net.size() - ecrit);
            ASSERT_GT(n, 0);
            ecrit += static_cast<std::size_t>(n);
        }
    }
    void finirLEntree() {
        close(entree_[1]);
        entree_[1] = -1;
    }
    /// Waits until it has several threads, as it has at work where there are several cores.
    void attendreLesFils() const {
        const std::string fils = "/proc/" + std::to_string(processus_) + "/task";
        for (int i = 0; i < 4500 && std::thread::hardware_concurrency() > 1; ++i) {
            std::error_code absent;
            if (std::distance(std::filesystem::directory_iterator(fils, absent), {}) > 1) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        EXPECT_EQ(std::thread::hardware_concurrency(), 1U) << "no second thread has been started";
    }
    /// Waits until it has begun to write its report, which nobody reads.
    void attendreLaSortie() const {
        pollfd attente{sortie_[0], POLLIN, 0};
        EXPECT_EQ(poll(&attente, 1, 45'000), 1);
    }

    /// @return how long it took to end
    std::chrono::steady_clock::duration interrompre(int signal) {
        const auto debut = std::chrono::steady_clock::now();
        kill(processus_, signal);
        waitpid(processus_, &etat_, 0);
        return std::chrono::steady_clock::now() - debut;
    }
    int etat() const { return etat_; }
    std::string sortie() const { return tout(sortie_[0]); }
    std::string erreurs() const { return tout(erreurs_[0]); }

private:
    static std::string tout(int tube) {
        std::string texte;
        char lu[4096];
        for (ssize_t n; (n = read(tube, lu, sizeof lu)) > 0;) texte.append(lu, static_cast<std::size_t>(n));
        return texte;
    }

    int entree_[2];
    int sortie_[2];
    int erreurs_[2];
    pid_t processus_ = 0;
    int etat_ = 0;
};

/// Brings the analyser into a phase.
void amener(Analyse& analyse, Phase phase) {
    analyse.donner(phase == Phase::EQUATION ? vaste() : phase == Phase::ECRITURE ? longue() : immense());
    if (phase != Phase::LECTURE) analyse.finirLEntree();
    if (phase == Phase::FILS) analyse.attendreLesFils();
    if (phase == Phase::ECRITURE) analyse.attendreLaSortie();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
}

#ifdef __SANITIZE_ADDRESS__
constexpr auto SOUDAIN = std::chrono::milliseconds(1000);  // the sanitizer has memory of its own to give back
#else
constexpr auto SOUDAIN = std::chrono::milliseconds(100);
#endif

class Interruptions : public testing::TestWithParam<std::pair<Phase, int>> {};

/// The best of a few times counts, since the machine may be busy.
TEST_P(Interruptions, ASignalEndsItAtOnceWithAMessageAndItsStatus) {
    const auto& [phase, signal] = GetParam();
    auto delai = std::chrono::steady_clock::duration::max();
    for (int essai = 0; essai < 5 && delai > SOUDAIN; ++essai) {
        Analyse analyse(phase);
        amener(analyse, phase);
        delai = std::min(delai, analyse.interrompre(signal));
        ASSERT_TRUE(WIFEXITED(analyse.etat()));
        EXPECT_EQ(WEXITSTATUS(analyse.etat()), 128 + signal);
        EXPECT_EQ(analyse.erreurs(), "tina: interrupted\n");
        const std::string sortie = analyse.sortie();
        if (phase == Phase::ECRITURE)
            EXPECT_THAT(lancer("-C -v", longue()).sortie, StartsWith(sortie));
        else
            EXPECT_THAT(sortie, IsEmpty());
    }
    EXPECT_LE(delai, SOUDAIN);
}

std::string nomDePhase(const testing::TestParamInfo<std::pair<Phase, int>>& essai) {
    const char* const phases[] = {"Reading", "StateEquation", "Exploration", "Threads", "Writing"};
    return std::string(phases[static_cast<int>(essai.param.first)]) + (essai.param.second == SIGINT ? "Int" : "Term");
}

INSTANTIATE_TEST_SUITE_P(Phases, Interruptions,
                         testing::Values(std::pair(Phase::LECTURE, SIGINT), std::pair(Phase::LECTURE, SIGTERM),
                                         std::pair(Phase::EQUATION, SIGINT), std::pair(Phase::EQUATION, SIGTERM),
                                         std::pair(Phase::EXPLORATION, SIGINT), std::pair(Phase::EXPLORATION, SIGTERM),
                                         std::pair(Phase::FILS, SIGINT), std::pair(Phase::FILS, SIGTERM),
                                         std::pair(Phase::ECRITURE, SIGINT), std::pair(Phase::ECRITURE, SIGTERM)),
                         nomDePhase);

TEST(Programme, AReaderThatLeavesAmidstALongProofEndsItQuietly) {
    const Resultat r = lancer("-C -v; echo $? >&2; } | head -c 10", longue(), "{ ");
    EXPECT_EQ(r.erreurs, "0\n");
    EXPECT_EQ(r.sortie, "the net is");
}

#ifndef __SANITIZE_ADDRESS__  // which needs more address space than any limit leaves
TEST(Programme, OutOfMemoryIsAnErrorAndNeverAVerdict) {
    erreurSans(lancer("-C -g", immense(), "ulimit -v 60000; "), "out of memory");
}

TEST(Programme, OutOfMemoryWhileReadingIsAnError) {
    const std::string longueLigne = "# " + std::string(60'000'000, 'x') + "\n";
    erreurSans(lancer("-C -g", longueLigne, "ulimit -v 60000; "), "out of memory");
    std::ostringstream net;
    for (int i = 0; i < 300'000; ++i) net << "tr t" << i << " p" << i << " -> p" << i + 1 << '\n';
    erreurSans(lancer("-C -g", net.str(), "ulimit -v 60000; "), "out of memory");
}

/// However little there is: the report is whole, or there is a message. With still less the system cannot start it.
TEST(Programme, AMalformedTextWithoutEndIsRefusedAtItsLine) {
    erreurSans(lancer("-C -g", "", "ulimit -v 60000; { echo 'tr t a -> b'; yes; } | "),
               "<stdin>:2: \"net\", \"tr\" or \"pl\" expected, not \"y\"");
}

TEST(Programme, OutOfMemoryFromTheStartIsAnError) {
    std::ostringstream kanban;
    familles::ecrire(kanban, std::ranges::find(familles::toutes(), "kanban", &familles::Famille::nom)->net(100));
    for (const std::string& net : {CROISSANT, kanban.str()}) {
        const std::string entier = lancer("-C -v", net).sortie;
        std::map<int, int> statuts;
        int limite = 7000;
        Resultat r{};
        const auto demarre = [&] { return r.statut == 0 || r.statut == 2; };
        const auto essayer = [&] {
            r = lancer("-C -v", net, "ulimit -c 0; ulimit -v " + std::to_string(limite) + "; ");
        };
        for (essayer(); demarre(); limite -= 20, essayer()) {
            ++statuts[r.statut];
            if (r.statut == 0)
                EXPECT_EQ(r.sortie, entier) << "within " << limite << " KiB";
            else
                erreurSans(r, "out of memory");
        }
        EXPECT_GT(statuts[0], 0);
        EXPECT_GT(statuts[2], 0);
        EXPECT_LT(limite, 3500) << r.erreurs;
        for (; limite > 2000; limite -= 20, essayer()) {
            EXPECT_FALSE(demarre()) << "within " << limite << " KiB";
            EXPECT_THAT(r.sortie, IsEmpty());
        }
    }
}

/// Whatever the limit, the report is whole or there is none.
TEST(Programme, OutOfMemoryWhileTheReportIsWrittenIsAnError) {
    const std::string net = longue();
    const std::string entier = lancer("-C -v", net).sortie;
    int echecs = 0;
    for (int limite = 8000; limite <= 20'000; limite += 500) {
        const Resultat r = lancer("-C -v", net, "ulimit -v " + std::to_string(limite) + "; ");
        echecs += r.statut == 2 ? 1 : 0;
        if (r.statut == 0)
            EXPECT_EQ(r.sortie, entier) << "within " << limite << " KiB";
        else
            erreurSans(r, "out of memory");
    }
    EXPECT_GT(echecs, 0);
}
#endif

/// Without shared libraries it starts at once.
TEST(Programme, ItIsLinkedWithoutAToolkit) {
    FILE* tube = popen("ldd '" TINA "' 2>&1", "r");
    ASSERT_NE(tube, nullptr);
    std::string bibliotheques;
    char ligne[512];
    while (std::fgets(ligne, sizeof ligne, tube) != nullptr) bibliotheques += ligne;
    pclose(tube);
#ifdef __SANITIZE_ADDRESS__
    EXPECT_THAT(bibliotheques, HasSubstr("libasan.so"));
    EXPECT_THAT(bibliotheques, Not(HasSubstr("gtk")));
    EXPECT_THAT(bibliotheques, Not(HasSubstr("glib")));
#else
    EXPECT_THAT(bibliotheques, HasSubstr("not a dynamic executable"));
#endif
}

}  // namespace
