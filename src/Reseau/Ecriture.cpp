#include "Reseau/Ecriture.h"

#include "Reseau/Texte.h"

namespace Reseau {

std::string ecrire(const Net& net, const Rapport& rapport) {
    Texte out;
    out << (rapport.bornee ? "the net is bounded\n" : "the net is not bounded\n");
    std::size_t numero = 0;
    for (const Creux& marquage : rapport.marquages) {
        out << numero++ << " :";
        for (const Poids& v : marquage) {
            out << ' ' << net.places[v.place];
            if (v.compte == OMEGA)
                out << "*w";
            else if (v.compte != 1)
                out << '*' << v.compte;
        }
        out << '\n';
    }
    out << rapport.certificat;
    return std::move(out).prendre();
}

}  // namespace Reseau
