// The nets on which analysers of coverability are measured in the literature, as families that grow with a parameter n,
// and models of the editor's shape.
#pragma once

#include <string>
#include <vector>

#include "Reseau/Net.h"

namespace familles {

struct Famille {
    std::string nom;
    Reseau::Net (*net)(int n);
    std::vector<int> parametres;
};

/// All families, each with the parameters of the table.
const std::vector<Famille>& toutes();

}  // namespace familles
