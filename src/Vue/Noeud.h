// The picture of a node: a circle with the node's name and, while the node is initial, its marking with an arrow into
// it.
#pragma once

#include <string>

#include "EGD/Arc.h"
#include "EGD/Arrowable.h"
#include "EGD/Text.h"
#include "Vue/Object.h"

namespace EGD {
class Arrow;
}

namespace Modele {
class Noeud;
}

namespace Vue {

class Dessin;

/// Its position is the centre of the circle, in pixels of the area. Arrows of arcs start and end on the circle's rim.
class Noeud : public Object, public EGD::Arrowable {
public:
    /// Made by Dessin::addNoeud alone, which owns it. Shows itself on the area of `dessin`.
    /// @param node the model node, not owned
    Noeud(Dessin* dessin, Modele::Noeud* node, double x, double y);
    ~Noeud() override;

    /// Shows the marking as it is now.
    void update() override;

    /// Unregisters and destroys this view.
    void sucide() override;

    double getR(double angle) const override;

    /// Draws the parts: circle, name and, while the node is initial, the marking and its arrow.
    bool vDraw(EGD::EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;
    bool isPicked() override;
    void unpick() override;

    Modele::Noeud* getModele() const { return _pNoeud; }

    /// The circle, still owned by the view.
    EGD::Arc* getNoeud() { return &_egdArc; }

    /// Gives the circle its ordinary look.
    void setDefault();

    /// "name(x, y);" and an end of line: the node's position in a file, truncated to whole pixels.
    std::string toString() const;

private:
    void releaseMarking();

    EGD::Arc _egdArc;
    EGD::Text _egdText;
    EGD::Text* _egdTextIn = nullptr;  // owned
    EGD::Arrow* _egdIn = nullptr;     // destroyed with the label it starts at
    Dessin* _dessin;
    Modele::Noeud* _pNoeud;
};

}  // namespace Vue
