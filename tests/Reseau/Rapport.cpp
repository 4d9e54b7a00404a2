#include "Rapport.h"

#include <sstream>

namespace essai {

std::map<std::string, long long> comptesDuRapport(const std::string& rapport) {
    std::map<std::string, long long> comptes;
    std::istringstream lignes(rapport);
    for (std::string ligne; std::getline(lignes, ligne);) {
        const std::size_t deuxPoints = ligne.find(':');
        if (deuxPoints == std::string::npos) continue;
        std::istringstream mots(ligne.substr(deuxPoints + 1));
        for (std::string mot; mots >> mot;) {
            const std::size_t etoile = mot.rfind('*');
            const std::string nom = mot.substr(0, etoile);
            long long compte = 1;
            if (etoile != std::string::npos)
                compte = mot.substr(etoile) == "*w" ? -1 : std::stoll(mot.substr(etoile + 1));
            long long& vu = comptes[nom];
            if (compte == -1 || (vu != -1 && compte > vu)) vu = compte;
        }
    }
    return comptes;
}

}  // namespace essai
