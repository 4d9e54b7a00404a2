#include "Inside.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "Controleur/ControleurEditNode.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Vue/Arc.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"

namespace {

void demand(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

Content::Arc contentOfArc(Modele::Arc& arc) {
    std::optional<Content::Rule> rule;
    if (arc.getRegle() != nullptr) rule.emplace(arc.getRegle()->getIn(), arc.getRegle()->getOut());
    return {arc.getSource()->getName(), arc.getDestination()->getName(), rule};
}

const ControleurMoveNode& moveNode(const Controleur& controleur) {
    return dynamic_cast<const ControleurMoveNode&>(*controleur._sousControleur.at(1));
}

const ControleurAddArc& addArc(const Controleur& controleur) {
    return dynamic_cast<const ControleurAddArc&>(*controleur._sousControleur.at(2));
}

bool isColor(const EGD::Color& color, int red, int alpha) {
    return color.r == red / 255.0 && color.g == 0 && color.b == 0 && color.a == alpha / 255.0;
}

void checkNodes(Modele::KLV& model, Vue::Dessin& drawing) {
    demand(drawing._vNoeud.size() == model._noeuds.size(), "as many node views as nodes");
    demand(drawing._mNoeud.size() == model._noeuds.size(), "every node is mapped to its view");
    demand(drawing._places.size() == model._noeuds.size(), "every node view has a place");
    for (const auto& [name, node] : model._noeuds) {
        demand(node->_name == name, "a node's key is its name");
        Vue::Noeud* const view = drawing.getNoeudVue(node);
        demand(view != nullptr, "every node has a view");
        demand(node->_vue == view, "the node knows its view");
        demand(view->_pNoeud == node && view->_modele == node, "the view knows its node");
        demand(drawing._vNoeud.at(drawing._places.at(view)) == view, "the view stands in its place");
        demand((view->_egdTextIn != nullptr) == node->init, "the marking of an initial node alone is shown");
        if (node->init)
            demand(view->_egdTextIn->_s == Modele::toText(node->_marquage), "the marking shown is the node's");
        demand(view->_egdText._s == name, "the name shown is the node's");
    }
}

void checkArc(Modele::KLV& model, Vue::Dessin& drawing, Modele::Arc& arc) {
    const auto isInModel = [&model](Modele::Noeud* node) {
        const auto found = model._noeuds.find(node->_name);
        return found != model._noeuds.end() && found->second == node;
    };
    demand(isInModel(arc._pSource) && isInModel(arc._pDestination), "an arc's ends are nodes of the model");
    demand(arc._pSource->out.contains(&arc), "an arc is in its source's out");
    demand(arc._pDestination->in.contains(&arc), "an arc is in its destination's in");

    auto* const view = dynamic_cast<Vue::Arc*>(arc._vue);
    demand(view != nullptr && drawing._sArc.contains(view), "every arc has a view");
    demand(view->_pArc == &arc && view->_modele == &arc, "the view knows its arc");
    demand(view->_arrow.getBegin() == drawing.getNoeudVue(arc._pSource), "the arrow begins at the source");
    demand(view->_arrow.getEnd() == drawing.getNoeudVue(arc._pDestination), "the arrow ends at the destination");
    demand((view->_arrow._pLabel != nullptr) == (arc._pRegle != nullptr), "a rule alone is shown as a label");
    if (arc._pRegle != nullptr) demand(view->_arrow._pLabel->_s == arc._pRegle->toString(), "the label is the rule");
}

void checkArcs(Modele::KLV& model, Vue::Dessin& drawing) {
    std::size_t leaving = 0;
    std::size_t entering = 0;
    for (const auto& [name, node] : model._noeuds) {
        leaving += node->out.size();
        entering += node->in.size();
        for (Modele::Arc* arc : node->out) {
            demand(arc->_pSource == node, "an arc in a node's out leaves it");
            checkArc(model, drawing, *arc);
        }
        for (const Modele::Arc* arc : node->in) demand(arc->_pDestination == node, "an arc in a node's in enters it");
    }
    demand(leaving == entering, "every arc that enters a node leaves one");
    demand(leaving == drawing._sArc.size(), "as many arc views as arcs");
}

void checkArea(const Vue::Dessin& drawing) {
    const EGD::EasyDrawingArea& area = *drawing._area;
    std::set<EGD::Drawing*> views(drawing._vNoeud.begin(), drawing._vNoeud.end());
    views.insert(drawing._sArc.begin(), drawing._sArc.end());
    std::size_t shown = 0;
    for (EGD::Drawing* drawn : area.vpDrawing_) {
        if (drawn == nullptr) continue;
        ++shown;
        demand(views.contains(drawn), "the area shows views alone");
        demand(drawn->area_ == &area, "a view knows its area");
    }
    demand(shown == views.size(), "the area shows every view once");
    demand(area._walks == 0, "no walk over the area's drawings is under way");
}

void checkGestures(const Controleur& controleur) {
    const Vue::Dessin& drawing = *controleur._vue;
    const Vue::Noeud* const dragged = moveNode(controleur)._selected;
    const Vue::Noeud* const temporary = addArc(controleur)._selected;
    const auto isView = [&](const Vue::Noeud* node) {
        return std::find(drawing._vNoeud.begin(), drawing._vNoeud.end(), node) != drawing._vNoeud.end();
    };
    demand(dragged == nullptr || isView(dragged), "the dragged node lives");
    demand(temporary == nullptr || isView(temporary), "the temporary node lives");
    demand(temporary == nullptr || drawing._sArc.contains(addArc(controleur)._arc), "the arc being drawn lives");
    demand(temporary != nullptr || !addArc(controleur)._insible, "without an arc being drawn nothing is snapped");
}

void checkLooks(const Controleur& controleur) {
    const ControleurAddArc& drawing = addArc(controleur);
    for (const Vue::Noeud* view : controleur._vue->_vNoeud) {
        const bool isTemporary = view == drawing._selected;
        const EGD::Arc& circle = view->_egdArc;
        demand(view->_visible == !(isTemporary && drawing._insible),
               "the temporary node is hidden while it is snapped");
        demand(isColor(circle._colorFill, 0, isTemporary ? 50 : 255), "the temporary node's outline alone is faint");
        demand(isTemporary ? isColor(circle._colorIn, 0, 0) : isColor(circle._colorIn, 255, 50),
               "the temporary node alone is empty");
    }
    for (const Vue::Arc* view : controleur._vue->_sArc) {
        const bool isFree = drawing._selected != nullptr && view == drawing._arc && !drawing._insible;
        demand(isColor(view->_arrow._colorFill, 0, isFree ? 50 : 255), "the arc with a free end alone is faint");
    }
}

}  // namespace

Inside::Inside(Window& theProgram)
    : program(&theProgram),
      window(theProgram._pWindow),
      controleur(theProgram._pControleur),
      drawing(theProgram._pVue) {}

State Inside::state() const {
    State state;
    state.content = contentOf(*controleur->_modele, *drawing);
    for (const Vue::Noeud* view : drawing->_vNoeud) state.order.push_back(view->_pNoeud->_name);
    state.counter = controleur->_modele->_num;
    state.mode = controleur->_mode;
    const Vue::Noeud* const dragged = moveNode(*controleur)._selected;
    if (dragged != nullptr) state.dragged = dragged->_pNoeud->_name;
    const ControleurAddArc& gesture = addArc(*controleur);
    if (gesture._selected != nullptr) {
        state.temporary = gesture._selected->_pNoeud->_name;
        state.isSnapped = gesture._insible;
        state.drawn = contentOfArc(*gesture._arc->_pArc);
    }
    state.file = program->currentFile;
    return state;
}

Picked Inside::at(double x, double y) const {
    Picked picked;
    for (const Vue::Noeud* view : drawing->noeudUnderMouse(x, y)) picked.nodes.insert(view->_pNoeud->_name);
    for (Vue::Arc* view : drawing->_sArc) {
        if (view->isPicked()) picked.arcs.push_back(contentOfArc(*view->_pArc));
    }
    return picked;
}

void Inside::check() const {
    checkNodes(*controleur->_modele, *drawing);
    checkArcs(*controleur->_modele, *drawing);
    checkArea(*drawing);
    checkGestures(*controleur);
    checkLooks(*controleur);
}
