// The four editing gestures. Each looks at the event and at the controller's mode and acts only where it applies; the
// controller offers every event to them in the order in which they stand here.
#pragma once

#include <sigc++/connection.h>

#include "Controleur/VirtualSousControleur.h"

/// A press on empty ground in NOEUD mode makes a node there.
class ControleurAddNode : public VirtualSousControleur {
public:
    using VirtualSousControleur::VirtualSousControleur;

    bool buttonPressed(GdkEventButton* event) override;
};

/// In SELECT and NOEUD mode a node follows the pointer while button 1 is held on it.
class ControleurMoveNode : public VirtualSousControleur {
public:
    using VirtualSousControleur::VirtualSousControleur;
    ~ControleurMoveNode() override;

    bool noeudSelected(GdkEventButton* event, Vue::Noeud* node) override;
    bool mouseMoved(GdkEventMotion* event, double dx, double dy) override;
    bool buttonReleased(GdkEventButton* event) override;

private:
    void select(Vue::Noeud* node);

    Vue::Noeud* _selected = nullptr;  // the node being dragged
    sigc::connection _selectedDeleted;
};

/// In ARC mode an arc is drawn from the pressed node. Its free end is a temporary node under the pointer, which is
/// hidden while the pointer is over another node: there the arc snaps. A release ends the arc on that node and drops
/// the temporary one, or keeps the temporary node as an ordinary one.
class ControleurAddArc : public VirtualSousControleur {
public:
    using VirtualSousControleur::VirtualSousControleur;
    ~ControleurAddArc() override;

    bool noeudSelected(GdkEventButton* event, Vue::Noeud* node) override;
    bool mouseMoved(GdkEventMotion* event, double dx, double dy) override;
    bool buttonReleased(GdkEventButton* event) override;

private:
    void begin(Vue::Noeud* from);
    void snapTo(Vue::Noeud* node);
    void unsnap();
    void finish();
    void abandon();

    Vue::Noeud* _selected = nullptr;  // the temporary node
    Vue::Arc* _arc = nullptr;         // the arc being drawn
    bool _insible = false;            // the temporary node is hidden, the arc snapped
    sigc::connection _selectedDeleted;
    sigc::connection _arcDeleted;
};

/// A press on an arc opens its rule; a double click on a node its marking, outside ARC mode.
class ControleurEditArc : public VirtualSousControleur {
public:
    using VirtualSousControleur::VirtualSousControleur;

    bool arcSelected(GdkEventButton* event, Vue::Arc* arc) override;
    bool noeudSelected(GdkEventButton* event, Vue::Noeud* node) override;
};
