// The real window under a random user, beside a model of the editor written from its rules alone; see Editor.h for what
// is compared after every event.
//
//     export LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp
//     KLV_GESTES=1000000 KLV_GESTES_SEED=7 xvfb-run build-asan/tests/gestes/gestes_test --gtest_filter='*Random*'
//
// plays a million events of the random user 7. A sequence that fails is printed, shrunk, as a file for sequences/,
// where it stays once its cause is mended.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "Tape.h"

namespace {

// A few seconds' worth.
#ifdef __SANITIZE_ADDRESS__
constexpr unsigned long someEvents = 1000;
#else
constexpr unsigned long someEvents = 8000;
#endif

unsigned long setting(const char* variable, unsigned long otherwise) {
    const char* const value = std::getenv(variable);
    return value == nullptr ? otherwise : std::stoul(value);
}

std::string written(const std::vector<Event>& events) {
    std::ostringstream out;
    for (const Event& event : events) out << event << "\n";
    return out.str();
}

/// The end of the sequence, from the last of its events on after which the model was empty and it still fails.
std::vector<Event> endThatFails(const std::vector<Event>& events) {
    for (std::size_t begin = events.size(); begin-- > 0;) {
        if (events[begin].kind != Event::clear) continue;
        const std::vector<Event> end(events.begin() + static_cast<std::ptrdiff_t>(begin), events.end());
        if (end.size() > 5000) break;
        if (!play(end).failure.empty()) return end;
    }
    return events;
}

std::string explained(const Outcome& outcome) {
    const std::vector<Event> end = endThatFails(outcome.events);
    if (end.size() > 5000) return "event " + std::to_string(outcome.events.size()) + "; too long to be shrunk";
    const auto fails = [](const std::vector<Event>& events) { return !play(events).failure.empty(); };
    return "after these events:\n" + written(shrink(end, fails));
}

TEST(Gestures, ARandomUserFindsTheEditorAtEveryStepAsItsRulesSay) {
    const auto seed = static_cast<unsigned>(setting("KLV_GESTES_SEED", 1));
    const auto count = setting("KLV_GESTES", someEvents);
    const Outcome outcome = playAtRandom(seed, count);
    if (!outcome.failure.empty()) FAIL() << "seed " << seed << ": " << outcome.failure << " " << explained(outcome);
    EXPECT_EQ(outcome.events.size(), count);
}

TEST(Gestures, SequencesThatOnceFailedDoNoMore) {
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(KLV_SOURCE_DIR "/tests/gestes/sequences")) {
        files.insert(entry.path());
    }
    EXPECT_FALSE(files.empty());
    for (const auto& path : files) {
        std::ifstream file(path);
        EXPECT_EQ(play(readEvents(file)).failure, "") << path;
    }
}

TEST(Gestures, EventsReadBackAsTheyAreWritten) {
    std::vector<Event> events;
    for (int kind = 0; kind < Event::kinds; ++kind) {
        events.push_back({static_cast<Event::Kind>(kind), kind, 0.1 * kind, -1e5 / 3, kind + 2, kind % 2 == 0});
    }
    std::istringstream in(written(events));
    EXPECT_EQ(readEvents(in), events);
}

TEST(Gestures, ShrinkingLeavesTheEventsThatMatter) {
    std::vector<Event> events;
    for (int i = 0; i < 100; ++i) events.push_back({Event::key, i});
    const auto fails = [](const std::vector<Event>& some) {
        const auto has = [&](int i) { return std::find(some.begin(), some.end(), Event{Event::key, i}) != some.end(); };
        return has(3) && has(50) && has(51);
    };
    const std::vector<Event> left = {{Event::key, 3}, {Event::key, 50}, {Event::key, 51}};
    EXPECT_EQ(shrink(events, fails), left);
}

}  // namespace
