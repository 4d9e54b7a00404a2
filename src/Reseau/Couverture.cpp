// The loop of the construction, in the order in which the header tells it.
#include "Reseau/Couverture.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <unordered_map>
#include <utility>

namespace Reseau {

namespace {

constexpr std::uint64_t QUELQUES = 16;  // expanded markings, before which none of them tells what is seldom marked
constexpr std::uint64_t PETIT = 500;    // maximal markings; fewer take little memory in wide fields, too

/// Every field has room for one token from the start.
std::vector<Compte> premiersPlafonds(std::vector<Compte> initial) {
    for (Compte& c : initial) c = c == OMEGA ? 1 : std::max<Compte>(c, 1);
    return initial;
}

}  // namespace

Couverture::Couverture(const Net& net, std::vector<Compte> initial, unsigned fils)
    : net_(net),
      initial_(std::move(initial)),
      fils_(fils),
      plafonds_(premiersPlafonds(initial_)),
      champs_(std::make_unique<const Champs>(plafonds_, true)),
      franchissement_(net, *champs_),
      antichaine_(*champs_),
      arbre_(*champs_),
      accelerations_(net),
      epuisement_(net),
      marquee_(net.places.size(), 0),
      parent_(*champs_),
      courant_(*champs_),
      maxima_(net.places.size(), 0),
      buts_(net.places.size(), OMEGA) {}

void Couverture::garderLesChemins() {
    chemins_ = true;
    arbre_.toutGarder();
}

bool Couverture::explorer(std::uint64_t limite, bool arretOmega) {
    if (!commencee_) commencer();
    return incomparables_ && !chemins_ ? enumerer(limite) : construire(limite, arretOmega);
}

void Couverture::commencer() {
    commencee_ = true;
    for (std::uint32_t p = 0; p < net_.places.size(); ++p) courant_.poser(p, initial_[p]);
    std::vector<std::uint32_t> pompes;
    accelerations_.appliquer(courant_, champs_->creux(courant_.mots()), 0, pompes);
    garder(AUCUN, AUCUN, std::move(pompes));
}

/// Whether every place has been seen with the tokens aimed at.
bool Couverture::atteinte() {
    while (atteintes_ < maxima_.size() && maxima_[atteintes_] >= buts_[atteintes_]) ++atteintes_;
    return atteintes_ == maxima_.size();
}

bool Couverture::construire(std::uint64_t limite, bool arretOmega) {
    while (true) {
        if (!sommet() || (arretOmega && nonBornee_) || atteinte()) return true;
        if (explores_ >= limite || gardes_ / 4 >= limite) return false;
        developper();
    }
}

bool Couverture::enumerer(std::uint64_t limite) {
    if (!enumeration_) ceder();
    while (!enumeration_->finie()) {
        if (atteinte()) return true;
        if (explores_ >= limite || enumeration_->taille() / 4 >= limite) return false;
        explores_ += enumeration_->avancer(limite - explores_);
    }
    return true;
}

/// Hands everything over to an enumeration.
void Couverture::ceder() {
    enumeration_ = std::make_unique<Enumeration>(net_, maxima_, fils_);
    Blocs attente(champs_->octets());
    for (; sommet(); frontiere_.oter(arbre_, *champs_)) champs_->ranger(parent_.mots(), attente.ajouter());
    for (; attente.taille() > 0; attente.oter()) {
        champs_->reprendre(attente.en(attente.taille() - 1), courant_.mots());
        enumeration_->admettre(champs_->creux(courant_.mots()), true);
    }
    antichaine_.pourChaque([this](const std::uint8_t* garde) {
        champs_->reprendre(garde, courant_.mots());
        enumeration_->admettre(champs_->creux(courant_.mots()), false);
    });
    antichaine_ = Antichaine(*champs_);
    arbre_ = Arbre(*champs_);
}

/// Makes what is to be expanded next `parent_` and `noeud_`. What has been retired is dropped, and that to which a
/// newer acceleration applies gives way to what comes of it.
/// @return whether anything is left
bool Couverture::sommet() {
    while (!frontiere_.vide()) {
        frontiere_.choisir(explores_);
        noeud_ = frontiere_.noeud();
        frontiere_.lire(arbre_, *champs_, parent_.mots());
        const bool maximal = antichaine_.contient(parent_.mots());
        std::vector<std::uint32_t> pompes;
        courant_ = parent_;
        if (maximal && noeud_ != AUCUN && frontiere_.connues() < accelerations_.nombre())
            accelerations_.appliquer(courant_, pompes);
        if (maximal && pompes.empty()) return true;
        frontiere_.oter(arbre_, *champs_);
        if (noeud_ == AUCUN) continue;
        const std::uint32_t noeud = noeud_;
        arbre_.ouvrir(noeud);
        epuise_ = false;
        if (maximal && !connu()) garder(noeud, AUCUN, std::move(pompes));
        fermer(noeud);
    }
    return false;
}

/// Expands the top of the frontier.
void Couverture::developper() {
    ++explores_;
    frontiere_.oter(arbre_, *champs_);
    const std::uint32_t noeud = noeud_;
    epuise_ = noeud == AUCUN || epuisement_.chez(*champs_, parent_.mots());
    if (noeud != AUCUN) arbre_.ouvrir(noeud);
    if (!epuise_) lignee_.suivre(arbre_, *champs_, noeud);
    connues_ = accelerations_.nombre();
    accelerations_.partirDe(parent_);
    champs_->pourChaqueMarquee(parent_.mots(), [this](std::uint32_t p) { ++marquee_[p]; });
    if (explores_ >= QUELQUES && std::has_single_bit(explores_)) franchissement_.guetter(marquee_);
    franchissement_.utiles(parent_.mots(), tirs_);
    if (ample_ && antichaine_.taille() >= PETIT) elargir();
    for (const std::uint32_t t : tirs_) {
        // Its coverer stands in the frontier and is expanded in its place.
        if (depassee() || (successeur(t) && champs_->couvre(courant_.mots(), parent_.mots()))) break;
    }
    if (noeud != AUCUN) fermer(noeud);
}

/// Whether what its successors have taught changes `parent_`; then what comes of it is kept.
bool Couverture::depassee() {
    if (connues_ == accelerations_.nombre()) return false;
    courant_ = parent_;
    std::vector<std::uint32_t> pompes;
    accelerations_.appliquer(courant_, {}, connues_, pompes);
    connues_ = accelerations_.nombre();
    if (pompes.empty()) return false;
    if (!connu()) garder(noeud_, AUCUN, std::move(pompes));
    return true;
}

/// Ends the expansion of a node.
void Couverture::fermer(std::uint32_t noeud) {
    arbre_.lacher(noeud);
    lignee_.elaguer(arbre_);
}

/// Makes the successor of `parent_` `courant_`, with every acceleration that is known.
void Couverture::tirer(std::uint32_t tir, std::vector<std::uint32_t>& pompes) {
    courant_ = parent_;
    while (!franchissement_.tirer(tir, courant_.mots())) {
        elargir();
        courant_ = parent_;
    }
    const bool aucune = accelerations_.nombre() == 0;
    accelerations_.appliquer(courant_, net_.transitions[tir].effet, connues_, pompes);
    if (aucune && accelerations_.nombre() > 0) {
        tige_ = arbre_.chemin(noeud_);
        tige_.push_back({Pas::TIR, tir});
    }
}

/// @return whether the successor is kept
bool Couverture::successeur(std::uint32_t tir) {
    std::vector<std::uint32_t> pompes;
    tirer(tir, pompes);
    if (connu()) return false;
    if (!incomparables_ && !epuise_ && accelerer(tir, pompes) && connu()) return false;
    garder(noeud_, tir, std::move(pompes));
    return true;
}

void Couverture::suivre(const Creux& depart, const std::vector<std::uint32_t>& tirs) {
    parent_ = Marquage(*champs_);
    for (const Poids& p : depart) parent_.poser(p.place, p.compte);
    epuise_ = false;
    noeud_ =
        chemins_ ? arbre_.doubler(arbre_.chercher(parent_.mots())) : arbre_.ajouter(parent_.mots(), AUCUN, AUCUN, {});
    arbre_.ouvrir(noeud_);
    for (const std::uint32_t t : tirs) {
        if (!franchissement_.permis(t, parent_.mots())) break;
        if (!franchissement_.utile(t, parent_.mots())) continue;
        try {
            avancer(t);
        } catch (const Debordement&) {
            break;  // of a place that may be unbounded
        }
    }
    courant_ = parent_;
    if (!connu()) garder(noeud_, AUCUN, {});
    fermer(noeud_);
}

/// Makes the successor `parent_` and `noeud_`, known or not.
void Couverture::avancer(std::uint32_t tir) {
    lignee_.suivre(arbre_, *champs_, noeud_);
    connues_ = 0;
    accelerations_.partirDe(parent_);
    tirs_.assign(1, tir);
    std::vector<std::uint32_t> pompes;
    tirer(tir, pompes);
    accelerer(tir, pompes);
    const std::uint32_t suivant = arbre_.ajouter(courant_.mots(), noeud_, tir, std::move(pompes));
    arbre_.ouvrir(suivant);
    arbre_.lacher(noeud_);
    noeud_ = suivant;
    parent_ = courant_;
}

bool Couverture::connu() const {
    return antichaine_.contient(courant_.mots()) || (!incomparables_ && antichaine_.couvre(courant_.mots()));
}

/// Compares `courant_`, reached from the last of `lignee_` by `tir` and `pompes`, with its ancestors until none is
/// strictly covered: the near ones, and then those at depths that are multiples of PROCHES.
/// @return whether it has changed
bool Couverture::accelerer(std::uint32_t tir, std::vector<std::uint32_t>& pompes) {
    bool accelere = false;
    std::size_t doute = 0;  // what one ancestor holds more of, the next one mostly does, too
    for (bool change = true; change;) {
        change = false;
        std::uint32_t pas = 0;
        for (std::uint32_t d = lignee_.profondeur() + 1; d > 0; ++pas) {
            d = pas < PROCHES ? d - 1 : (d - 1) / PROCHES * PROCHES;
            if (!champs_->depasse(courant_.mots(), lignee_.mots(d), doute)) continue;
            std::vector<Pas> chemin;
            for (auto i = pompes.rbegin(); i != pompes.rend(); ++i) chemin.push_back({Pas::POMPE, *i});
            chemin.push_back({Pas::TIR, tir});
            arbre_.remonter(lignee_.noeud(lignee_.profondeur()), lignee_.noeud(d), chemin);
            std::ranges::reverse(chemin);
            if (accelerations_.nombre() == 0) tige_ = arbre_.chemin(lignee_.noeud(d));
            const std::uint32_t neuve = accelerations_.apprendre(std::move(chemin));
            accelerations_.appliquer(neuve, courant_, pompes);
            accelere = change = true;
        }
    }
    return accelere;
}

void Couverture::garder(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> pompes) {
    ++gardes_;
    if (!incomparables_) antichaine_.retirer(courant_.mots());
    antichaine_.ajouter(courant_.mots());

    const Frontiere::Rang rang = compterLeCourant();
    nonBornee_ = nonBornee_ || rang.omegas > 0;
    if (nonBornee_ && rangLePlusLarge_ < rang) {
        rangLePlusLarge_ = rang;
        plusLarge_ = champs_->creux(courant_.mots());
    }
    if (epuise_ && !chemins_) {
        frontiere_.ajouterEpuise(*champs_, rang, courant_.mots());
        return;
    }
    const std::uint32_t noeud = arbre_.ajouter(courant_.mots(), parent, tir, std::move(pompes));
    frontiere_.ajouter(arbre_, rang, noeud, accelerations_.nombre());
}

/// The rank of `courant_`; its counts go into the maxima and the finite ones into `plafonds_`.
Frontiere::Rang Couverture::compterLeCourant() {
    Frontiere::Rang rang;
    champs_->pourChaqueMarquee(courant_.mots(), [&](std::uint32_t p) {
        const Compte c = courant_[p];
        maxima_[p] = std::max(maxima_[p], c);
        ++rang.marquees;
        if (c == OMEGA) {
            ++rang.omegas;
            return;
        }
        plafonds_[p] = std::max(plafonds_[p], c);
        if (__builtin_add_overflow(rang.jetons, static_cast<std::uint64_t>(c), &rang.jetons))
            rang.jetons = ~std::uint64_t{0};
    });
    return rang;
}

/// Makes room for the successors of `parent_`: for all at once, since everything that is kept is converted; and while
/// that is little, for twice the counts, so that it seldom happens again.
void Couverture::elargir() {
    for (const std::uint32_t t : tirs_)
        for (const Poids& e : net_.transitions[t].effet) {
            const Compte avant = parent_[e.place];
            if (e.compte > 0 && avant < OMEGA - e.compte)
                plafonds_[e.place] = std::max(plafonds_[e.place], avant + e.compte);
        }
    std::vector<Compte> besoins = plafonds_;
    ample_ = antichaine_.taille() < PETIT;
    if (ample_)
        for (Compte& c : besoins) c = std::min(c, OMEGA / 2 - 1) * 2 + 1;
    auto champs =
        std::make_unique<const Champs>(elargissement_.plafonds(std::move(besoins), antichaine_.taille()), true);
    antichaine_.convertir(*champs);
    arbre_.convertir(*champs);
    lignee_.convertir(*champs_, *champs);
    frontiere_.convertir(*champs_, *champs);
    const auto porter = [&](Marquage& m) {
        Marquage nouveau(*champs);
        convertir(*champs_, m.mots(), *champs, nouveau.mots());
        m = std::move(nouveau);
    };
    porter(parent_);
    porter(courant_);
    franchissement_.traduire(*champs);
    champs_ = std::move(champs);
}

template <class F>
void Couverture::parcourir(F&& f) const {
    if (enumeration_)
        enumeration_->pourChaque(f);
    else
        antichaine_.pourChaque(f);
}

Creux Couverture::temoin(std::uint32_t place) const {
    std::vector<Mot> meilleur;
    std::vector<Mot> m(champs().mots());
    const auto comparer = [&](const std::uint8_t* garde) {
        champs().reprendre(garde, m.data());
        if (meilleur.empty() || champs().precede(m.data(), meilleur.data())) meilleur = m;
    };
    if (enumeration_)
        enumeration_->pourChaque([&](const std::uint8_t* garde) {
            if (champs().lire(garde, place) == maxima_[place]) comparer(garde);
        });
    else
        antichaine_.pourChaqueAvec(place, maxima_[place], comparer);
    return champs().creux(meilleur.data());
}

std::vector<Creux> Couverture::plusLarges(const std::vector<std::uint32_t>& places, std::size_t nombre) const {
    struct Etendue {
        std::size_t omegas = 0;
        const std::uint8_t* garde = nullptr;  // where the marking is kept
    };
    std::unordered_map<std::uint64_t, Etendue> parRestriction;  // by its hash; of two with the same one is left out
    std::vector<Mot> m(champs().mots());
    std::vector<Mot> connu(champs().mots());
    parcourir([&](const std::uint8_t* garde) {
        champs().reprendre(garde, m.data());
        std::size_t omegas = 0;
        champs().pourChaqueMarquee(m.data(), [&](std::uint32_t p) { omegas += champs().lire(m.data(), p) == OMEGA; });
        if (omegas == 0) return;
        std::uint64_t empreinte = 0;
        for (const std::uint32_t p : places) empreinte = hacher(empreinte, champs().lire(m.data(), p));
        Etendue& ici = parRestriction[empreinte];
        if (ici.omegas == omegas) champs().reprendre(ici.garde, connu.data());
        if (ici.omegas < omegas || (ici.omegas == omegas && champs().precede(m.data(), connu.data())))
            ici = {omegas, garde};
    });
    std::vector<Etendue> larges;
    larges.reserve(parRestriction.size());
    for (const auto& [empreinte, large] : parRestriction) larges.push_back(large);
    const auto devance = [&](const Etendue& a, const Etendue& b) {
        if (a.omegas != b.omegas) return a.omegas > b.omegas;
        return std::ranges::lexicographical_compare(
            places, places, {}, [&](std::uint32_t p) { return champs().lire(a.garde, p); },
            [&](std::uint32_t p) { return champs().lire(b.garde, p); });
    };
    const auto fin = larges.begin() + static_cast<std::ptrdiff_t>(std::min(nombre, larges.size()));
    std::partial_sort(larges.begin(), fin, larges.end(), devance);
    std::vector<Creux> resultat;
    for (auto l = larges.begin(); l != fin; ++l) {
        champs().reprendre(l->garde, m.data());
        resultat.push_back(champs().creux(m.data()));
    }
    return resultat;
}

std::vector<Pas> Couverture::chemin(const Creux& marquage) const {
    Marquage m(*champs_);
    for (const Poids& p : marquage) m.poser(p.place, p.compte);
    return arbre_.chemin(arbre_.chercher(m.mots()));
}

void Couverture::pourChaqueMaximal(const std::function<void(const Creux&)>& f) const {
    std::vector<Mot> m(champs().mots());
    parcourir([&](const std::uint8_t* garde) {
        champs().reprendre(garde, m.data());
        f(champs().creux(m.data()));
    });
}

}  // namespace Reseau
