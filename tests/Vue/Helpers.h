// What the views' tests share: a network with its drawing on an area that the test can click.
#pragma once

#include <map>
#include <memory>
#include <sstream>
#include <string>

#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Vue/Arc.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"
#include "common/Picture.h"
#include "common/TestArea.h"
#include "common/Traces.h"

/// The form in which traces name an object.
inline std::string address(const void* object) {
    std::ostringstream text;
    text << object;
    return text.str();
}

/// A network and its drawing; either may be destroyed first.
class Scene {
public:
    Vue::Noeud* node(const std::string& name, double x, double y) {
        return dessin->addNoeud(klv->addNoeud(name), x, y);
    }

    /// A node that is initial with the marking `text`.
    Vue::Noeud* initialNode(const std::string& name, double x, double y, const std::string& text) {
        Vue::Noeud* view = node(name, x, y);
        view->getModele()->setInit(text);
        return view;
    }

    /// An arc with the rule `text`, or with none.
    Vue::Arc* arc(Vue::Noeud* from, Vue::Noeud* to, const std::string& text = "") {
        Modele::Arc* arc = from->getModele()->addArc(to->getModele(), nullptr);
        Vue::Arc* view = dessin->addArc(arc);
        if (!text.empty()) arc->setRegle(text);
        return view;
    }

    Picture picture(int width = 300, int height = 200) { return Picture::of(*area, width, height); }

    bool isPickedAt(EGD::Drawing* view, double x, double y) {
        area->setPick(x, y);
        return view->isPicked();
    }

    Traces traces;
    std::unique_ptr<Modele::KLV> klv = std::make_unique<Modele::KLV>();
    TestArea* area = new TestArea;
    std::unique_ptr<Vue::Dessin> dessin = std::make_unique<Vue::Dessin>(area);
};
