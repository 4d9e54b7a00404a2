// A user at random: whole gestures at places where something is, broken gestures, and events that no hand would send,
// mixed.
#pragma once

#include <deque>
#include <random>
#include <utility>

#include "Event.h"
#include "Reference.h"

class Generator {
public:
    explicit Generator(unsigned seed) : _random(seed) {}

    /// The next event of a user who sees `reference`.
    Event next(const Reference& reference);

private:
    using Point = std::pair<double, double>;

    void plan(const State& state, const Reference& reference);
    void click(Point at);
    void doubleClick(Point at);
    void drag(const State& state, Point from);
    void disturb(const State& state, const Reference& reference);
    void add(Event::Kind kind, Point at, int argument = 1);
    Event anything(const State& state, const Reference& reference);
    Event command(const Reference& reference);

    Point anywhere();
    Point onNode(const State& state);
    Point onArc(const State& state);
    Point somewhere(const State& state);

    int pick(int n);
    bool oneIn(int n) { return pick(n) == 0; }

    std::mt19937 _random;
    std::deque<Event> _planned;
};
