#include "Generator.h"

#include <iterator>
#include <tuple>

namespace {

constexpr std::size_t crowded = 24;  // nodes; more of them take longer and show nothing new

}  // namespace

Event Generator::next(const Reference& reference) {
    if (_planned.empty()) {
        const State state = reference.state();
        plan(state, reference);
        disturb(state, reference);
    }
    const Event event = _planned.front();
    _planned.pop_front();
    return event;
}

void Generator::plan(const State& state, const Reference& reference) {
    if (state.order.size() > crowded) {
        add(Event::clear, {}, pick(3));
        return;
    }
    const int chance = pick(1000);
    if (chance < 350) {
        drag(state, onNode(state));
    } else if (chance < 500) {
        click(somewhere(state));
    } else if (chance < 520) {
        doubleClick(oneIn(4) ? onArc(state) : onNode(state));
    } else if (chance < 550) {
        click(onArc(state));
    } else if (chance < 700) {
        add(Event::mode, {}, pick(3));
    } else if (chance < 750) {
        _planned.push_back(command(reference));
    } else {
        _planned.push_back(anything(state, reference));
    }
}

/// Now and then something happens in the middle of a gesture, or a part of it is lost.
void Generator::disturb(const State& state, const Reference& reference) {
    const auto somePlace = [this](std::size_t places) {
        return _planned.begin() + static_cast<std::ptrdiff_t>(pick(static_cast<int>(places)));
    };
    if (oneIn(8)) _planned.insert(somePlace(_planned.size() + 1), anything(state, reference));
    if (_planned.size() > 1 && oneIn(12)) _planned.erase(somePlace(_planned.size()));
    if (_planned.size() > 2 && oneIn(12)) {
        const auto [x, y] = somewhere(state);
        const Event press{Event::press, 1, x, y};
        const Event mode{Event::mode, pick(3)};
        const auto place = _planned.insert(_planned.end() - 2, press);
        _planned.insert(place, mode);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Gestures
// ---------------------------------------------------------------------------------------------------------------------

void Generator::add(Event::Kind kind, Point at, int argument) {
    Event event{kind, argument, at.first, at.second};
    event.reply = pick(20);
    event.isReset = oneIn(10);
    _planned.push_back(event);
}

void Generator::click(Point at) {
    add(Event::motion, at);
    const int button = oneIn(6) ? 1 + pick(3) : 1;
    add(Event::press, at, button);
    add(Event::release, at, button);
}

void Generator::doubleClick(Point at) {
    click(at);
    add(Event::press, at);
    add(Event::doublePress, at);
    if (oneIn(4)) {
        add(Event::release, at);
        add(Event::press, at);
        add(Event::triplePress, at);
    }
    add(Event::release, at);
}

void Generator::drag(const State& state, Point from) {
    if (!oneIn(10)) add(Event::motion, from);
    add(Event::press, from);
    Point at = from;
    for (int motions = pick(5); motions >= 0; --motions) {
        at = somewhere(state);
        add(Event::motion, at);
    }
    add(Event::release, oneIn(10) ? anywhere() : at);
}

Event Generator::anything(const State& state, const Reference& reference) {
    const int chance = pick(100);
    if (chance < 5) return command(reference);
    Event event;
    event.reply = pick(20);
    event.isReset = oneIn(10);
    std::tie(event.x, event.y) = somewhere(state);
    event.argument = 1 + (oneIn(3) ? pick(4) : 0);
    if (chance < 45) {
        event.kind = Event::motion;
    } else if (chance < 55) {
        event.kind = Event::release;
    } else if (chance < 65) {
        event.kind = Event::press;
    } else if (chance < 67) {
        event.kind = oneIn(4) ? Event::triplePress : Event::doublePress;
    } else if (chance < 70) {
        constexpr int keys[] = {GDK_KEY_a, GDK_KEY_Delete, GDK_KEY_BackSpace, GDK_KEY_Escape, GDK_KEY_2};
        event.kind = Event::key;
        event.argument = keys[pick(static_cast<int>(std::size(keys)))];
    } else if (chance < 71) {
        event.kind = Event::paint;
    } else {
        event.kind = Event::mode;
        event.argument = pick(3);
    }
    return event;
}

Event Generator::command(const Reference& reference) {
    Event event;
    event.reply = pick(20);
    event.argument = pick(reference.files());
    const int chance = pick(1000);
    if (chance < 150) {
        event.kind = Event::clear;
        event.argument = pick(3);
    } else if (chance < 500) {
        event.kind = Event::load;
    } else if (chance < 900) {
        event.kind = Event::write;
    } else if (chance < 950) {
        event.kind = Event::save;
    } else if (chance < 960) {
        event.kind = Event::saveAs;
    } else if (chance < 970) {
        event.kind = Event::open;
    } else if (chance < 980) {
        event.kind = Event::analyse;
        event.argument = pick(5);
    } else if (chance < 990) {
        event.kind = Event::resize;
        event.x = 200 + pick(1000);
        event.y = 200 + pick(800);
    } else {
        event.kind = Event::paint;
    }
    return event;
}

// ---------------------------------------------------------------------------------------------------------------------
// Places
// ---------------------------------------------------------------------------------------------------------------------

int Generator::pick(int n) { return static_cast<int>(_random() % static_cast<unsigned>(n)); }

/// In the area, seldom outside it.
Generator::Point Generator::anywhere() {
    if (oneIn(200)) return {pick(60000) - 20000, pick(60000) - 20000};
    if (oneIn(15)) return {pick(1400) - 200, pick(1000) - 200};
    const double fraction = oneIn(4) ? 0.25 * pick(4) : 0;
    return {20 + pick(560) + fraction, 20 + pick(360) + fraction};
}

/// On a node, its rim, or where its marking may be.
Generator::Point Generator::onNode(const State& state) {
    if (state.order.empty()) return anywhere();
    const std::string& name = state.order[static_cast<std::size_t>(pick(static_cast<int>(state.order.size())))];
    const Content::Node& node = state.content.nodes.at(name);
    if (oneIn(8)) return {node.x - 60 + pick(82), node.y - 60 + pick(82)};
    if (oneIn(3)) return {node.x, node.y};
    return {node.x - 14 + pick(29), node.y - 14 + pick(29)};
}

/// Near the middle of an arc.
Generator::Point Generator::onArc(const State& state) {
    if (state.content.arcs.empty()) return anywhere();
    auto arc = state.content.arcs.begin();
    std::advance(arc, pick(static_cast<int>(state.content.arcs.size())));
    const Content::Node& source = state.content.nodes.at(std::get<0>(*arc));
    const Content::Node& destination = state.content.nodes.at(std::get<1>(*arc));
    return {(source.x + destination.x) / 2 - 3 + pick(7), (source.y + destination.y) / 2 - 3 + pick(7)};
}

Generator::Point Generator::somewhere(const State& state) {
    const int chance = pick(10);
    if (chance < 5) return anywhere();
    return chance < 9 ? onNode(state) : onArc(state);
}
