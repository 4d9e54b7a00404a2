// The interface of an editing gesture: events come in, and a bool goes out that says whether the event is used up.
#pragma once

#include <gdk/gdk.h>

namespace Vue {
class Arc;
class Dessin;
class Noeud;
}  // namespace Vue

class Controleur;

/// Every operation has a default that lets the event pass. Event coordinates are pixels of the drawing area.
class VirtualSousControleur {
public:
    /// @param controleur the owner, not owned
    explicit VirtualSousControleur(Controleur* controleur) : _controleur(controleur) {}
    VirtualSousControleur(const VirtualSousControleur&) = delete;
    VirtualSousControleur& operator=(const VirtualSousControleur&) = delete;
    virtual ~VirtualSousControleur() = default;

    /// A press on a node, respectively an arc. True hides it from later sub-controllers and from whatever lies below.
    virtual bool noeudSelected(GdkEventButton*, Vue::Noeud*) { return false; }
    virtual bool arcSelected(GdkEventButton*, Vue::Arc*) { return false; }

    /// A press that nothing under the pointer took.
    virtual bool buttonPressed(GdkEventButton*) { return false; }
    virtual bool buttonReleased(GdkEventButton*) { return false; }

    /// The pointer moved by (dx, dy) since the last motion event.
    virtual bool mouseMoved(GdkEventMotion*, double /*dx*/, double /*dy*/) { return false; }
    virtual bool keyPressed(GdkEventKey*) { return false; }
    virtual void modeChanged() {}

protected:
    Vue::Dessin* getVue() const;

    Controleur* _controleur;
};
