// The editor by its rules alone: what each event does to the network, to the gestures in progress and to the files, and
// which dialogs it opens. It knows nothing of the program; what lies under the pointer is told to it.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Event.h"
#include "State.h"

/// What lies under the pointer.
struct Picked {
    std::set<std::string> nodes;
    std::vector<Content::Arc> arcs;  // in the order in which they are offered
};

/// A dialog as the user reads it, and what the user does in it.
struct Exchange {
    std::string title;
    std::string text;
    std::string entry;
    int response;                      // a Gtk::ResponseType
    std::optional<std::string> typed;  // replaces what stands in the entry
    std::string chosen = {};           // the path given to a file chooser
    bool isReset = false;              // the model is emptied before the answer is given
};

/// A file as a person writes it, with what the editor never writes.
inline constexpr auto givenFile =
    "// three nodes\n"
    "q2 -> a : 0x 2y -> ;\n"
    "a(300, 200); q2(120,90);\n"
    "a -> a : -> z;  a -> q2;  // a loop, and back\n"
    "q2 : 3a 0b a; isolated(400, 50);\n";

class Reference {
public:
    /// @param files the paths of the files that events name by number. The first holds the given file, the last cannot
    /// be
    ///        written, the others do not exist.
    explicit Reference(std::vector<std::string> files);

    /// Whether the event can happen: a file that is to be opened must be one that can be read.
    bool allows(const Event& event) const;

    /// @param picked of a press: before the event; of a motion: after it
    /// @return the dialogs that open, in turn
    std::vector<Exchange> apply(const Event& event, const Picked& picked);

    State state() const;

    /// The text of the file, but for the order of a node's arcs.
    std::string text() const;

    /// What is left of the network when the file is read back; nothing when a position is negative, which no file can
    /// say.
    std::optional<Content> saved() const;

    /// The number of the file that the last event wrote, if it did.
    std::optional<int> justWritten() const { return _justWritten; }

    int files() const { return static_cast<int>(_files.size()); }

private:
    struct Node {
        std::string name;
        double x;
        double y;
        std::optional<Modele::Multiset> marking;
    };
    struct Arc {
        Node* source;
        Node* destination;
        std::optional<Content::Rule> rule;
    };
    struct File {
        std::vector<Node> nodes;  // in the order of their views
        std::multiset<Content::Arc> arcs;
        bool isReadable;
    };

    void press(const Event& event, const Picked& picked);
    bool pressNode(const Event& event, Node* node);
    void pressArc(const Event& event, const Content::Arc& pressed, std::set<Arc*>& done);
    void move(double x, double y, const std::set<std::string>& under);
    void release(int button);
    void finishArc();

    void editMarking(Node* node, const Event& event);
    void editRule(Arc* arc, const Event& event);

    void clear();
    void load(int file);
    void open(int file);
    void save(const Event& event);
    void saveAs(const Event& event);
    bool write(int file, int reply);
    void analyse(const Event& event);

    Node* addNode(double x, double y);
    Arc* addArc(Node* source, Node* destination);
    void remove(Node* node);
    Node* find(const std::string& name) const;
    bool isAlive(const Node* node) const;
    bool isAlive(const Arc* arc) const;
    static Content::Arc content(const Arc& arc);
    File snapshot() const;

    void tell(const std::string& message);
    bool ask(const std::string& title, const std::string& text, const std::string& entry, const Event& event,
             const char* typed);

    std::vector<std::string> _files;
    std::map<int, File> _written;
    std::vector<std::unique_ptr<Node>> _nodes;  // in the order of their views
    std::list<Arc> _arcs;
    int _counter = 0;
    Controleur::Mode _mode = Controleur::SELECT;
    Node* _dragged = nullptr;
    Node* _temporary = nullptr;
    Arc* _drawn = nullptr;
    bool _isSnapped = false;
    int _current = -1;  // the number of the current file
    std::optional<std::pair<double, double>> _pointer;
    std::optional<int> _justWritten;
    std::vector<Exchange> _exchanges;  // of the event being applied
};
