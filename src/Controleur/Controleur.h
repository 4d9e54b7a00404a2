// The one place where model and drawing change together. Events of the drawing are offered to the gestures in turn;
// files are read through the same building operations that the mouse uses, so a model object never exists without its
// view.
#pragma once

#include <gdk/gdk.h>
#include <sigc++/trackable.h>

#include <string>
#include <vector>

#include "Modele/Multiset.h"

namespace Modele {
class Arc;
class KLV;
class Noeud;
class Regle;
}  // namespace Modele

namespace Vue {
class Arc;
class Dessin;
class Noeud;
}  // namespace Vue

class VirtualSousControleur;
class Window;

/// Owns the model and its drawing. Positions are pixels of the drawing area.
class Controleur : public sigc::trackable {
public:
    enum Mode { SELECT, ARC, NOEUD };

    /// @param window used for its dialogs, not owned
    /// @param modele,vue owned from now on
    Controleur(Window* window, Modele::KLV* modele, Vue::Dessin* vue);
    Controleur(const Controleur&) = delete;
    Controleur& operator=(const Controleur&) = delete;
    ~Controleur();

    void setMode(Mode mode);
    Mode getMode() const { return _mode; }

    /// @name Building. The views returned belong to the drawing.
    /// @{

    /// A new node with an automatic name.
    Vue::Noeud* addNoeud(double x, double y);

    /// The node of that name, made when there is none, now shown at (x, y).
    Vue::Noeud* addNoeud(const std::string& name, double x, double y);

    /// The node of that name, made when there is none; a new view stands at (0, 0), an existing one where it is.
    Vue::Noeud* addNoeud(const std::string& name);

    /// The node of that name, made when there is none, now initial with a copy of `*marking`.
    Vue::Noeud* addNoeudInit(const std::string& name, const Modele::Multiset* marking);

    /// A new arc. Takes ownership of `rule`, which may be null: an arc without a rule.
    Vue::Arc* addArc(Modele::Noeud* source, Modele::Noeud* destination, Modele::Regle* rule);

    /// Destroys the node with its arcs; their views go with them.
    void removeNoeud(Modele::Noeud* node);
    /// @}

    /// Always false: no key edits anything, and presses go on to the toolkit.
    bool keyPressed(GdkEventKey* event);

    /// Asks for the arc's rule, respectively the node's marking, in a dialog and sets it.
    void editArc(Vue::Arc* arcView);
    void editNoeud(Vue::Noeud* nodeView);

    /// The model, still owned by the controller.
    Modele::KLV* getKLV() const { return _modele; }

    /// Show a node, respectively an arc with its nodes, of a model that was built without the drawing.
    void chargeNoeud(Modele::Noeud* n, int x, int y);
    void chargeArc(Modele::Arc* a);

    /// Empties the model, and the drawing with it.
    void clear();

    /// Replaces the model by the one in the file `path`. A malformed file ends the program.
    /// @return false, and nothing changes, when the file cannot be opened.
    bool parser(const std::string& path);

    /// The text of the file that parser reads back.
    std::string toString() const;

private:
    friend class VirtualSousControleur;

    bool noeudSelected(GdkEventButton* event, Vue::Noeud* node);
    bool arcSelected(GdkEventButton* event, Vue::Arc* arc);
    bool buttonPressed(GdkEventButton* event);
    bool buttonReleased(GdkEventButton* event);
    void mouseMoved(GdkEventMotion* event, double dx, double dy);

    template <class Offer>
    bool firstThatTakes(Offer offer);

    Window* _window;
    Modele::KLV* _modele;
    Vue::Dessin* _vue;
    std::vector<VirtualSousControleur*> _sousControleur;
    Mode _mode = SELECT;
};
