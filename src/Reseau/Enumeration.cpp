#include "Reseau/Enumeration.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <span>

namespace Reseau {

namespace {

unsigned sectionDe(std::uint64_t h) { return static_cast<unsigned>(h >> 60); }

}  // namespace

Enumeration::Enumeration(const Net& net, std::vector<Compte>& maxima, unsigned fils, std::uint64_t seul)
    : net_(net),
      maxima_(maxima),
      champs_(maxima, false),
      franchissement_(net, champs_),
      attente_(champs_.octets()),
      fils_(fils),
      seul_(seul) {}

void Enumeration::admettre(const Creux& marquage, bool aDevelopper) {
    std::vector<Mot> m(champs_.mots(), 0);
    for (const Poids& p : marquage) champs_.poser(m.data(), p.place, p.compte);
    std::vector<std::uint8_t> garde(champs_.octets() + Champs::MARGE);
    champs_.ranger(m.data(), garde.data());
    const std::uint64_t h = champs_.empreinte(m.data());
    sections_[sectionDe(h)].ajouter(champs_, garde.data(), h);
    if (aDevelopper) std::memcpy(attente_.ajouter(), garde.data(), champs_.octets());
}

std::uint64_t Enumeration::taille() const {
    std::uint64_t n = 0;
    for (const Ensemble& e : sections_) n += e.taille();
    return n;
}

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
    const unsigned n = convier(nombre >= LOT_SEUL && taille() * octets() >= seul_);
    const bool profond = developpes_ < PROFOND;
    const std::uint64_t premier = profond ? attente_.taille() - nombre : 0;
    while (true) {
        executer(
            n, [&](unsigned i) { developper(tranches_[i], premier + nombre * i / n, premier + nombre * (i + 1) / n); });
        bool etroit = false;
        for (unsigned i = 0; i < n; ++i) {
            etroit = etroit || tranches_[i].etroit;
            for (std::size_t p = 0; p < maxima_.size(); ++p) maxima_[p] = std::max(maxima_[p], tranches_[i].maxima[p]);
        }
        if (!etroit) break;
        elargir(n);
    }
    executer(n, [&](unsigned i) {
        for (unsigned s = i; s < SECTIONS; s += n) {
            nouveaux_[s].vider();
            accueillir(s, n, [&](const std::uint8_t* garde) {
                std::memcpy(nouveaux_[s].allonger(octets(), GRAIN), garde, octets());
            });
        }
    });
    for (std::uint64_t i = 0; i < nombre; ++i) profond ? attente_.oter() : attente_.oterPremier();
    for (const Liasse& nouveaux : nouveaux_)
        for (std::uint32_t i = 0; i < nouveaux.taille(); ++i)
            std::memcpy(attente_.ajouter(), nouveaux.en(i, octets()), octets());
    developpes_ += nombre;
    return nombre;
}

/// Finds the successors of some of those that wait.
void Enumeration::developper(Tranche& tranche, std::uint64_t debut, std::uint64_t fin) const {
    for (Liasse& s : tranche.successeurs) s.vider();
    tranche.maxima.resize(maxima_.size(), 0);
    tranche.etroit = false;
    tranche.parent.resize(champs_.mots());
    std::vector<Mot>& courant = tranche.courant;
    for (std::uint64_t i = debut; i < fin; ++i) {
        champs_.reprendre(attente_.en(i), tranche.parent.data());
        franchissement_.utiles(tranche.parent.data(), tranche.tirs);
        for (const std::uint32_t t : tranche.tirs) {
            courant = tranche.parent;
            const bool tient = franchissement_.tirer(t, courant.data());
            for (const Poids& e : net_.transitions[t].effet)
                if (e.compte > 0)
                    tranche.maxima[e.place] = std::max(tranche.maxima[e.place],
                                                       somme(champs_.lire(tranche.parent.data(), e.place), e.compte));
            if (!tient) {
                tranche.etroit = true;
                continue;
            }
            trier(tranche, courant.data());
        }
    }
}

