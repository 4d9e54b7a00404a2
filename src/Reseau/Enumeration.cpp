#include "Reseau/Enumeration.h"

#include <algorithm>
#include <functional>

namespace Reseau {

namespace {

unsigned sectionDe(std::uint64_t h) { return static_cast<unsigned>(h >> 60); }

}  // namespace

Enumeration::Enumeration(const Net& net, std::vector<Compte>& maxima, unsigned fils)
    : net_(net),
      maxima_(maxima),
      champs_(maxima, false),
      franchissement_(net, champs_),
      attente_(champs_.octets()),
      fils_(fils) {}

void Enumeration::admettre(const Creux& marquage, bool aDevelopper) {
    std::vector<Mot> m(champs_.mots(), 0);
    for (const Poids& p : marquage) champs_.poser(m.data(), p.place, p.compte);
    const std::uint64_t h = empreinte(m.data(), m.size());
    sections_[sectionDe(h)].ajouter(champs_, m.data(), h);
    if (aDevelopper) attendre(m.data());
}

std::uint64_t Enumeration::taille() const {
    std::uint64_t n = 0;
    for (const Ensemble& e : sections_) n += e.taille();
    return n;
}

void Enumeration::attendre(const Mot* m) { champs_.ranger(m, attente_.ajouter()); }

/// How many threads take part, with a slice for each.
unsigned Enumeration::convier(bool partager) {
    if (partager && fils_ != 1 && !equipe_) equipe_ = std::make_unique<Equipe>(fils_);
    const unsigned n = partager && equipe_ ? equipe_->taille() : 1;
    if (tranches_.size() < n) tranches_.resize(n);
    return n;
}

void Enumeration::executer(unsigned n, const std::function<void(unsigned)>& travail) {
    if (n == 1)
        travail(0);
    else
        equipe_->executer(travail);
}

std::uint64_t Enumeration::avancer(std::uint64_t limite) {
    const std::uint64_t lot = std::clamp(developpes_ / PART, std::min(LOT_MOINDRE, developpes_ / 8 + 1), LOT);
    const std::uint64_t nombre = std::min({attente_.taille(), limite, lot});
    const unsigned n = convier(nombre >= SEUL && developpes_ >= TOT);
    prendre(nombre);
    while (true) {
        executer(n, [&](unsigned i) { developper(tranches_[i], nombre * i / n, nombre * (i + 1) / n); });
        bool etroit = false;
        for (unsigned i = 0; i < n; ++i) {
            etroit = etroit || tranches_[i].etroit;
            for (std::size_t p = 0; p < maxima_.size(); ++p) maxima_[p] = std::max(maxima_[p], tranches_[i].maxima[p]);
        }
        if (!etroit) break;
        elargir();
    }
    executer(n, [&](unsigned i) {
        for (unsigned s = i; s < SECTIONS; s += n) accueillir(s, n);
    });
    for (const std::vector<Mot>& nouveaux : nouveaux_)
        for (std::size_t i = 0; i < nouveaux.size(); i += champs_.mots()) attendre(&nouveaux[i]);
    developpes_ += nombre;
    return nombre;
}

void Enumeration::prendre(std::uint64_t nombre) {
    lot_.resize(nombre * champs_.mots());
    for (std::uint64_t i = 0; i < nombre; ++i) {
        const bool profond = developpes_ < PROFOND;
        champs_.reprendre(attente_.en(profond ? attente_.taille() - 1 : 0), &lot_[i * champs_.mots()]);
        if (profond)
            attente_.oter();
        else
            attente_.oterPremier();
    }
}

/// Finds the successors of a slice of the batch.
void Enumeration::developper(Tranche& tranche, std::uint64_t debut, std::uint64_t fin) const {
    const std::size_t mots = champs_.mots();
    for (std::vector<Mot>& s : tranche.successeurs) s.clear();
    tranche.maxima.resize(maxima_.size(), 0);
    tranche.etroit = false;
    std::vector<Mot>& courant = tranche.courant;
    courant.resize(mots);
    for (std::uint64_t i = debut; i < fin; ++i) {
        const Mot* parent = &lot_[i * mots];
        franchissement_.utiles(parent, tranche.tirs);
        for (const std::uint32_t t : tranche.tirs) {
            std::copy_n(parent, mots, courant.begin());
            const bool tient = franchissement_.tirer(t, courant.data());
            for (const Poids& e : net_.transitions[t].effet)
                if (e.compte > 0)
                    tranche.maxima[e.place] =
                        std::max(tranche.maxima[e.place], somme(champs_.lire(parent, e.place), e.compte));
            if (!tient) {
                tranche.etroit = true;
                continue;
            }
            const std::uint64_t h = empreinte(courant.data(), mots);
            std::vector<Mot>& sortie = tranche.successeurs[sectionDe(h)];
            sortie.push_back(h);
            sortie.insert(sortie.end(), courant.begin(), courant.end());
        }
    }
}

/// Takes up what the first `n` slices have for one section.
void Enumeration::accueillir(unsigned section, unsigned n) {
    const std::size_t pas = champs_.mots() + 1;
    const std::size_t avance = 8 * pas;
    Ensemble& ensemble = sections_[section];
    std::vector<Mot>& nouveaux = nouveaux_[section];
    nouveaux.clear();
    for (unsigned t = 0; t < n; ++t) {
        const std::vector<Mot>& arrives = tranches_[t].successeurs[section];
        for (std::size_t i = 0; i < arrives.size(); i += pas) {
            if (i + avance < arrives.size()) ensemble.annoncer(arrives[i + avance]);
            const Mot* m = &arrives[i + 1];
            if (ensemble.ajouter(champs_, m, arrives[i])) nouveaux.insert(nouveaux.end(), m, m + champs_.mots());
        }
    }
}

/// Converts everything to fields that hold the maxima.
void Enumeration::elargir() {
    const Champs anciens = champs_;
    champs_ = Champs(elargissement_.plafonds(maxima_, taille()), false);
    franchissement_.traduire(champs_);
    std::vector<Mot> de(anciens.mots());
    std::vector<Mot> vers(champs_.mots());

    std::array<Ensemble, SECTIONS> anciennes;
    anciennes.swap(sections_);
    for (Ensemble& ancienne : anciennes) {
        ancienne.pourChaque(anciens, [&](const std::uint8_t* garde) {
            anciens.reprendre(garde, de.data());
            convertir(anciens, de.data(), champs_, vers.data());
            const std::uint64_t h = empreinte(vers.data(), vers.size());
            sections_[sectionDe(h)].ajouter(champs_, vers.data(), h);
        });
        ancienne = Ensemble();
    }
    Blocs converties(champs_.octets());
    for (; attente_.taille() > 0; attente_.oterPremier()) {
        anciens.reprendre(attente_.en(0), de.data());
        convertir(anciens, de.data(), champs_, vers.data());
        champs_.ranger(vers.data(), converties.ajouter());
    }
    attente_ = std::move(converties);
    std::vector<Mot> lot(lot_.size() / anciens.mots() * champs_.mots());
    for (std::size_t i = 0; i * anciens.mots() < lot_.size(); ++i)
        convertir(anciens, &lot_[i * anciens.mots()], champs_, &lot[i * champs_.mots()]);
    lot_ = std::move(lot);
}

}  // namespace Reseau
