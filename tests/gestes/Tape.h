// Sequences of events played on the editor, each in a process of its own, so that a crash ends neither the test nor the
// search for the events that matter.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Event.h"

struct Outcome {
    std::string failure;        // how the process ended; empty when all was well
    std::vector<Event> events;  // all that happened, the one that failed included
};

/// Plays the sequence. The process writes what goes wrong to the standard streams.
Outcome play(const std::vector<Event>& events);

/// Plays `count` events of the random user `seed`.
Outcome playAtRandom(unsigned seed, std::size_t count);

/// A sequence of which no single event, nor any of many halves of it, can be left out, found by leaving out.
/// @param fails whether a sequence still fails; it is true of `events`
std::vector<Event> shrink(std::vector<Event> events, const std::function<bool(const std::vector<Event>&)>& fails);
