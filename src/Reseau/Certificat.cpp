#include "Reseau/Certificat.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "Reseau/Depliage.h"

namespace Reseau {

namespace {

class Redacteur {
public:
    Redacteur(Texte& out, const Net& net, const Partie& partie, const Resolution& resolution)
        : out_(out), net_(net), partie_(partie), resolution_(resolution) {}

    void rediger(bool verdictSeul);

private:
    std::string place(std::uint32_t p) const;
    std::string transition(std::uint32_t t) const;

    void liste(const std::vector<std::uint32_t>& places);
    void marquage(const Creux& v);
    void compte(Compte c);
    void pas(std::span<const Pas> run);
    void course(const Course& run);
    void accelerations(const std::vector<Pas>& run);
    void atteinte(std::uint32_t p);
    void parExploration(std::uint32_t p);
    void parCourse(std::uint32_t p);
    void entete(std::uint32_t p, const char* comment);
    std::vector<std::uint32_t> ordre() const;
    const char* nomDeLEnsemble() const;
    void ensemble();
    void nonBornee();
    std::size_t pompe(std::size_t numero);
    void multiplicateurs(const Multiplicateurs& y);
    const Creux* composante(std::uint32_t p) const;
    void sousInvariant(const Creux& composante);
    void majorant(std::uint32_t p);
    void arbre(const Majoration& majoration);

