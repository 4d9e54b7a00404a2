// Queries walk the tree with an explicit stack; a leaf that grows too large is split in two.
#include "Reseau/Antichaine.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

namespace Reseau {

bool Antichaine::couvre(const Mot* m) const {
    if (branches_.empty()) return false;
    const Sonde sonde = champs_->sonder(m, pleins_);
    return champs_->epars() ? couvre<true>(sonde) : couvre<false>(sonde);
}

template <bool EPARS>
bool Antichaine::couvre(const Sonde sonde) const {
    const std::size_t octets = champs_->octets();
    pile_.assign(1, 0);
    while (!pile_.empty()) {
        const std::uint32_t ici = pile_.back();
        pile_.pop_back();
        if (!champs_->couvre<EPARS>(jointure(ici), sonde)) continue;
        const Branche& b = branches_[ici];
        if (b.place == FEUILLE) {
            const Liasse& l = feuilles_[b.suite];
            for (std::uint32_t i = 0; i < l.taille(); ++i)
                if (champs_->couvre<EPARS>(l.en(i, octets), sonde)) return true;
        } else {
            if (!franchit(b, sonde)) pile_.push_back(b.suite);
            pile_.push_back(b.suite + 1);
        }
    }
    return false;
}

bool Antichaine::contient(const Mot* m) const {
    if (branches_.empty()) return false;
    const Sonde sonde = champs_->sonder(m, pleins_);
    std::uint32_t ici = 0;
    while (branches_[ici].place != FEUILLE) ici = vers(branches_[ici], sonde);
    // The newest are asked for most.
    const Liasse& l = feuilles_[branches_[ici].suite];
    for (std::uint32_t i = l.taille(); i-- > 0;)
        if (champs_->egale(l.en(i, champs_->octets()), sonde)) return true;
    return false;
}

void Antichaine::retirer(const Mot* m) {
    if (branches_.empty()) return;
    const std::uint64_t avant = taille_;
    const Sonde sonde = champs_->sonder(m, pleins_);
    champs_->epars() ? retirer<true>(sonde) : retirer<false>(sonde);
    retires_ += avant - taille_;
    const std::size_t feuilles = feuilles_.size() - feuillesLibres_.size();
    if (feuilles > 1 && retires_ > taille_ && taille_ < feuilles * CLAIRSEME) {
        rebatir(0);
        retires_ = 0;
    }
}

template <bool EPARS>
void Antichaine::retirer(const Sonde sonde) {
    const std::size_t octets = champs_->octets();
    pile_.assign(1, 0);
    while (!pile_.empty()) {
        const std::uint32_t ici = pile_.back();
        pile_.pop_back();
        if (!champs_->couverte<EPARS>(rencontre(ici), sonde)) continue;
        const Branche& b = branches_[ici];
        if (b.place == FEUILLE) {
            Liasse& l = feuilles_[b.suite];
            std::uint32_t restent = 0;
            for (std::uint32_t i = 0; i < l.taille(); ++i) {
                if (champs_->couverte<EPARS>(l.en(i, octets), sonde)) continue;
                if (restent < i) std::copy_n(l.en(i, octets), octets, l.en(restent, octets));
                ++restent;
            }
            taille_ -= l.taille() - restent;
            if (restent < l.taille()) l.raccourcir(restent, octets, GRAIN);
        } else {
            pile_.push_back(b.suite);
            if (franchit(b, sonde)) pile_.push_back(b.suite + 1);
        }
    }
}

void Antichaine::ajouter(const Mot* m) {
    if (branches_.empty()) {
        branches_.emplace_back();
        bornes_.ajouter();
        Membres seul(1, std::vector<Mot>(m, m + champs_->mots()));
        batir(0, seul.begin(), seul.end(), 1);
    }
    const std::uint32_t ici = sousLaBranche(0, m);
    ++taille_;
    credit_ += CREDIT;
    if (feuilles_[branches_[ici].suite].taille() > branches_[ici].seuil) {
        const std::vector<std::uint32_t> chemin = chemin_;
        rebatir(ici);
        equilibrer(chemin);
    }
}

/// Puts `m` into its leaf below `branche`; the way there is left in `chemin_`.
/// @return the leaf's branch
std::uint32_t Antichaine::sousLaBranche(std::uint32_t branche, const Mot* m) {
    chemin_.clear();
    const Sonde sonde = champs_->sonder(m, pleins_);
    while (true) {
        chemin_.push_back(branche);
        englober(branche, sonde);
        const Branche& b = branches_[branche];
        if (b.place == FEUILLE) break;
        branche = vers(b, sonde);
    }
    champs_->ranger(m, feuilles_[branches_[branche].suite].allonger(champs_->octets(), GRAIN));
    return branche;
}

void Antichaine::englober(std::uint32_t branche, const Sonde& s) {
    std::uint8_t* bornes = bornes_.en(branche);
    champs_->joindre(bornes, s);
    champs_->rencontrer(bornes + champs_->octets(), s);
}

/// Builds anew the lowest subtree on the way to a leaf that is too deep for its size.
void Antichaine::equilibrer(const std::vector<std::uint32_t>& chemin) {
    const auto profondeurPermise = [this](std::uint64_t membres) {
        return static_cast<std::size_t>(3 * std::bit_width(membres / capacite()) + 3);
    };
    if (chemin.size() <= profondeurPermise(taille_)) return;
    std::uint64_t membres = compter(chemin.back());
    for (std::size_t hauteur = 1; hauteur < chemin.size(); ++hauteur) {
        const std::uint32_t ici = chemin[chemin.size() - 1 - hauteur];
        const std::uint32_t enfant = chemin[chemin.size() - hauteur];
        membres += compter(branches_[ici].suite + (enfant == branches_[ici].suite ? 1 : 0));
        if (membres * 2 > credit_) break;
        if (hauteur > profondeurPermise(membres)) {
            rebatir(ici);
            break;
        }
    }
    credit_ -= std::min(credit_, 2 * membres);
}

/// The members below `branche`.
std::uint64_t Antichaine::compter(std::uint32_t branche) const {
    std::uint64_t n = 0;
    pile_.assign(1, branche);
    while (!pile_.empty()) {
        const Branche& b = branches_[pile_.back()];
        pile_.pop_back();
        if (b.place == FEUILLE) {
            n += feuilles_[b.suite].taille();
        } else {
            pile_.push_back(b.suite);
            pile_.push_back(b.suite + 1);
        }
    }
    return n;
}

/// Builds a subtree anew from a sample of its members, and puts all of them into it.
void Antichaine::rebatir(std::uint32_t branche) {
    std::vector<Liasse> liasses;
    demonter(branche, liasses);
    std::size_t nombre = 0;
    for (const Liasse& l : liasses) nombre += l.taille();
    if (nombre == 0) {
        branches_[branche] = {static_cast<Compte>(capacite()), FEUILLE, nouvelleFeuille()};
        return;
    }
    const std::size_t poids = nombre / ECHANTILLON + 1;
    Membres echantillon;
    std::size_t rang = 0;
    for (const Liasse& l : liasses)
        for (std::uint32_t i = 0; i < l.taille(); ++i)
            if (rang++ % poids == 0) {
                echantillon.emplace_back(champs_->mots());
                champs_->reprendre(l.en(i, champs_->octets()), echantillon.back().data());
            }
    batir(branche, echantillon.begin(), echantillon.end(), poids);
    echantillon.clear();
    std::vector<Mot> m(champs_->mots());
    for (Liasse& l : liasses) {
        for (std::uint32_t i = 0; i < l.taille(); ++i) {
            champs_->reprendre(l.en(i, champs_->octets()), m.data());
            const std::uint32_t feuille = sousLaBranche(branche, m.data());
            if (feuilles_[branches_[feuille].suite].taille() > branches_[feuille].seuil) rebatir(feuille);
        }
        l = Liasse();
    }
}

/// Takes the leaves below `branche` away, and makes it a leaf of no number.
void Antichaine::demonter(std::uint32_t branche, std::vector<Liasse>& liasses) {
    const Branche b = std::exchange(branches_[branche], Branche());
    if (b.place == FEUILLE) {
        liasses.push_back(std::exchange(feuilles_[b.suite], Liasse()));
        feuillesLibres_.push_back(b.suite);
    } else {
        if (b.place == ENSEMBLE) seuilsLibres_.push_back(static_cast<std::uint32_t>(b.seuil));
        demonter(b.suite, liasses);
        demonter(b.suite + 1, liasses);
        pairesLibres_.push_back(b.suite);
    }
}

/// Makes `branche` the root of empty leaves for members like these, each of which stands for `poids`.
void Antichaine::batir(std::uint32_t branche, Membres::iterator debut, Membres::iterator fin, std::size_t poids) {
    champs_->ranger(debut->data(), bornes_.en(branche));
    champs_->ranger(debut->data(), bornes_.en(branche) + champs_->octets());
    for (auto m = debut; m != fin; ++m) {
        const Sonde sonde = champs_->sonder(m->data(), pleins_);
        englober(branche, sonde);
    }
    const auto nombre = static_cast<std::size_t>(fin - debut);
    const bool petite = nombre == 1 || nombre * poids <= capacite();
    const Coupe coupe = petite ? Coupe{FEUILLE, 0, nombre, {}} : meilleureCoupe(branche, debut, fin);
    if (coupe.place == FEUILLE) {
        const auto place = static_cast<Compte>(std::max(capacite(), petite ? 0 : 2 * nombre * poids));
        branches_[branche] = {place, FEUILLE, nouvelleFeuille()};
        return;
    }
    const Compte seuil = coupe.place == ENSEMBLE ? nouveauxSeuils(coupe.ensemble) : coupe.seuil;
    const Branche neuve{seuil, coupe.place, nouvellePaire()};
    branches_[branche] = neuve;
    const auto milieu = std::partition(debut, fin, [&](const auto& m) {
        const Sonde sonde = champs_->sonder(m.data(), pleins_);
        return !franchit(neuve, sonde);
    });
    batir(neuve.suite, debut, milieu, poids);
    batir(neuve.suite + 1, milieu, fin, poids);
}

std::uint32_t Antichaine::nouvellePaire() {
    if (pairesLibres_.empty()) {
        for (int i = 0; i < 2; ++i) {
            branches_.emplace_back();
            bornes_.ajouter();
        }
        return static_cast<std::uint32_t>(branches_.size() - 2);
    }
    const std::uint32_t paire = pairesLibres_.back();
    pairesLibres_.pop_back();
    return paire;
}

std::uint32_t Antichaine::nouvelleFeuille() {
    if (feuillesLibres_.empty()) {
        feuilles_.emplace_back();
        return static_cast<std::uint32_t>(feuilles_.size() - 1);
    }
    const std::uint32_t feuille = feuillesLibres_.back();
    feuillesLibres_.pop_back();
    return feuille;
}

std::uint32_t Antichaine::nouveauxSeuils(const Creux& ensemble) {
    if (seuilsLibres_.empty()) {
        seuilsLibres_.push_back(static_cast<std::uint32_t>(seuils_.taille()));
        seuils_.ajouter();
    }
    const std::uint32_t numero = seuilsLibres_.back();
    seuilsLibres_.pop_back();
    std::vector<Mot> seuils(champs_->mots(), 0);
    for (const Poids& p : ensemble) champs_->exiger(seuils.data(), p.place, p.compte);
    champs_->ranger(seuils.data(), seuils_.en(numero));
    return numero;
}

/// The place and the threshold that split these members of `branche`, or some of them when they are many, most evenly;
/// when the smaller part would be too small, a set of places that splits them in about equal parts; no place when there
/// is none.
Antichaine::Coupe Antichaine::meilleureCoupe(std::uint32_t branche, Membres::iterator debut,
                                             Membres::iterator fin) const {
    const auto pas = static_cast<std::size_t>(fin - debut) / (2 * CAPACITE) + 1;
    std::vector<const Mot*> membres;
    for (std::size_t i = 0; i < static_cast<std::size_t>(fin - debut); i += pas)
        membres.push_back(debut[static_cast<std::ptrdiff_t>(i)].data());
    const std::size_t nombre = membres.size();
    Coupe choix{FEUILLE, 0, nombre, {}};
    std::vector<Compte> comptes(nombre);
    std::vector<Compte> tries(nombre);
    std::vector<bool> touches(nombre, false);
    std::size_t nombreTouches = 0;
    champs_->pourChaqueDifference(jointure(branche), rencontre(branche), [&](std::uint32_t p) {
        if (choix.ecart <= nombre % 2) return;
        for (std::size_t i = 0; i < nombre; ++i) comptes[i] = tries[i] = champs_->lire(membres[i], p);
        parLeMilieu(tries, p, choix);
        if (2 * nombreTouches >= nombre || choix.place != FEUILLE) return;
        const auto seuil = seuilRare(tries);
        if (!seuil) return;
        choix.ensemble.push_back({p, *seuil});
        for (std::size_t i = 0; i < nombre; ++i) {
            if (comptes[i] < *seuil || touches[i]) continue;
            touches[i] = true;
            ++nombreTouches;
        }
    });
    if (choix.place == FEUILLE && std::min(nombreTouches, nombre - nombreTouches) * MOINDRE >= nombre)
        choix.place = ENSEMBLE;
    return choix;
}

/// Splits members with these counts of `place` by one of the two thresholds that part them most evenly, if that is more
/// even than `choix`.
void Antichaine::parLeMilieu(std::vector<Compte>& comptes, std::uint32_t place, Coupe& choix) {
    const std::size_t nombre = comptes.size();
    const auto milieu = comptes.begin() + static_cast<std::ptrdiff_t>(nombre / 2);
    std::ranges::nth_element(comptes, milieu, std::greater());
    const Compte median = *milieu;
    std::size_t plus = 0;
    std::size_t autant = 0;
    Compte auDessus = OMEGA;  // the least count above the median
    for (const Compte c : comptes) {
        if (c > median) {
            ++plus;
            auDessus = std::min(auDessus, c);
        } else if (c == median) {
            ++autant;
        }
    }
    const auto proposer = [&](std::size_t reunis, Compte seuil) {  // so many members have at least the threshold
        const std::size_t ecart = reunis * 2 > nombre ? reunis * 2 - nombre : nombre - reunis * 2;
        const bool divise = std::min(reunis, nombre - reunis) * MOINDRE >= nombre;
        if (divise && ecart < choix.ecart) choix = {place, seuil, ecart, {}};
    };
    proposer(plus, auDessus);
    proposer(plus + autant, median);
}

/// The threshold that only few members reach, but as many of them as can be.
std::optional<Compte> Antichaine::seuilRare(std::vector<Compte>& comptes) {
    std::ranges::sort(comptes, std::greater());
    std::optional<Compte> seuil;
    for (std::size_t i = 1; i * MOINDRE < comptes.size(); ++i)
        if (comptes[i] != comptes[i - 1]) seuil = comptes[i - 1];
    return seuil;
}

/// The cuts stay what they are; only what is packed is packed anew.
void Antichaine::convertir(const Champs& champs) {
    std::vector<Mot> de(champs_->mots());
    std::vector<Mot> vers(champs.mots());
    const auto un = [&](const std::uint8_t* garde, std::uint8_t* place) {
        champs_->reprendre(garde, de.data());
        Reseau::convertir(*champs_, de.data(), champs, vers.data());
        champs.ranger(vers.data(), place);
    };
    for (Liasse& l : feuilles_) l.convertir(*champs_, champs, GRAIN);
    bornes_.refondre(2 * champs.octets(), [&](const std::uint8_t* bornes, std::uint8_t* place) {
        un(bornes, place);
        un(bornes + champs_->octets(), place + champs.octets());
    });
    seuils_.refondre(champs.octets(), [&](const std::uint8_t* seuils, std::uint8_t* place) {
        champs_->reprendre(seuils, de.data());
        std::ranges::fill(vers, Mot{0});
        for (std::uint32_t p = 0; p < champs_->places(); ++p)
            if (champs_->exige(de.data(), p)) champs.exiger(vers.data(), p, champs_->lire(de.data(), p));
        champs.ranger(vers.data(), place);
    });
    champs_ = &champs;
}

}  // namespace Reseau
