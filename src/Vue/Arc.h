// The picture of an arc: an arrow from node to node, labelled with the arc's rule.
#pragma once

#include "EGD/Arrow.h"
#include "EGD/Drawing.h"
#include "Vue/Object.h"

namespace Modele {
class Arc;
}

namespace Vue {

class Dessin;

class Arc : public Object, public EGD::Drawing {
public:
    /// Made by Dessin::addArc alone, which owns it. Shows itself on the area of `dessin`; while an end of the arc has
    /// no view, nothing is drawn.
    /// @param arc the model arc, not owned
    Arc(Dessin* dessin, Modele::Arc* arc);
    ~Arc() override;

    /// Follows the arc's nodes and rule as they are now.
    void update() override;

    /// Unregisters and destroys this view.
    void sucide() override;

    /// Draws the arrow.
    bool vDraw(EGD::EasyDrawingArea* area, const Cairo::RefPtr<Cairo::Context>& cr) override;
    bool isPicked() override;
    void unpick() override;

    Modele::Arc* getModele() const { return _pArc; }

    /// The arrow, still owned by the view.
    EGD::Arrow* getArrow() { return &_arrow; }

private:
    void showRegle();

    EGD::Arrow _arrow;
    Dessin* _dessin;
    Modele::Arc* _pArc;
};

}  // namespace Vue
