#include "Tape.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>

#include "Editor.h"
#include "Generator.h"
#include "common/Folder.h"
#include "common/ToolkitSettings.h"

namespace {

/// What has happened so far, in memory that is shared with the processes forked later.
class Tape {
public:
    explicit Tape(std::size_t capacity) : _bytes(sizeof(Content) + capacity * sizeof(Event)) {
        void* const memory = mmap(nullptr, _bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::runtime_error("no memory for the tape");
        _content = new (memory) Content{};
    }
    Tape(const Tape&) = delete;
    Tape& operator=(const Tape&) = delete;
    ~Tape() { munmap(_content, _bytes); }

    void add(const Event& event) {
        begin()[_content->size] = event;
        ++_content->size;
    }

    std::size_t size() const { return _content->size; }
    std::vector<Event> events() const { return {begin(), begin() + size()}; }

private:
    struct Content {
        alignas(Event) std::atomic<std::size_t> size = 0;
    };

    Event* begin() const { return reinterpret_cast<Event*>(_content + 1); }

    std::size_t _bytes;
    Content* _content;
};

using Next = std::function<Event(const Reference&)>;

/// @return whether all was well
bool playHere(Tape& tape, std::size_t count, const Next& next) {
    std::cout.rdbuf(nullptr);  // the program's traces
    Toolkit toolkit;
    toolkit.SetUp();
    const Folder folder;
    Editor editor(folder);
    while (tape.size() < count && !testing::Test::HasFailure()) {
        const Event event = next(editor.reference());
        tape.add(event);
        editor.apply(event);
    }
    return !testing::Test::HasFailure();
}

/// @return how the process ended; it is killed when nothing happens in it for a minute
std::string waitFor(pid_t process, const Tape& tape) {
    using Clock = std::chrono::steady_clock;
    auto lastSign = Clock::now();
    std::size_t seen = 0;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (tape.size() != seen) {
            seen = tape.size();
            lastSign = Clock::now();
        }
        if (Clock::now() - lastSign > std::chrono::minutes(1)) kill(process, SIGKILL);
    }
    if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
    return WEXITSTATUS(status) == 0 ? "" : "exit status " + std::to_string(WEXITSTATUS(status));
}

Outcome playInProcess(std::size_t count, const Next& next) {
    Tape tape(count);
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process == 0) std::exit(playHere(tape, count, next) ? 0 : 1);
    const std::string failure = waitFor(process, tape);
    return {failure, tape.events()};
}

}  // namespace

Outcome play(const std::vector<Event>& events) {
    std::size_t played = 0;
    return playInProcess(events.size(), [&](const Reference&) { return events[played++]; });
}

Outcome playAtRandom(unsigned seed, std::size_t count) {
    Generator generator(seed);
    return playInProcess(count, [&](const Reference& reference) { return generator.next(reference); });
}

/// The greedy half of delta debugging (Zeller and Hildebrandt, 2002): leaves out runs of events, from long to short
/// ones.
std::vector<Event> shrink(std::vector<Event> events, const std::function<bool(const std::vector<Event>&)>& fails) {
    for (std::size_t length = std::max<std::size_t>(events.size() / 2, 1); length > 0; length /= 2) {
        bool hasShrunk = true;
        while (hasShrunk) {
            hasShrunk = false;
            for (std::size_t from = 0; from < events.size();) {
                const auto begin = events.begin() + static_cast<std::ptrdiff_t>(from);
                const auto end = events.begin() + static_cast<std::ptrdiff_t>(std::min(from + length, events.size()));
                std::vector<Event> fewer(events.begin(), begin);
                fewer.insert(fewer.end(), end, events.end());
                if (fails(fewer)) {
                    events = std::move(fewer);
                    hasShrunk = true;
                } else {
                    from += length;
                }
            }
        }
    }
    return events;
}