    Texte& out_;
    const Net& net_;
    const Partie& partie_;
    const Resolution& resolution_;
    std::set<std::uint32_t> ecrites_;                     // accelerations
    std::map<const Creux*, std::size_t> sousInvariants_;  // written ones, with their numbers
    std::optional<Creux> montre_;            // the end of the last run of the exploration that shows a bound
    std::vector<Pas> chemin_;                // that run
    std::optional<Tireur::Origine> suivie_;  // of the last other one
    bool pompee_ = false;                    // whether that one ends with its pump
    std::optional<Depliage> depliage_;       // while what is told is about an unfolded net
};

std::string Redacteur::place(std::uint32_t p) const {
    if (p >= partie_.places.size()) return place(depliage_->place(p)) + "(2)";
    return net_.places[partie_.places[p]];
}

std::string Redacteur::transition(std::uint32_t t) const {
    if (t >= partie_.transitions.size()) return transition(depliage_->transition(t)) + "(2)";
    return net_.transitions[partie_.transitions[t]].nom;
}

void Redacteur::liste(const std::vector<std::uint32_t>& places) {
    for (const std::uint32_t p : places) out_ << ' ' << place(p);
}

void Redacteur::marquage(const Creux& v) {
    for (const Poids& p : v) {
        out_ << ' ' << place(p.place) << '*';
        compte(p.compte);
    }
}

void Redacteur::compte(Compte c) {
    if (c == OMEGA)
        out_ << 'w';
    else
        out_ << c;
}

void Redacteur::pas(std::span<const Pas> run) {
    for (const Pas& p : run) {
        if (p.genre == Pas::POMPE)
            out_ << " *" << p.numero;
        else
            out_ << ' ' << transition(p.numero);
    }
}

void Redacteur::course(const Course& run) {
    for (const Bloc& b : run) {
        out_ << " (";
        for (std::size_t i = 0; i < b.elans.size(); ++i)
            out_ << (i == 0 ? "" : " ") << transition(b.elans[i].transition) << '*' << b.elans[i].fois;
        out_ << ")*" << b.fois;
    }
}

/// Writes the accelerations that a run uses, each after those that it uses itself.
void Redacteur::accelerations(const std::vector<Pas>& run) {
    for (const Pas& p : run) {
        if (p.genre != Pas::POMPE || !ecrites_.insert(p.numero).second) continue;
        const Acceleration& a = resolution_.couverture.accelerations()[p.numero];
        accelerations(a.pas);
        out_ << "omega " << p.numero << " raises";
        for (const std::uint32_t q : a.pompes) out_ << ' ' << place(q);
        out_ << " needs";
        marquage(a.pre);
        out_ << " by";
        pas(a.pas);
        out_ << '\n';
    }
}

const char* Redacteur::nomDeLEnsemble() const { return resolution_.couverture.complete() ? "set" : "relaxed"; }

void Redacteur::ensemble() {
    const auto ecrire = [this](const Creux& m) {
        out_ << nomDeLEnsemble();
        marquage(m);
        out_ << '\n';
    };
    if (resolution_.couverture.complete())
        resolution_.couverture.pourChaqueMaximal(ecrire);
    else
        resolution_.abondance->pourChaque(ecrire);
}

void Redacteur::nonBornee() {
    out_ << "unbounded stem";
    if (resolution_.couverture.nonBornee()) {
        pas(resolution_.couverture.tige());
        out_ << " cycle";
        pas(resolution_.couverture.accelerations()[0].pas);
    } else {
        const Tireur::Pompe& pompe = resolution_.tireur.pompes()[0];
        course(resolution_.tireur.tige(pompe));
        out_ << " cycle";
        course(resolution_.tireur.cycle(pompe));
    }
    out_ << '\n';
}

/// Writes a pump as an acceleration, numbered after those of the exploration, when it is not written yet.
/// @return its number
std::size_t Redacteur::pompe(std::size_t numero) {
    const Tireur::Pompe& pompe = resolution_.tireur.pompes()[numero];
    numero += resolution_.couverture.accelerations().nombre();
    if (!ecrites_.insert(static_cast<std::uint32_t>(numero)).second) return numero;
    out_ << "omega " << numero << " raises";
    liste(pompe.monte);
    out_ << " needs";
    marquage(pompe.besoin);
    out_ << " by";
    course(resolution_.tireur.cycle(pompe));
    out_ << '\n';
    return numero;
}

/// The places that the exploration shows, then those that other runs show, each after what comes before it there, and
/// at last those that pumps raise.
std::vector<std::uint32_t> Redacteur::ordre() const {
    std::vector<std::uint32_t> resultat(partie_.places.size());
    std::iota(resultat.begin(), resultat.end(), 0U);
    const auto rang = [this](std::uint32_t p) {
        if (!resolution_.parCourse(p)) return std::tuple{false, false, std::size_t{0}, std::size_t{0}, std::size_t{0}};
        const Tireur::Origine& o = resolution_.tireur.origine(p);
        return std::tuple{true, resolution_.borne(p) == OMEGA, o.course, o.blocs, o.pompe};
    };
    std::ranges::stable_sort(resultat, {}, rang);
    return resultat;
}

void Redacteur::atteinte(std::uint32_t p) {
    if (resolution_.parCourse(p))
        parCourse(p);
    else
        parExploration(p);
    out_ << '\n';
}

void Redacteur::parExploration(std::uint32_t p) {
    if (montre_ && valeur(*montre_, p) == resolution_.borne(p)) {
        entete(p, "on");
        return;
    }
    Creux marquage = resolution_.couverture.temoin(p);
    std::vector<Pas> chemin = resolution_.couverture.chemin(marquage);
    accelerations(chemin);
    const bool suite = montre_ && std::ranges::mismatch(chemin, chemin_).in2 == chemin_.end();
    entete(p, suite ? "on" : "by");
    pas(std::span(chemin).subspan(suite ? chemin_.size() : 0));
    montre_ = std::move(marquage);
    chemin_ = std::move(chemin);
}

void Redacteur::parCourse(std::uint32_t p) {
    const Tireur::Origine& o = resolution_.tireur.origine(p);
    const bool sansFin = resolution_.borne(p) == OMEGA;
    const std::size_t finale = sansFin ? pompe(o.pompe) : 0;
    const bool meme = sansFin && pompee_ && suivie_ == o;
    const bool suite = meme || (suivie_ && !pompee_ && suivie_->course == o.course && suivie_->blocs <= o.blocs);
    entete(p, suite ? "on" : "by");
    if (!meme) {
        course(resolution_.tireur.course(o, suite ? suivie_->blocs : 0));
        if (sansFin) out_ << " *" << finale;
    }
    suivie_ = o;
    pompee_ = sansFin;
}

/// Begins the line of a bound.
void Redacteur::entete(std::uint32_t p, const char* comment) {
    out_ << "bound " << place(p) << ' ';
    compte(resolution_.borne(p));
    out_ << ' ' << comment;
}

void Redacteur::multiplicateurs(const Multiplicateurs& multiples) {
    const auto places = static_cast<std::uint32_t>((depliage_ ? depliage_->net() : partie_.net).places.size());
    for (const auto& [contrainte, y] : multiples) {
        if (contrainte < places)
            out_ << ' ' << place(contrainte);
        else
            out_ << " *" << contrainte - places;
        out_ << '*' << y;
    }
}

/// The set of places that bounds the place; nothing when something else does.
const Creux* Redacteur::composante(std::uint32_t p) const {
    const bool parMajoration = resolution_.borne(p) != OMEGA && !resolution_.parEnsemble(p);
    return parMajoration ? resolution_.majorations[p]->composante.get() : nullptr;
}

/// Writes it when it is not written yet.
void Redacteur::sousInvariant(const Creux& composante) {
    const auto [ici, neuf] = sousInvariants_.try_emplace(&composante, sousInvariants_.size());
    if (!neuf) return;
    out_ << "subinvariant " << ici->second << ' ' << poidsInitial(partie_.net, composante);
    marquage(composante);
    out_ << '\n';
}

void Redacteur::arbre(const Majoration& majoration) {
    out_ << "most " << majoration.borne;
    if (majoration.passages.empty()) {
        out_ << " by cases\n";
    } else {
        out_ << " by phases";
        for (const std::uint32_t t : majoration.passages) out_ << ' ' << transition(t);
        out_ << '\n';
        depliage_.emplace(partie_.net, *resolution_.majorants->jeton(), majoration.passages);
    }
    for (const Cas& cas : majoration.preuve) {
        switch (cas.genre) {
            case Cas::SEUIL:
                out_ << "threshold " << transition(cas.transition) << ' ' << cas.seuil;
                break;
            case Cas::NIVEAU:
                out_ << "level " << place(cas.places[0]) << ' ' << cas.seuil;
                break;
            case Cas::ENTREE:
                out_ << "entry";
                liste(cas.places);
                break;
            case Cas::DEPART:
                out_ << "departure " << cas.places.size();
                liste(cas.places);
                liste(cas.bornees);
                break;
            case Cas::PREMIER:
            case Cas::DERNIER:
                out_ << (cas.genre == Cas::PREMIER ? "first " : "last ") << transition(cas.transition);
                multiplicateurs(cas.multiplicateurs);
                break;
            case Cas::ORDRE:
                out_ << "order";
                for (const Cas::Evenement& e : cas.evenements)
                    out_ << (e.dernier ? " last " : " first ") << transition(e.transition);
                for (std::size_t i = 0; i < cas.moments.size(); ++i) {
                    if (i > 0) out_ << (i == 2 ? " else" : " then");
                    multiplicateurs(cas.moments[i]);
                }
                break;
            case Cas::COUPE:
                out_ << "round " << cas.facteur;
                multiplicateurs(cas.multiplicateurs);
                break;
            case Cas::BORNE:
                out_ << "close " << cas.facteur << ' ' << cas.total;
                multiplicateurs(cas.multiplicateurs);
                break;
        }
        out_ << '\n';
    }
    depliage_.reset();
}

/// Writes why a bounded place holds no more.
void Redacteur::majorant(std::uint32_t p) {
    if (resolution_.parEnsemble(p))
        out_ << "most by " << nomDeLEnsemble() << '\n';
    else if (const Creux* places = composante(p))
        out_ << "most " << resolution_.borne(p) << " by subinvariant " << sousInvariants_.at(places) << '\n';
    else
        arbre(*resolution_.majorations[p]);
}

void Redacteur::rediger(bool verdictSeul) {
    out_ << "part";
    for (const std::uint32_t p : partie_.places) out_ << ' ' << net_.places[p];
    out_ << "\nfires";
    for (const std::uint32_t t : partie_.transitions) out_ << ' ' << net_.transitions[t].nom;
    out_ << '\n';
    if (resolution_.majorants && resolution_.majorants->jeton()) {
        out_ << "token";
        liste(resolution_.majorants->jeton()->places());
        out_ << '\n';
    }
    if (!resolution_.bornee()) nonBornee();
    if (verdictSeul && !resolution_.bornee()) return;
    const bool complete = resolution_.couverture.complete();
    if (verdictSeul) {
        if (complete) ensemble();
        out_ << "total\n";
        if (complete)
            out_ << "most by set\n";
        else
            arbre(*resolution_.ensemble);
        return;
    }
    const std::vector<std::uint32_t> places = ordre();
    if (std::ranges::any_of(places, [this](std::uint32_t p) { return resolution_.parEnsemble(p); })) ensemble();
    for (const std::uint32_t p : places) {
        if (composante(p)) sousInvariant(*composante(p));
        atteinte(p);
        if (resolution_.borne(p) != OMEGA) majorant(p);
    }
}

}  // namespace

void certifier(Texte& out, const Net& net, const Reduction& reduction) {
    for (const Reduction::Etape& etape : reduction.etapes()) {
        if (const auto* mortes = std::get_if<Mortes>(&etape)) {
            out << "dead";
            for (const std::uint32_t t : mortes->transitions) out << ' ' << net.transitions[t].nom;
        } else if (const auto* dominee = std::get_if<Dominee>(&etape)) {
            out << "dominated " << net.transitions[dominee->transition].nom;
            if (dominee->par) out << ' ' << net.transitions[*dominee->par].nom;
        } else if (const auto* fusion = std::get_if<Fusion>(&etape)) {
            out << "merge " << net.places[fusion->place] << ' ' << net.places[fusion->temoin];
        }
        out << '\n';
    }
}

void certifier(Texte& out, const Net& net, const Partie& partie, const Resolution& resolution, bool verdictSeul) {
    Redacteur(out, net, partie, resolution).rediger(verdictSeul);
}

}  // namespace Reseau
