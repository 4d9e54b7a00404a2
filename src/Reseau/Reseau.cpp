// The order in which an answer is looked for: the net is made smaller and cut into parts, all parts are tried for a
// short while, and then each is taken to its end. The answers are put together again in the numbers of the whole net.
#include "Reseau/Reseau.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "Reseau/Certificat.h"
#include "Reseau/Conservation.h"
#include "Reseau/Parties.h"
#include "Reseau/Reduction.h"
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
/// whole. Places in none keep their initial count, or another one tells theirs.
class Assemblage {
public:
    Assemblage(const Net& net, const Reduction& reduction) : reduction_(reduction), fixes_(net.initial) {}

    void ajouter(const Partie& partie, std::vector<Creux> marquages) {
        for (const std::uint32_t p : partie.places) fixes_[p] = 0;
        for (Creux& m : marquages)
            for (Poids& v : m) v.place = partie.places[v.place];
        if (!marquages.empty()) parties_.push_back(std::move(marquages));
    }

    std::vector<Creux> marquages() const {
        std::size_t nombre = 1;
        for (const auto& m : parties_) nombre = std::max(nombre, m.size());
        std::vector<Creux> entiers;
        for (std::size_t i = 0; i < nombre; ++i) {
            std::vector<Compte> comptes = fixes_;
            for (const auto& m : parties_)
                for (const Poids& v : m[std::min(i, m.size() - 1)]) comptes[v.place] = v.compte;
            reduction_.restituer(comptes);
            entiers.emplace_back();
            for (std::uint32_t p = 0; p < comptes.size(); ++p)
                if (comptes[p] > 0) entiers.back().push_back({p, comptes[p]});
        }
        if (entiers[0].empty()) return {};  // then there is no other
        return entiers;
    }

private:
    const Reduction& reduction_;
    std::vector<Compte> fixes_;  // by place, 0 for those of the parts
    std::vector<std::vector<Creux>> parties_;
};

}  // namespace

Rapport analyser(const Net& net, const Options& options) {
    Reduction reduction(net);
    const std::vector<Partie> parties = decouper(reduction);
    std::vector<std::unique_ptr<Resolution>> resolutions;
    Rapport rapport;
    for (const Partie& partie : parties) {
        resolutions.push_back(std::make_unique<Resolution>(partie.net, options.fils));
        // In the given net: a place that stands for others weighs as much as they do.
        if (sommeConstante(net, partie.transitions)) resolutions.back()->couverture.declarerIncomparables();
        resolutions.back()->essayer(options);
        rapport.bornee = rapport.bornee && resolutions.back()->bornee();
        if (options.verdictSeul && !rapport.bornee) break;
    }
    Assemblage assemblage(net, reduction);
    Texte certificat;
    if (options.preuves) certifier(certificat, net, reduction);
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
    if (!options.verdictSeul) {
        reduction.restituer(rapport.bornes);
        rapport.marquages = assemblage.marquages();
    }
    rapport.certificat = std::move(certificat).prendre();
    return rapport;
}

}  // namespace Reseau
