#include "Reseau/Ecriture.h"

namespace Reseau {

void ecrire(std::ostream& out, const Net& net, const Rapport& rapport) {
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
}

}  // namespace Reseau
