// All of an editor's state that its events change, in a form that can be compared and printed.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "Controleur/Controleur.h"
#include "common/Network.h"

struct State {
    Content content;
    std::vector<std::string> order;  // the nodes' names in the order of their views
    int counter = 0;                 // of the automatic names
    Controleur::Mode mode = Controleur::SELECT;
    std::string dragged;                // the node's name; empty when none is
    std::string temporary;              // the free end of the arc being drawn; empty when none is
    bool isSnapped = false;             // that arc ends on another node
    std::optional<Content::Arc> drawn;  // that arc
    std::string file;                   // the current file; empty when there is none

    friend bool operator==(const State&, const State&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const State& state) {
    out << "\n" << state.content << "order:";
    for (const std::string& name : state.order) out << " " << name;
    out << "\ncounter " << state.counter << ", mode " << state.mode << ", file \"" << state.file << "\"";
    if (!state.dragged.empty()) out << ", dragging " << state.dragged;
    if (state.drawn) {
        out << ", drawing an arc from " << std::get<0>(*state.drawn) << " to " << std::get<1>(*state.drawn) << " with "
            << state.temporary << (state.isSnapped ? " hidden" : " free");
    }
    return out << "\n";
}
