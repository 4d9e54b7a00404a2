// What the tests of the analyses share: models read from text, a directory of their own with tools that the
// test makes up, and a hold on standard output.
#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "Modele/KLV.h"
#include "common/Folder.h"

/// A model from the text of a file: arcs, markings, positions (read and ignored) and comments. Throws
/// std::runtime_error on anything else.
std::unique_ptr<Modele::KLV> readModel(const std::string& text);

/// The model in examples/NAME.klv.
std::unique_ptr<Modele::KLV> readExample(const std::string& name);

struct Sizes {
    int nodes;
    int arcs;
    int molecules;
    int rule;     ///< the largest count in a rule
    int marking;  ///< the largest count in a marking
};

/// A model of at most these sizes, the same for the same seed: up to three initial nodes, loops and arcs
/// without rule among the arcs, counts of 0 among the counts.
std::unique_ptr<Modele::KLV> randomModel(unsigned seed, const Sizes& sizes);

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);

/// A fresh working directory, entered while the object lives and then removed with all that is in it. Its
/// "bin" comes first on the search path.
class WorkingDirectory {
public:
    WorkingDirectory();
    ~WorkingDirectory();
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

    const std::filesystem::path& path() const { return _folder.path(); }

    /// Puts a shell script where the net analyser is looked for. The script is the text after the "#!" line.
    void setTina(const std::string& script) const;

    /// Puts a shell script first on the search path as `mona`.
    void setMona(const std::string& script) const;

    /// Puts the built-in analyser where the net analyser is looked for.
    void useBuiltInTina() const;

private:
    Folder _folder;
    std::filesystem::path _before;
    std::string _searchPath;
};

/// Expects that no descriptor is open at its end that was not at its begin, and that no child was left to be waited
/// for.
class NothingLeftBehind {
public:
    NothingLeftBehind();
    ~NothingLeftBehind();
    NothingLeftBehind(const NothingLeftBehind&) = delete;
    NothingLeftBehind& operator=(const NothingLeftBehind&) = delete;

private:
    std::set<std::string> _descriptors;
};

/// An analyser that answers "bounded" and these lines, whatever the net.
std::string tinaThatPrints(const std::string& report);
