#include "Controleur/Controleur.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "Controleur/ControleurEditNode.h"
#include "Lecture.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Vue/Arc.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"
#include "Window.h"

namespace {

constexpr auto syntaxError = "Syntaxe error !";

/// @return null when `path` cannot be opened or is a directory, which the C library would open.
std::FILE* openForReading(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "re");
    if (file == nullptr) return nullptr;
    struct stat status = {};
    if (fstat(fileno(file), &status) == 0 && !S_ISDIR(status.st_mode)) return file;
    std::fclose(file);
    return nullptr;
}

/// Sees whether a view is destroyed while a dialog is open: behind it, assistive technologies can still ask for a new
/// model.
class Witness {
public:
    explicit Witness(EGD::Drawing& view) : _deleted(view.signal_deleted().connect([this] { _isGone = true; })) {}
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness() { _deleted.disconnect(); }

    bool isGone() const { return _isGone; }

private:
    bool _isGone = false;
    sigc::connection _deleted;
};

}  // namespace

Controleur::Controleur(Window* window, Modele::KLV* modele, Vue::Dessin* vue)
    : _window(window), _modele(modele), _vue(vue) {
    _vue->signal_selectNoeud().connect(sigc::mem_fun(*this, &Controleur::noeudSelected));
    _vue->signal_selectArc().connect(sigc::mem_fun(*this, &Controleur::arcSelected));
    _vue->signal_buttonPressed().connect(sigc::mem_fun(*this, &Controleur::buttonPressed));
    _vue->signal_buttonReleased().connect(sigc::mem_fun(*this, &Controleur::buttonReleased));
    _vue->signal_mouseMoved().connect(sigc::mem_fun(*this, &Controleur::mouseMoved));

    _sousControleur = {new ControleurAddNode(this), new ControleurMoveNode(this), new ControleurAddArc(this),
                       new ControleurEditArc(this)};
}

Controleur::~Controleur() {
    for (const VirtualSousControleur* gesture : _sousControleur) delete gesture;
    _sousControleur.clear();
    std::cout << "~Controleur()..." << std::endl;
    delete _vue;
    delete _modele;
    std::cout << "~Controleur() : ok" << std::endl;
}

void Controleur::setMode(Mode mode) {
    _mode = mode;
    for (VirtualSousControleur* gesture : _sousControleur) gesture->modeChanged();
}

template <class Offer>
bool Controleur::firstThatTakes(Offer offer) {
    return std::any_of(_sousControleur.begin(), _sousControleur.end(), offer);
}

bool Controleur::noeudSelected(GdkEventButton* event, Vue::Noeud* node) {
    std::cout << "Controleur::noeudSelected" << std::endl;
    return firstThatTakes([&](auto* gesture) { return gesture->noeudSelected(event, node); });
}

bool Controleur::arcSelected(GdkEventButton* event, Vue::Arc* arc) {
    std::cout << "Controleur::arcSelected" << std::endl;
    return firstThatTakes([&](auto* gesture) { return gesture->arcSelected(event, arc); });
}

bool Controleur::buttonPressed(GdkEventButton* event) {
    return firstThatTakes([&](auto* gesture) { return gesture->buttonPressed(event); });
}

bool Controleur::buttonReleased(GdkEventButton* event) {
    return firstThatTakes([&](auto* gesture) { return gesture->buttonReleased(event); });
}

bool Controleur::keyPressed(GdkEventKey* event) {
    return firstThatTakes([&](auto* gesture) { return gesture->keyPressed(event); });
}

void Controleur::mouseMoved(GdkEventMotion* event, double dx, double dy) {
    for (VirtualSousControleur* gesture : _sousControleur) gesture->mouseMoved(event, dx, dy);
}

Vue::Noeud* Controleur::addNoeud(double x, double y) { return _vue->addNoeud(_modele->addNoeud(), x, y); }

Vue::Noeud* Controleur::addNoeud(const std::string& name, double x, double y) {
    return _vue->addNoeud(_modele->addNoeud(name), x, y);
}

Vue::Noeud* Controleur::addNoeud(const std::string& name) { return _vue->addNoeud(_modele->addNoeud(name)); }

Vue::Noeud* Controleur::addNoeudInit(const std::string& name, const Modele::Multiset* marking) {
    Vue::Noeud* view = addNoeud(name);
    view->getModele()->setInit(marking);
    return view;
}

Vue::Arc* Controleur::addArc(Modele::Noeud* source, Modele::Noeud* destination, Modele::Regle* rule) {
    return _vue->addArc(source->addArc(destination, rule));
}

void Controleur::removeNoeud(Modele::Noeud* node) { _modele->removeNoeud(node); }

void Controleur::editArc(Vue::Arc* arcView) {
    Modele::Arc* arc = arcView->getModele();
    const std::string before = arc->getRegle() != nullptr ? arc->getRegle()->toString() : "";
    const Witness witness(*arcView);
    std::string answer;
    const bool isAnswered = _window->getMessage("Rule :", answer, before) && !witness.isGone();
    if (isAnswered && !arc->setRegle(answer)) _window->error(syntaxError);
    _vue->update();
}

void Controleur::editNoeud(Vue::Noeud* nodeView) {
    Modele::Noeud* node = nodeView->getModele();
    const std::string before = Modele::toText(node->getMarquage());
    const Witness witness(*nodeView);
    std::string answer;
    const bool isAnswered = _window->getMessage("multi set : ", answer, before) && !witness.isGone();
    if (isAnswered && !node->setInit(answer)) _window->error(syntaxError);
    _vue->update();
}

void Controleur::chargeNoeud(Modele::Noeud* n, int x, int y) { _vue->addNoeud(n, x, y); }

void Controleur::chargeArc(Modele::Arc* a) {
    _vue->addNoeud(a->getSource());
    _vue->addNoeud(a->getDestination());
    _vue->addArc(a);
}

void Controleur::clear() { _modele->clear(); }

bool Controleur::parser(const std::string& path) {
    std::FILE* file = openForReading(path);
    if (file == nullptr) return false;
    clear();
    lineNumber = 1;
    glob_controleur = this;
    restartScanner(file);
    const bool isRead = yyparse() == 0;
    std::fclose(file);
    yyin = nullptr;
    return isRead;
}

std::string Controleur::toString() const { return _vue->toString() + _modele->toString(); }
