// A model with its drawing and its controller, without a window around them; and what such a network holds, in a form
// that tests can compare and print.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "Controleur/Controleur.h"
#include "EGD/EasyDrawingArea.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"

/// The parts are owned by the controller and go with it.
struct Network {
    Modele::KLV* const model = new Modele::KLV;
    Vue::Dessin* const drawing = new Vue::Dessin(new EGD::EasyDrawingArea);
    Controleur controleur{nullptr, model, drawing};
};

/// What a network consists of. Arcs have no order.
struct Content {
    struct Node {
        double x;
        double y;
        std::optional<Modele::Multiset> marking;  // of an initial node
        friend bool operator==(const Node&, const Node&) = default;
    };
    using Rule = std::pair<Modele::Multiset, Modele::Multiset>;
    using Arc = std::tuple<std::string, std::string, std::optional<Rule>>;

    std::map<std::string, Node> nodes;
    std::multiset<Arc> arcs;
    friend bool operator==(const Content&, const Content&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const Modele::Multiset& molecules) {
    out << "{";
    for (const auto& [name, count] : molecules) out << " " << name << ":" << count;
    return out << " }";
}

inline std::ostream& operator<<(std::ostream& out, const Content::Node& node) {
    out << "at (" << node.x << ", " << node.y << ")";
    if (node.marking) out << " marked " << *node.marking;
    return out;
}

inline std::ostream& operator<<(std::ostream& out, const Content& content) {
    for (const auto& [name, node] : content.nodes) out << name << " " << node << "\n";
    for (const auto& [source, destination, rule] : content.arcs) {
        out << source << " to " << destination;
        if (rule) out << " by " << rule->first << " to " << rule->second;
        out << "\n";
    }
    return out;
}

/// Every node of `model` must have a view on `drawing`.
inline Content contentOf(Modele::KLV& model, const Vue::Dessin& drawing) {
    Content content;
    for (const auto& [name, node] : model.getNoeuds()) {
        const Vue::Noeud* view = drawing.getNoeudVue(node);
        if (view == nullptr) {
            ADD_FAILURE() << name << " has no view";
            continue;
        }
        Content::Node& described = content.nodes[name];
        described = {view->getPosX(), view->getPosY(), std::nullopt};
        if (node->isInit()) described.marking = node->getMarquage();
    }
    for (Modele::Arc* arc : model.getArcs()) {
        std::optional<Content::Rule> rule;
        if (arc->getRegle() != nullptr) rule.emplace(arc->getRegle()->getIn(), arc->getRegle()->getOut());
        content.arcs.emplace(arc->getSource()->getName(), arc->getDestination()->getName(), rule);
    }
    return content;
}

inline Content contentOf(const Network& network) { return contentOf(*network.model, *network.drawing); }
