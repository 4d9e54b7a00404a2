#include "Reference.h"

#include <gtkmm/dialog.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <utility>

namespace {

using Modele::Multiset;
using Rule = Content::Rule;

/// What a user may type, and what it means; nothing when it is refused.
template <class Meaning>
struct Typed {
    const char* text;
    std::optional<Meaning> meaning;
};

const Typed<Multiset> markings[] = {
    {"2a b", {{{"a", 2}, {"b", 1}}}},
    {"", {Multiset{}}},
    {"  x   3a ", {{{"a", 3}, {"x", 1}}}},
    {"a a 2a", {{{"a", 4}}}},
    {"0z y", {{{"y", 1}, {"z", 0}}}},
    {"2147483647most", {{{"most", 2147483647}}}},
    {"_9 007bond B", {{{"B", 1}, {"_9", 1}, {"bond", 7}}}},
    {"3", {}},
    {"-1a", {}},
    {"a\tb", {}},
    {"a, b", {}},
    {"2147483648a", {}},
    {"2147483647a a", {}},
    {"é", {}},
};

// The empty text is the one that removes the rule.
const Typed<Rule> rules[] = {
    {"a 2b -> c", {{{{"a", 1}, {"b", 2}}, {{"c", 1}}}}},
    {"", {}},
    {"->", {{{}, {}}}},
    {"a->", {{{{"a", 1}}, {}}}},
    {" -> 3x  x", {{{}, {{"x", 4}}}}},
    {"0a a -> 0b", {{{{"a", 1}}, {{"b", 0}}}}},
    {" ", {}},
    {"a", {}},
    {"a > b", {}},
    {"a - > b", {}},
    {"a -> b -> c", {}},
    {"-", {}},
    {"4 -> a", {}},
};

// The replies to a prompt; greater ones type one of the texts above.
enum : int { cancelled, windowClosed, unchanged, typedFirst };

template <class Meaning, std::size_t n>
const Typed<Meaning>* typedBy(int reply, const Typed<Meaning> (&texts)[n]) {
    return reply < typedFirst ? nullptr : &texts[static_cast<std::size_t>(reply - typedFirst) % n];
}

bool saysYes(int reply) { return reply % 2 == 0; }

Multiset withoutZeros(Multiset m) {
    std::erase_if(m, [](const auto& entry) { return entry.second == 0; });
    return m;
}

Rule withoutZeros(const Rule& rule) { return {withoutZeros(rule.first), withoutZeros(rule.second)}; }

std::string written(const Multiset& m) {
    std::ostringstream out;
    for (const auto& [name, count] : withoutZeros(m)) {
        if (count != 1) out << count;
        out << name << ' ';
    }
    return out.str();
}

std::string written(const Rule& rule) { return written(rule.first) + "-> " + written(rule.second); }

std::string written(const Content::Arc& arc) {
    const auto& [source, destination, rule] = arc;
    return source + " -> " + destination + (rule ? " : " + written(*rule) : "") + ";";
}

}  // namespace

Reference::Reference(std::vector<std::string> files) : _files(std::move(files)) {
    _written[0] = {{{"q2", 120, 90, {{{"a", 1}, {"b", 0}}}}, {"a", 300, 200, {}}, {"isolated", 400, 50, {}}},
                   {{"q2", "a", {{{{"x", 0}, {"y", 2}}, {}}}}, {"a", "a", {{{}, {{"z", 1}}}}}, {"a", "q2", {}}},
                   true};
}

// ---------------------------------------------------------------------------------------------------------------------
// Events
// ---------------------------------------------------------------------------------------------------------------------

bool Reference::allows(const Event& event) const {
    const auto file = _written.find(event.argument);
    if (event.kind == Event::load) return file == _written.end() || file->second.isReadable;
    if (event.kind == Event::open) return file != _written.end() && file->second.isReadable;
    if (event.kind == Event::saveAs || event.kind == Event::save) return event.argument != files() - 1;
    return true;
}

