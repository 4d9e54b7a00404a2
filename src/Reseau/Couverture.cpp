// The loop of the construction, in the order in which the header tells it.
#include "Reseau/Couverture.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Reseau {

namespace {

/// Every field has room for one token from the start.
std::vector<Compte> premiersPlafonds(const Net& net) {
    std::vector<Compte> plafonds = net.initial;
    for (Compte& c : plafonds) c = std::max<Compte>(c, 1);
    return plafonds;
}

}  // namespace

Couverture::Couverture(const Net& net, unsigned fils)
    : net_(net),
      fils_(fils),
      plafonds_(premiersPlafonds(net)),
      champs_(std::make_unique<const Champs>(plafonds_, true)),
      franchissement_(net, *champs_),
      antichaine_(*champs_),
      arbre_(*champs_),
      accelerations_(net),
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
    for (std::uint32_t p = 0; p < net_.places.size(); ++p) courant_.poser(p, net_.initial[p]);
    garder(AUCUN, AUCUN, {});
}

/// Whether every place has been seen with the tokens aimed at.
bool Couverture::atteinte() {
    while (atteintes_ < maxima_.size() && maxima_[atteintes_] >= buts_[atteintes_]) ++atteintes_;
    return atteintes_ == maxima_.size();
}

bool Couverture::construire(std::uint64_t limite, bool arretOmega) {
    while (true) {
        const std::uint32_t noeud = sommet();
        if (noeud == AUCUN || (arretOmega && nonBornee_) || atteinte()) return true;
        if (explores_ >= limite || gardes_ / 4 >= limite) return false;
        developper(noeud);
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
    std::vector<std::uint32_t> attente;
    for (std::uint32_t n = sommet(); n != AUCUN; n = sommet()) {
        attente.push_back(n);
        oterSommet();
    }
    for (auto n = attente.rbegin(); n != attente.rend(); ++n) {
        arbre_.lire(*n, courant_.mots());
        enumeration_->admettre(champs_->creux(courant_.mots()), true);
    }
    antichaine_.pourChaque([this](const std::uint8_t* garde) {
        champs_->reprendre(garde, courant_.mots());
        enumeration_->admettre(champs_->creux(courant_.mots()), false);
    });
    antichaine_ = Antichaine(*champs_);
    arbre_ = Arbre(*champs_);
}

/// The node of the frontier to be expanded next, its marking in `parent_`, or AUCUN. Those whose markings have been
/// retired are dropped, and those to which a newer acceleration applies give way to what comes of it.
std::uint32_t Couverture::sommet() {
    while (!frontiere_.empty()) {
        const auto [n, connues] = frontiere_.rbegin()->second;
        arbre_.lire(n, parent_.mots());
        const bool maximal = antichaine_.contient(parent_.mots());
        std::vector<std::uint32_t> pompes;
        courant_ = parent_;
        if (maximal && connues < accelerations_.nombre()) accelerations_.appliquer(courant_, pompes);
        if (maximal && pompes.empty()) return n;
        oterSommet();
        arbre_.ouvrir(n);
        if (maximal && !connu()) garder(n, AUCUN, std::move(pompes));
        fermer(n);
    }
    return AUCUN;
}

void Couverture::oterSommet() {
    const auto dernier = std::prev(frontiere_.end());
    dernier->second = {arbre_.suivant(dernier->second.tete), 0};
    if (dernier->second.tete == AUCUN) frontiere_.erase(dernier);
    --enAttente_;
}

/// Expands the topmost node of the frontier, whose marking is in `parent_`.
void Couverture::developper(std::uint32_t noeud) {
    ++explores_;
    oterSommet();
    arbre_.ouvrir(noeud);
    lignee_.suivre(arbre_, *champs_, noeud);
    connues_ = accelerations_.nombre();
    champs_->pourChaqueMarquee(parent_.mots(), [this](std::uint32_t p) { ++marquee_[p]; });
    if (std::has_single_bit(explores_)) franchissement_.guetter(marquee_);
    franchissement_.utiles(parent_.mots(), tirs_);
    for (const std::uint32_t t : tirs_) {
        // Its coverer stands in the frontier and is expanded in its place.
        if (successeur(noeud, t) && champs_->couvre(courant_.mots(), parent_.mots())) break;
    }
    fermer(noeud);
}

/// Ends the expansion of a node.
void Couverture::fermer(std::uint32_t noeud) {
    arbre_.lacher(noeud);
    lignee_.elaguer(arbre_);
}

/// @return whether the successor is kept
bool Couverture::successeur(std::uint32_t parent, std::uint32_t tir) {
    Manque manque;
    courant_ = parent_;
    while (!franchissement_.tirer(tir, courant_.mots(), manque)) {
        elargir(manque);
        courant_ = parent_;
    }
    std::vector<std::uint32_t> pompes;
    accelerations_.appliquer(courant_, net_.transitions[tir].effet, connues_, pompes);
    if (connu()) return false;
    if (!incomparables_ && accelerer(tir, pompes) && connu()) return false;
    garder(parent, tir, std::move(pompes));
    return true;
}

bool Couverture::connu() const {
    return antichaine_.contient(courant_.mots()) || (!incomparables_ && antichaine_.couvre(courant_.mots()));
}

/// Compares `courant_`, reached from the last of `lignee_` by `tir` and `pompes`, with its ancestors until none is
/// strictly covered: the near ones, and then those at depths that are multiples of PROCHES.
/// @return whether it has changed
bool Couverture::accelerer(std::uint32_t tir, std::vector<std::uint32_t>& pompes) {
    bool accelere = false;
    for (bool change = true; change;) {
        change = false;
        std::uint32_t pas = 0;
        for (std::uint32_t d = lignee_.profondeur() + 1; d > 0; ++pas) {
            d = pas < PROCHES ? d - 1 : (d - 1) / PROCHES * PROCHES;
            if (!champs_->depasse(courant_.mots(), lignee_.mots(d))) continue;
            std::vector<Pas> chemin;
            for (auto i = pompes.rbegin(); i != pompes.rend(); ++i) chemin.push_back({Pas::POMPE, *i});
            chemin.push_back({Pas::TIR, tir});
            arbre_.remonter(lignee_.noeud(lignee_.profondeur()), lignee_.noeud(d), chemin);
            std::ranges::reverse(chemin);
            if (accelerations_.nombre() == 0) tige_ = arbre_.chemin(lignee_.noeud(d));
            const std::uint32_t neuve = accelerations_.apprendre(std::move(chemin));
            pomper(accelerations_[neuve], courant_);
            pompes.push_back(neuve);
            accelerations_.appliquer(courant_, pompes);
            accelere = change = true;
        }
    }
    return accelere;
}

void Couverture::garder(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> pompes) {
    ++gardes_;
    if (!incomparables_) antichaine_.retirer(courant_.mots());
    antichaine_.ajouter(courant_.mots());

    const Rang rang = compterLeCourant();
    nonBornee_ = nonBornee_ || rang.omegas > 0;
    const std::uint32_t noeud = arbre_.ajouter(courant_.mots(), parent, tir, std::move(pompes));
    Liste& liste = frontiere_[rang];
    arbre_.suivant(noeud) = std::exchange(liste.tete, noeud);
    liste.connues = accelerations_.nombre();
    ++enAttente_;
}

/// The rank of `courant_`; its counts go into the maxima.
Couverture::Rang Couverture::compterLeCourant() {
    Rang rang{0, 0, 0};
    champs_->pourChaqueMarquee(courant_.mots(), [&](std::uint32_t p) {
        const Compte c = courant_[p];
        maxima_[p] = std::max(maxima_[p], c);
        ++rang.marquees;
        if (c == OMEGA)
            ++rang.omegas;
        else if (__builtin_add_overflow(rang.jetons, static_cast<std::uint64_t>(c), &rang.jetons))
            rang.jetons = ~std::uint64_t{0};
    });
    return rang;
}

/// Makes room for a count.
void Couverture::elargir(const Manque& manque) {
    plafonds_[manque.place] = manque.compte;
    plafonds_ = elargissement_.plafonds(std::move(plafonds_), antichaine_.taille());
    auto champs = std::make_unique<const Champs>(plafonds_, true);
    antichaine_.convertir(*champs);
    arbre_.convertir(*champs);
    lignee_.convertir(*champs_, *champs);
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
    parcourir([&](const std::uint8_t* garde) {
        if (champs().lire(garde, place) != maxima_[place]) return;
        champs().reprendre(garde, m.data());
        if (meilleur.empty() || champs().precede(m.data(), meilleur.data())) meilleur = m;
    });
    return champs().creux(meilleur.data());
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
