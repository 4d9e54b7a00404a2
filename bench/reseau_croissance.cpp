// The growth picture of docs/net-analyser.md: `reseau_croissance > docs/net-analyser-growth.svg`. Markings expanded for
// an answer over the parameter n, on both axes by powers of ten, for families in which tokens are many; and beside each
// the size of the whole coverability set as far as it can be built in a few seconds.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Reseau/Conservation.h"
#include "Reseau/Couverture.h"
#include "Reseau/Reseau.h"
#include "reseau_familles.h"

namespace {

constexpr double GAUCHE = 70;
constexpr double BAS = 380;
constexpr double PAR_DECADE = 65;
constexpr std::uint64_t LIMITE = 300'000;  // markings of a coverability set

double x(double n) { return GAUCHE + PAR_DECADE * std::log10(n); }
double y(double markings) { return BAS - PAR_DECADE * std::log10(std::max(markings, 1.0)); }

void courbe(const std::vector<std::pair<double, double>>& points, const char* couleur, bool tirets) {
    std::printf("<polyline fill=\"none\" stroke=\"%s\" stroke-width=\"2\"%s points=\"", couleur,
                tirets ? " stroke-dasharray=\"6 4\"" : "");
    for (const auto& [n, m] : points) std::printf("%.1f,%.1f ", x(n), y(m));
    std::printf("\"/>\n");
}

void texte(double tx, double ty, const std::string& t, const char* couleur = "#333") {
    std::printf("<text x=\"%.0f\" y=\"%.0f\" fill=\"%s\">%s</text>\n", tx, ty, couleur, t.c_str());
}

}  // namespace

int main() {
    const std::vector<int> parametres{1, 2, 3, 5, 10, 30, 100, 1000, 10'000, 100'000, 1'000'000};
    const std::vector<std::pair<std::string, const char*>> familles{
        {"kanban", "#1b6ca8"}, {"fms", "#b5542c"}, {"readers-writers", "#3c7d3c"}, {"swimming pool", "#7a4b9d"}};
    std::printf(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"720\" height=\"430\" font-family=\"sans-serif\" "
        "font-size=\"13\">\n"
        "<rect width=\"720\" height=\"430\" fill=\"white\"/>\n");
    for (int decade = 0; decade <= 6; ++decade) {
        const std::string nombre = decade == 0 ? "1" : decade == 1 ? "10" : "10^" + std::to_string(decade);
        std::printf("<path stroke=\"#ddd\" d=\"M%.0f %.0fV%.0f\"/>\n", x(std::pow(10, decade)), BAS, y(1e5));
        texte(x(std::pow(10, decade)) - 10, BAS + 20, nombre);
        if (decade > 5) continue;
        std::printf("<path stroke=\"#ddd\" d=\"M%.0f %.0fH%.0f\"/>\n", GAUCHE, y(std::pow(10, decade)), x(1e6));
        texte(25, y(std::pow(10, decade)) + 4, nombre);
    }
    texte(GAUCHE, 30, "markings expanded for the answer (solid) and in the whole coverability set (dashed), over n");
    double ligne = y(1e5) + 10;
    for (const auto& [nom, couleur] : familles) {
        const auto famille = std::ranges::find(familles::toutes(), nom, &familles::Famille::nom);
        std::vector<std::pair<double, double>> reponse;
        std::vector<std::pair<double, double>> ensemble;
        bool entier = true;
        for (const int n : parametres) {
            const Reseau::Net net = famille->net(n);
            reponse.emplace_back(n, static_cast<double>(Reseau::analyser(net, {}).explores));
            if (!entier) continue;
            Reseau::Couverture c(net);
            if (Reseau::conservatif(net)) c.declarerIncomparables();
            entier = c.explorer(LIMITE, false);
            if (entier) ensemble.emplace_back(n, static_cast<double>(c.explores()));
        }
        courbe(reponse, couleur, false);
        courbe(ensemble, couleur, true);
        texte(x(1e6) + 20, ligne += 22, nom, couleur);
    }
    std::printf("</svg>\n");
    return 0;
}
