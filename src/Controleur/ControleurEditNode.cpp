#include "Controleur/ControleurEditNode.h"

#include <algorithm>

#include "Controleur/Controleur.h"
#include "Modele/Arc.h"
#include "Vue/Arc.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"

namespace {

constexpr short faint = 50;  // alpha of what is still being drawn
constexpr short opaque = 255;

bool isPressOfButton1(const GdkEventButton& event) { return event.type == GDK_BUTTON_PRESS && event.button == 1; }

bool isReleaseOfButton1(const GdkEventButton& event) { return event.type == GDK_BUTTON_RELEASE && event.button == 1; }

}  // namespace

bool ControleurAddNode::buttonPressed(GdkEventButton* event) {
    if (isPressOfButton1(*event) && _controleur->getMode() == Controleur::NOEUD) {
        _controleur->addNoeud(event->x, event->y);
    }
    return false;
}

ControleurMoveNode::~ControleurMoveNode() { select(nullptr); }

bool ControleurMoveNode::noeudSelected(GdkEventButton* event, Vue::Noeud* node) {
    if (event->type == GDK_2BUTTON_PRESS) {
        select(nullptr);
        return false;
    }
    if (!isPressOfButton1(*event) || _controleur->getMode() == Controleur::ARC) return false;
    select(node);
    return true;
}

bool ControleurMoveNode::mouseMoved(GdkEventMotion*, double dx, double dy) {
    if (_selected != nullptr) _selected->move(dx, dy);
    return false;
}

bool ControleurMoveNode::buttonReleased(GdkEventButton* event) {
    if (isReleaseOfButton1(*event)) select(nullptr);
    return false;
}

/// Remembers `node` until it is destroyed, as by loading a file while the button is held.
void ControleurMoveNode::select(Vue::Noeud* node) {
    _selectedDeleted.disconnect();
    _selected = node;
    if (node != nullptr) _selectedDeleted = node->signal_deleted().connect([this] { _selected = nullptr; });
}

ControleurAddArc::~ControleurAddArc() { abandon(); }

bool ControleurAddArc::noeudSelected(GdkEventButton* event, Vue::Noeud* node) {
    if (!isPressOfButton1(*event) || _controleur->getMode() != Controleur::ARC) return false;
    if (_selected != nullptr) finish();  // its release was lost, for instance to a dialog
    begin(node);
    return true;
}

void ControleurAddArc::begin(Vue::Noeud* from) {
    _selected = _controleur->addNoeud(from->getPosX(), from->getPosY());
    _selected->getNoeud()->setColorFill(0, 0, 0, faint);
    _selected->getNoeud()->setColorIn(0, 0, 0, 0);
    _arc = _controleur->addArc(from->getModele(), _selected->getModele(), nullptr);
    _arc->getArrow()->setColorFill(0, 0, 0, faint);

    // A file may be loaded while the button is held.
    _selectedDeleted = _selected->signal_deleted().connect([this] { abandon(); });
    _arcDeleted = _arc->signal_deleted().connect([this] { abandon(); });
}

bool ControleurAddArc::mouseMoved(GdkEventMotion* event, double dx, double dy) {
    if (_selected == nullptr) return false;
    _selected->move(dx, dy);

    const auto under = getVue()->noeudUnderMouse(event->x, event->y);
    const auto other = std::find_if(under.begin(), under.end(), [this](auto* node) { return node != _selected; });
    if (other == under.end()) {
        if (_insible) unsnap();
    } else {
        // Once snapped the arc stays on its node until the pointer has left all others.
        if (!_insible) snapTo(*other);
    }
    return false;
}

void ControleurAddArc::snapTo(Vue::Noeud* node) {
    _insible = true;
    _selected->setVisible(false);
    _arc->getArrow()->setColorFill(0, 0, 0, opaque);
    _arc->getModele()->setDestination(node->getModele());
}

void ControleurAddArc::unsnap() {
    _insible = false;
    _selected->setVisible(true);
    _arc->getArrow()->setColorFill(0, 0, 0, faint);
    _arc->getModele()->setDestination(_selected->getModele());
}

bool ControleurAddArc::buttonReleased(GdkEventButton* event) {
    if (isReleaseOfButton1(*event) && _selected != nullptr) finish();
    return false;
}

void ControleurAddArc::finish() {
    Vue::Noeud* temporary = _selected;
    const bool snapped = _insible;
    _arc->getArrow()->setColorFill(0, 0, 0, opaque);
    abandon();
    if (snapped) {
        _controleur->removeNoeud(temporary->getModele());
    } else {
        temporary->setDefault();
    }
}

/// Forgets the gesture and leaves everything drawn as it is.
void ControleurAddArc::abandon() {
    _selectedDeleted.disconnect();
    _arcDeleted.disconnect();
    _selected = nullptr;
    _insible = false;
}

bool ControleurEditArc::arcSelected(GdkEventButton* event, Vue::Arc* arc) {
    if (event->type != GDK_2BUTTON_PRESS) _controleur->editArc(arc);
    return false;
}

bool ControleurEditArc::noeudSelected(GdkEventButton* event, Vue::Noeud* node) {
    if (event->type == GDK_2BUTTON_PRESS && _controleur->getMode() != Controleur::ARC) _controleur->editNoeud(node);
    return false;
}
