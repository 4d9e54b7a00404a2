// The program: `tina [-C] [-a] [-g] [-v] [FILE]`. It answers in full or not at all: the report is written when the
// analysis is done, and whatever goes wrong is a message on standard error and an exit status, never half a
// report.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"

namespace {

constexpr int STATUT_ERREUR = 2;

constexpr const char* AIDE =
    "usage: tina [-C] [-a] [-g] [-v] [FILE]\n"
    "Decides whether a place/transition net is bounded, and the largest count of each of its places.\n"
    "The net is read from FILE, or from standard input.\n"
    "\n"
    "  -C          by coverability, the only construction there is\n"
    "  -a          only the verdict, \"bounded\" or \"not bounded\"\n"
    "  -g          the verdict and markings that show every place's largest count (the default)\n"
    "  -v          besides, the proof of it all, one fact a line\n"
    "  -h, --help  this text\n"
    "  --version   the version\n"
    "\n"
    "The net, one declaration a line:\n"
    "  net NAME\n"
    "  tr NAME [PLACE | PLACE*WEIGHT]... -> [PLACE | PLACE*WEIGHT]...\n"
    "  pl NAME [(TOKENS)]\n"
    "  # a comment\n"
    "\n"
    "The exit status is 0 when the question was answered, 2 on any error.\n";

struct Commande {
    Reseau::Options options;
    std::optional<std::string> fichier;  // none: standard input
};

int echec(const std::string& message) {
    std::fprintf(stderr, "tina: %s\n", message.c_str());
    return STATUT_ERREUR;
}

/// Ends the program with a message, and needs no memory for it.
template <std::size_t N>
[[noreturn]] void finir(const char (&message)[N], int statut) {
    // There is nothing to do about a message that cannot be written.
    if (write(STDERR_FILENO, message, N - 1) < 0) _exit(statut);
    _exit(statut);
}

extern "C" void interrompre(int signal) { finir("tina: interrupted\n", 128 + signal); }

/// Every exception is caught. One that is not could not be thrown, since there was no memory for it.
[[noreturn]] void manquer() { finir("tina: out of memory\n", STATUT_ERREUR); }

/// Memory is granted on credit and the one who cannot pay is killed without a word, which a reader of the
/// report would take for an answer. So the address space is limited to what the machine has, and running out
/// is an exception.
void limiterMemoire() {
#ifndef __SANITIZE_ADDRESS__  // the sanitizer's shadow memory alone is beyond any limit
    rlimit limite{};
    if (getrlimit(RLIMIT_AS, &limite) != 0) return;
    const auto machine = static_cast<rlim_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<rlim_t>(sysconf(_SC_PAGE_SIZE));
    const rlim_t part = machine / 10 * 9;
    if (limite.rlim_cur == RLIM_INFINITY || limite.rlim_cur > part) {
        limite.rlim_cur = part;
        setrlimit(RLIMIT_AS, &limite);
    }
#endif
}

int ecrireTout(std::string_view texte) {
    while (!texte.empty()) {
        const ssize_t ecrits = write(STDOUT_FILENO, texte.data(), texte.size());
        if (ecrits < 0 && errno == EPIPE) return 0;  // the reader has heard enough
        if (ecrits < 0) return echec(std::string("cannot write the report: ") + std::strerror(errno));
        texte.remove_prefix(static_cast<std::size_t>(ecrits));
    }
    return 0;
}

/// @param nom the file's; none: standard input
Reseau::Net lireNet(const std::optional<std::string>& nom) {
    const int fichier = nom ? open(nom->c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO;
    if (fichier < 0) throw std::runtime_error("cannot open " + *nom + ": " + std::strerror(errno));
    const std::string source = nom.value_or("<stdin>");
    char bloc[4096];
    const auto suite = [&] {
        const ssize_t lus = read(fichier, bloc, sizeof bloc);
        if (lus < 0) throw std::runtime_error(source + ": cannot be read");
        return std::string_view(bloc, static_cast<std::size_t>(lus));
    };
    Reseau::Net net = Reseau::lire(suite, source);
    close(fichier);
    return net;
}

int analyser(const Commande& commande) {
    const Reseau::Net net = lireNet(commande.fichier);
    return ecrireTout(Reseau::ecrire(net, Reseau::analyser(net, commande.options)));
}

/// Reads the command line; when that already settles the exit status, the status is in `statut`.
Commande lireCommande(int argc, char** argv, std::optional<int>& statut) {
    Commande commande;
    for (int i = 1; i < argc && !statut; ++i) {
        const std::string mot = argv[i];
        if (mot == "-h" || mot == "--help")
            statut = ecrireTout(AIDE);
        else if (mot == "--version")
            statut = ecrireTout("tina " KLV_VERSION ", the net analyser of klv\n");
        else if (mot == "-a")
            commande.options.verdictSeul = true;
        else if (mot == "-v")
            commande.options.preuves = true;
        else if (mot.starts_with('-') && mot != "-C" && mot != "-g")
            statut = echec("unknown option " + mot + ", see --help");
        else if (!mot.starts_with('-') && commande.fichier)
            statut = echec("more than one file, " + *commande.fichier + " and " + mot);
        else if (!mot.starts_with('-'))
            commande.fichier = mot;
    }
    return commande;
}

}  // namespace

int main(int argc, char** argv) {
    std::set_terminate(manquer);
    std::signal(SIGINT, interrompre);
    std::signal(SIGTERM, interrompre);
    std::signal(SIGPIPE, SIG_IGN);
    limiterMemoire();
    try {
        std::optional<int> statut;
        const Commande commande = lireCommande(argc, argv, statut);
        return statut ? *statut : analyser(commande);
    } catch (const std::bad_alloc&) {
        return echec("out of memory");
    } catch (const std::exception& e) {
        return echec(e.what());
    }
}