std::vector<Exchange> Reference::apply(const Event& event, const Picked& picked) {
    _exchanges.clear();
    _justWritten.reset();
    switch (event.kind) {
        case Event::press:
        case Event::doublePress:
        case Event::triplePress:
            press(event, picked);
            break;
        case Event::release:
            release(event.argument);
            break;
        case Event::motion:
            move(event.x, event.y, picked.nodes);
            break;
        case Event::mode:
            _mode = static_cast<Controleur::Mode>(event.argument);
            break;
        case Event::clear:
            clear();
            break;
        case Event::load:
            load(event.argument);
            break;
        case Event::open:
            if (ask("Please choose a file", "", "", event, nullptr)) open(event.argument);
            break;
        case Event::save:
            save(event);
            break;
        case Event::saveAs:
            saveAs(event);
            break;
        case Event::write:
            write(event.argument, event.reply);
            break;
        case Event::analyse:
            analyse(event);
            break;
        case Event::key:
        case Event::paint:
        case Event::resize:
            break;
    }
    return std::move(_exchanges);
}

void Reference::press(const Event& event, const Picked& picked) {
    std::vector<Node*> order;
    for (const auto& node : _nodes) order.push_back(node.get());
    for (Node* node : order) {
        if (isAlive(node) && picked.nodes.contains(node->name) && pressNode(event, node)) return;
    }
    std::set<Arc*> done;
    if (event.kind != Event::doublePress) {
        for (const Content::Arc& arc : picked.arcs) pressArc(event, arc, done);
    }
    if (event.kind == Event::press && event.argument == 1 && _mode == Controleur::NOEUD) addNode(event.x, event.y);
}

/// @return whether the press is used up
bool Reference::pressNode(const Event& event, Node* node) {
    if (event.kind == Event::doublePress) {
        _dragged = nullptr;
        if (_mode != Controleur::ARC) editMarking(node, event);
        return false;
    }
    if (event.kind != Event::press || event.argument != 1) return false;
    if (_mode != Controleur::ARC) {
        _dragged = node;
        return true;
    }
    if (_temporary != nullptr) finishArc();  // a new arc ends the one whose release was lost
    _temporary = addNode(node->x, node->y);
    _drawn = addArc(node, _temporary);
    return true;
}

/// Arcs that look the same are the same to the user: any that has not been offered yet stands for the one pressed.
void Reference::pressArc(const Event& event, const Content::Arc& pressed, std::set<Arc*>& done) {
    for (Arc& arc : _arcs) {
        if (content(arc) != pressed || !done.insert(&arc).second) continue;
        editRule(&arc, event);
        return;
    }
}

void Reference::move(double x, double y, const std::set<std::string>& under) {
    const auto last = _pointer.value_or(std::pair(x, y));
    _pointer.emplace(x, y);
    for (Node* node : {_dragged, _temporary}) {
        if (node == nullptr) continue;
        node->x += x - last.first;
        node->y += y - last.second;
    }
    if (_temporary == nullptr) return;

    const auto other = std::find_if(_nodes.begin(), _nodes.end(), [&](const auto& node) {
        return node.get() != _temporary && under.contains(node->name);
    });
    if (other == _nodes.end()) {
        _isSnapped = false;
        _drawn->destination = _temporary;
    } else if (!_isSnapped) {
        _isSnapped = true;
        _drawn->destination = other->get();
    }
}

void Reference::release(int button) {
    if (button != 1) return;
    _dragged = nullptr;
    if (_temporary != nullptr) finishArc();
}

void Reference::finishArc() {
    Node* const temporary = std::exchange(_temporary, nullptr);
    _drawn = nullptr;
    if (std::exchange(_isSnapped, false)) remove(temporary);
}

// ---------------------------------------------------------------------------------------------------------------------
// Dialogs
// ---------------------------------------------------------------------------------------------------------------------

void Reference::tell(const std::string& message) {
    _exchanges.push_back({message, message, "", Gtk::RESPONSE_CLOSE, {}});
}

