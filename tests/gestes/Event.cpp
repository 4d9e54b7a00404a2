#include "Event.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view names[Event::kinds] = {"press", "double",  "triple", "release", "motion", "key",
                                                  "mode",  "clear",   "load",   "open",    "save",   "saveAs",
                                                  "write", "analyse", "paint",  "resize"};

/// Exactly, in as few digits as that takes.
std::string_view exact(double value, char (&digits)[64]) {
    return {digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Event& event) {
    char x[64];
    char y[64];
    out << names[event.kind] << ' ' << event.argument << " at " << exact(event.x, x) << ' ' << exact(event.y, y)
        << " reply " << event.reply;
    return event.isReset ? out << " reset" : out;
}

std::vector<Event> readEvents(std::istream& in) {
    std::vector<Event> events;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string name;
        std::string at;
        std::string reply;
        std::string reset;
        Event event;
        words >> name >> event.argument >> at >> event.x >> event.y >> reply >> event.reply;
        const auto* const kind = std::find(std::begin(names), std::end(names), name);
        if (!words || kind == std::end(names)) throw std::runtime_error("not an event: " + line);
        event.kind = static_cast<Event::Kind>(kind - std::begin(names));
        event.isReset = static_cast<bool>(words >> reset);
        events.push_back(event);
    }
    return events;
}
