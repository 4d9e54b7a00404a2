// The order in which an answer is looked for: the net is cut into parts, all parts are tried for a short while, and
// then each is taken to its end. The answers are put together again in the numbers of the whole net.
#include "Reseau/Reseau.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

#include "Reseau/Certificat.h"
#include "Reseau/Parties.h"
#include "Reseau/Resolution.h"

namespace Reseau {

namespace {

/// Markings of one part in which each of its places reaches its bound.
std::vector<Creux> temoins(const Resolution& resolution, std::size_t places) {
    std::vector<bool> montree(places, false);
    std::vector<Creux> marquages;
    for (std::uint32_t p = 0; p < places; ++p) {
        if (montree[p] || resolution.borne(p) == 0) continue;
        marquages.push_back(resolution.temoin(p));
        for (const Poids& v : marquages.back())
            if (v.compte == resolution.borne(v.place)) montree[v.place] = true;
    }
    return marquages;
}

/// The parts are independent, so any markings of theirs are reached together: the n-th of each makes the n-th of the
/// whole.
class Assemblage {
public:
    explicit Assemblage(const Net& net) : constantes_(net.places.size(), true), initial_(net.initial) {}

    void ajouter(const Partie& partie, std::vector<Creux> marquages) {
        for (const std::uint32_t p : partie.places) constantes_[p] = false;
        for (Creux& m : marquages)
            for (Poids& v : m) v.place = partie.places[v.place];
        if (!marquages.empty()) parties_.push_back(std::move(marquages));
    }

    std::vector<Creux> marquages() const {
        Creux fixe;
        for (std::uint32_t p = 0; p < initial_.size(); ++p)
            if (constantes_[p] && initial_[p] > 0) fixe.push_back({p, initial_[p]});
        std::size_t nombre = fixe.empty() ? 0 : 1;
        for (const auto& m : parties_) nombre = std::max(nombre, m.size());
        std::vector<Creux> entiers(nombre, fixe);
        for (std::size_t i = 0; i < nombre; ++i) {
            for (const auto& m : parties_) {
                const Creux& choisi = m[std::min(i, m.size() - 1)];
                entiers[i].insert(entiers[i].end(), choisi.begin(), choisi.end());
            }
            std::ranges::sort(entiers[i], {}, &Poids::place);
        }
        return entiers;
    }

private:
    std::vector<bool> constantes_;
    std::vector<Compte> initial_;
    std::vector<std::vector<Creux>> parties_;
};

}  // namespace

Rapport analyser(const Net& net, const Options& options) {
    const std::vector<Partie> parties = decouper(net);
    std::vector<std::unique_ptr<Resolution>> resolutions;
    Rapport rapport;
    for (const Partie& partie : parties) {
        resolutions.push_back(std::make_unique<Resolution>(partie.net, options.fils));
        resolutions.back()->essayer(options);
        rapport.bornee = rapport.bornee && resolutions.back()->bornee();
        if (options.verdictSeul && !rapport.bornee) break;
    }
    Assemblage assemblage(net);
    std::ostringstream certificat;
    certificat.exceptions(std::ios::badbit);  // or it would swallow that memory runs out
    if (options.preuves) certifierMortes(certificat, net);
    if (!options.verdictSeul) rapport.bornes = net.initial;
    for (std::size_t i = 0; i < resolutions.size(); ++i) {
        Resolution& resolution = *resolutions[i];
        if (!options.verdictSeul || rapport.bornee) resolution.finir(options);
        rapport.bornee = rapport.bornee && resolution.bornee();
        rapport.explores += resolution.explores();
        // Of a net that is not bounded, the verdict rests on the part that is not.
        if (options.preuves && !(options.verdictSeul && resolution.bornee() && !rapport.bornee))
            certifier(certificat, net, parties[i], resolution, options.verdictSeul);
        if (options.verdictSeul) continue;
        for (std::uint32_t p = 0; p < parties[i].places.size(); ++p)
            rapport.bornes[parties[i].places[p]] = resolution.borne(p);
        assemblage.ajouter(parties[i], temoins(resolution, parties[i].places.size()));
    }
    if (!options.verdictSeul) rapport.marquages = assemblage.marquages();
    rapport.certificat = certificat.str();
    return rapport;
}

}  // namespace Reseau