/// A dialog with an entry or a file chooser; as the reply says, it is cancelled, closed or accepted.
/// @return whether it is accepted
bool Reference::ask(const std::string& title, const std::string& text, const std::string& entry, const Event& event,
                    const char* typed) {
    const int response = event.reply == cancelled      ? Gtk::RESPONSE_CANCEL
                         : event.reply == windowClosed ? Gtk::RESPONSE_DELETE_EVENT
                                                       : Gtk::RESPONSE_OK;
    Exchange exchange{title, text, entry, response, {}};
    if (typed != nullptr) exchange.typed = typed;
    if (title == "Please choose a file") exchange.chosen = _files[static_cast<std::size_t>(event.argument)];
    if (event.isReset && _exchanges.empty()) {
        exchange.isReset = true;
        clear();
    }
    _exchanges.push_back(exchange);
    return response == Gtk::RESPONSE_OK;
}

void Reference::editMarking(Node* node, const Event& event) {
    const Multiset before = node->marking.value_or(Multiset{});
    const auto* const typed = typedBy(event.reply, markings);
    const bool isAccepted = ask("", "multi set : ", written(before), event, typed == nullptr ? nullptr : typed->text);
    if (!isAccepted || !isAlive(node)) return;
    const auto meaning = typed == nullptr ? withoutZeros(before) : typed->meaning;
    if (meaning) {
        node->marking = meaning;
    } else {
        tell("Syntaxe error !");
    }
}

