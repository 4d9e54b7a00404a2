// The program as the editor and a person at a terminal meet it: options, report form, failures, signals,
// pipes, memory.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>

#include "Outils.h"
#include "Rapport.h"

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

/// Waits until the process has several threads, as it has at work where there are several cores.
void attendreLesFils(pid_t processus) {
    const std::string fils = "/proc/" + std::to_string(processus) + "/task";
    for (int i = 0; i < 4500 && std::thread::hardware_concurrency() > 1; ++i) {
        std::error_code absent;
        if (std::distance(std::filesystem::directory_iterator(fils, absent), {}) > 1) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(std::thread::hardware_concurrency(), 1U) << "no second thread has been started";
}

struct Interruption {
    int etat;  // wait status
    std::string sortie;
    std::string erreurs;
    std::chrono::steady_clock::duration delai;  // from the signal to the end
};

/// Starts the analyser on a net without end, and sends it `signal` after half a second, or when its threads run.
Interruption interrompu(int signal, bool fils) {
    char nom[] = "/tmp/reseau-XXXXXX";
    const int entree = mkstemp(nom);
    unlink(nom);
    const std::string net = immense();
    EXPECT_EQ(write(entree, net.data(), net.size()), static_cast<ssize_t>(net.size()));
    lseek(entree, 0, SEEK_SET);
    int tubes[2][2];
    EXPECT_EQ(pipe(tubes[0]) | pipe(tubes[1]), 0);
    const pid_t enfant = fork();
    if (enfant == 0) {
        dup2(entree, STDIN_FILENO);
        dup2(tubes[0][1], STDOUT_FILENO);
        dup2(tubes[1][1], STDERR_FILENO);
        for (auto& tube : tubes) close(tube[0]);
        execl(TINA, TINA, "-C", "-g", nullptr);
        _exit(127);
    }
    close(entree);
    for (auto& tube : tubes) close(tube[1]);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    if (fils) attendreLesFils(enfant);
    const auto debut = std::chrono::steady_clock::now();
    kill(enfant, signal);
    Interruption resultat{};
    waitpid(enfant, &resultat.etat, 0);
    resultat.delai = std::chrono::steady_clock::now() - debut;
    const auto tout = [](int tube) {
        std::string texte;
        char lu[256];
        for (ssize_t n; (n = read(tube, lu, sizeof lu)) > 0;) texte.append(lu, static_cast<std::size_t>(n));
        close(tube);
        return texte;
    };
    resultat.sortie = tout(tubes[0][0]);
    resultat.erreurs = tout(tubes[1][0]);
    return resultat;
}

void verifierInterruption(int signal, bool fils) {
    const Interruption i = interrompu(signal, fils);
    ASSERT_TRUE(WIFEXITED(i.etat));
    EXPECT_EQ(WEXITSTATUS(i.etat), 128 + signal);
    EXPECT_THAT(i.sortie, IsEmpty());
    EXPECT_EQ(i.erreurs, "tina: interrupted\n");
    EXPECT_LT(i.delai, std::chrono::seconds(2));
}

TEST(Programme, ASignalEndsItAtOnceWithAMessageAndItsStatus) {
    verifierInterruption(SIGINT, false);
    verifierInterruption(SIGTERM, false);
}

TEST(Programme, ASignalEndsItAtOnceWhenSeveralThreadsRun) { verifierInterruption(SIGTERM, true); }

#ifndef __SANITIZE_ADDRESS__  // which needs more address space than any limit leaves
TEST(Programme, OutOfMemoryIsAnErrorAndNeverAVerdict) {
    erreurSans(lancer("-C -g", immense(), "ulimit -v 60000; "), "out of memory");
}
#endif

TEST(Programme, ItIsLinkedWithoutAToolkit) {
    FILE* tube = popen("ldd '" TINA "'", "r");
    ASSERT_NE(tube, nullptr);
    std::string bibliotheques;
    char ligne[512];
    while (std::fgets(ligne, sizeof ligne, tube) != nullptr) bibliotheques += ligne;
    pclose(tube);
    EXPECT_THAT(bibliotheques, HasSubstr("libc.so"));
    EXPECT_THAT(bibliotheques, Not(HasSubstr("gtk")));
    EXPECT_THAT(bibliotheques, Not(HasSubstr("glib")));
}

}  // namespace
