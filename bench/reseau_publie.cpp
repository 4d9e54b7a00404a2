// A published construction as a program: `reseau_publie CONSTRUCTION ORDER FILE` reads a net in the analyser's format
// and writes the verdict and the number of maximal markings. CONSTRUCTION and ORDER count from 0 in
// `etalon::publiees()`.
#include <algorithm>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <string>

#include "Reseau/Lecture.h"
#include "reseau_publies.h"

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    try {
        const etalon::Publiee& publiee = etalon::publiees().at(std::stoul(argv[1]));
        const etalon::Ordre ordre = publiee.ordres.at(std::stoul(argv[2]));
        std::ifstream fichier(argv[3]);
        const std::string texte{std::istreambuf_iterator<char>(fichier), {}};
        const Reseau::Net net = Reseau::lire(texte, argv[3]);
        const auto ensemble =
            publiee.construire(net, ordre, std::numeric_limits<std::uint64_t>::max()).value().maximaux;
        const bool bornee = std::ranges::none_of(
            ensemble, [](const etalon::Dense& m) { return std::ranges::find(m, Reseau::OMEGA) != m.end(); });
        std::cout << (bornee ? "the net is bounded\n" : "the net is not bounded\n") << ensemble.size() << '\n';
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        return 2;
    }
    return 0;
}