void Reference::editRule(Arc* arc, const Event& event) {
    const auto before = arc->rule;
    const auto* const typed = typedBy(event.reply, rules);
    const bool isAccepted =
        ask("", "Rule :", before ? written(*before) : "", event, typed == nullptr ? nullptr : typed->text);
    if (!isAccepted || !isAlive(arc)) return;
    if (typed == nullptr) {
        if (before) arc->rule = withoutZeros(*before);
    } else if (typed->meaning || typed->text == std::string()) {
        arc->rule = typed->meaning;
    } else {
        tell("Syntaxe error !");
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Files and analyses
// ---------------------------------------------------------------------------------------------------------------------

void Reference::clear() {
    _nodes.clear();
    _arcs.clear();
    _counter = 0;
    _dragged = nullptr;
    _temporary = nullptr;
    _drawn = nullptr;
    _isSnapped = false;
    _current = -1;
}

void Reference::load(int file) {
    const auto found = _written.find(file);
    if (found == _written.end()) {
        tell("Load file error");
        return;
    }
    const int current = _current;
    clear();
    _current = current;
    for (const Node& node : found->second.nodes) _nodes.push_back(std::make_unique<Node>(node));
    for (const auto& [source, destination, rule] : found->second.arcs) {
        addArc(find(source), find(destination))->rule = rule;
    }
}

void Reference::open(int file) {
    load(file);
    _current = file;
}

void Reference::save(const Event& event) {
    if (_current < 0) {
        saveAs(event);
    } else if (!write(_current, event.reply)) {
        tell("Save error.");
    }
}

void Reference::saveAs(const Event& event) {
    if (!ask("Please choose a file", "", "", event, nullptr)) return;
    if (write(event.argument, event.reply)) {
        _current = event.argument;
        return;
    }
    Event again = event;
    again.reply = cancelled;
    ask("Please choose a file", "", "", again, nullptr);
}

bool Reference::write(int file, int reply) {
    if (file == files() - 1) {
        tell("Write data error.");
        return false;
    }
    if (_written.contains(file)) {
        const bool isYes = saysYes(reply);
        _exchanges.push_back(
            {"Replace file ?", "Replace file ?", "", isYes ? Gtk::RESPONSE_YES : Gtk::RESPONSE_NO, {}});
        if (!isYes) return false;
    }
    _written[file] = snapshot();
    _justWritten = file;
    return true;
}

/// The analyser that the window runs gives one and the same answer.
void Reference::analyse(const Event& event) {
    const char* const answers[] = {"KLV is bounded.", "KLV is prefix bounded.", "Bound = (2, 1)", "Prefix bound = (3)"};
    if (event.argument < 4) {
        _exchanges.push_back({"Information", answers[event.argument], "", Gtk::RESPONSE_OK, {}});
    } else if (ask("", "Formula : ", "", event, event.reply < unchanged ? nullptr : "'")) {
        tell("Syntaxe error");
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// The network
// ---------------------------------------------------------------------------------------------------------------------

Reference::Node* Reference::addNode(double x, double y) {
    std::string name;
    do {
        name = "q" + std::to_string(++_counter);
    } while (find(name) != nullptr);
    _nodes.push_back(std::make_unique<Node>(Node{name, x, y, {}}));
    return _nodes.back().get();
}

Reference::Arc* Reference::addArc(Node* source, Node* destination) {
    return &_arcs.emplace_back(Arc{source, destination, {}});
}

void Reference::remove(Node* node) {
    _arcs.remove_if([node](const Arc& arc) { return arc.source == node || arc.destination == node; });
    if (_dragged == node) _dragged = nullptr;
    const auto place = std::find_if(_nodes.begin(), _nodes.end(), [node](const auto& n) { return n.get() == node; });
    std::swap(*place, _nodes.back());
    _nodes.pop_back();
    --_counter;
}

Reference::Node* Reference::find(const std::string& name) const {
    const auto found = std::find_if(_nodes.begin(), _nodes.end(), [&](const auto& node) { return node->name == name; });
    return found == _nodes.end() ? nullptr : found->get();
}

bool Reference::isAlive(const Node* node) const {
    return std::any_of(_nodes.begin(), _nodes.end(), [node](const auto& n) { return n.get() == node; });
}

bool Reference::isAlive(const Arc* arc) const {
    return std::any_of(_arcs.begin(), _arcs.end(), [arc](const Arc& a) { return &a == arc; });
}

// ---------------------------------------------------------------------------------------------------------------------
// What is seen from outside
// ---------------------------------------------------------------------------------------------------------------------

Content::Arc Reference::content(const Arc& arc) { return {arc.source->name, arc.destination->name, arc.rule}; }

State Reference::state() const {
    State state;
    for (const auto& node : _nodes) {
        state.content.nodes[node->name] = {node->x, node->y, node->marking};
        state.order.push_back(node->name);
    }
    for (const Arc& arc : _arcs) state.content.arcs.insert(content(arc));
    state.counter = _counter;
    state.mode = _mode;
    if (_dragged != nullptr) state.dragged = _dragged->name;
    if (_temporary != nullptr) {
        state.temporary = _temporary->name;
        state.isSnapped = _isSnapped;
        state.drawn = content(*_drawn);
    }
    if (_current >= 0) state.file = _files[static_cast<std::size_t>(_current)];
    return state;
}

Reference::File Reference::snapshot() const {
    File file{{}, {}, true};
    for (const auto& node : _nodes) {
        Node& saved = file.nodes.emplace_back(*node);
        saved.x = static_cast<int>(saved.x);
        saved.y = static_cast<int>(saved.y);
        if (saved.marking) saved.marking = withoutZeros(*saved.marking);
        if (saved.x < 0 || saved.y < 0) file.isReadable = false;
    }
    for (const Arc& arc : _arcs) {
        auto [source, destination, rule] = content(arc);
        if (rule) rule = withoutZeros(*rule);
        file.arcs.emplace(source, destination, rule);
    }
    return file;
}

std::string Reference::text() const {
    std::ostringstream out;
    const File file = snapshot();
    for (const Node& node : file.nodes) {
        out << node.name << "(" << static_cast<int>(node.x) << ", " << static_cast<int>(node.y) << ");\n";
    };
    const Content content = state().content;
    for (const auto& [name, node] : content.nodes) {
        for (const Content::Arc& arc : file.arcs) {
            if (std::get<0>(arc) == name) out << written(arc);
        }
        if (node.marking) out << name << " : " << written(*node.marking) << ";";
        out << "\n";
    }
    return out.str();
}

std::optional<Content> Reference::saved() const {
    const File file = snapshot();
    if (!file.isReadable) return std::nullopt;
    Content content;
    for (const Node& node : file.nodes) content.nodes[node.name] = {node.x, node.y, node.marking};
    content.arcs = file.arcs;
    return content;
}