/// Puts a marking with those of its section.
void Enumeration::trier(Tranche& tranche, const Mot* m) const {
    Liasse& section = tranche.successeurs[sectionDe(champs_.empreinte(m))];
    champs_.ranger(m, section.allonger(octets(), GRAIN));
}

/// Takes a block out of a set and sorts what is in it.
void Enumeration::convertirBloc(Tranche& tranche, const Champs& anciens, Ensemble& ensemble, std::size_t bloc) const {
    tranche.parent.resize(anciens.mots());
    tranche.courant.resize(champs_.mots());
    ensemble.liberer(anciens, bloc, [&](const std::uint8_t* garde) {
        anciens.reprendre(garde, tranche.parent.data());
        convertir(anciens, tranche.parent.data(), champs_, tranche.courant.data());
        trier(tranche, tranche.courant.data());
    });
}

/// Takes up what the first `n` slices have for one section, and calls f(kept marking) for what is new.
template <class F>
void Enumeration::accueillir(unsigned section, unsigned n, F&& neuf) {
    Ensemble& ensemble = sections_[section];
    std::array<std::uint64_t, GROUPE> empreintes;  // of a few at once, so that memory is asked for them all together
    for (unsigned t = 0; t < n; ++t) {
        const Liasse& arrives = tranches_[t].successeurs[section];
        for (std::uint32_t debut = 0; debut < arrives.taille(); debut += GROUPE) {
            const std::uint32_t nombre = std::min<std::uint32_t>(GROUPE, arrives.taille() - debut);
            for (std::uint32_t i = 0; i < nombre; ++i) {
                empreintes[i] = champs_.empreinte(arrives.en(debut + i, octets()));
                ensemble.annoncer(empreintes[i]);
            }
            for (std::uint32_t i = 0; i < nombre; ++i) ensemble.approcher(champs_, empreintes[i]);
            for (std::uint32_t i = 0; i < nombre; ++i) {
                const std::uint8_t* garde = arrives.en(debut + i, octets());
                if (ensemble.ajouter(champs_, garde, empreintes[i])) neuf(garde);
            }
        }
    }
}

/// Packs everything anew, in fields that hold the maxima: one block of an old section by each thread, and then each
/// section takes up what belongs there now.
void Enumeration::elargir(unsigned n) {
    const Champs anciens = champs_;
    champs_ = Champs(elargissement_.plafonds(maxima_, taille()), false);
    franchissement_.traduire(champs_);
    nouveaux_ = {};
    for (Tranche& t : tranches_) t.successeurs = {};
    std::array<Ensemble, SECTIONS> anciennes;
    anciennes.swap(sections_);
    for (unsigned s = 0; s < SECTIONS; s += n) {
        const std::span<Ensemble> ensemble(&anciennes[s], std::min(n, SECTIONS - s));
        const std::size_t blocs = std::ranges::max_element(ensemble, {}, &Ensemble::blocs)->blocs();
        for (std::size_t bloc = 0; bloc < blocs; ++bloc) {
            executer(n, [&](unsigned i) {
                for (Liasse& l : tranches_[i].successeurs) l.vider();
                if (i < ensemble.size()) convertirBloc(tranches_[i], anciens, ensemble[i], bloc);
            });
            executer(n, [&](unsigned i) {
                for (unsigned section = i; section < SECTIONS; section += n)
                    accueillir(section, n, [](const std::uint8_t*) {});
            });
        }
    }
    std::vector<Mot> de(anciens.mots());
    std::vector<Mot> vers(champs_.mots());
    attente_.refondre(octets(), [&](const std::uint8_t* garde, std::uint8_t* place) {
        anciens.reprendre(garde, de.data());
        convertir(anciens, de.data(), champs_, vers.data());
        champs_.ranger(vers.data(), place);
    });
}

}  // namespace Reseau
