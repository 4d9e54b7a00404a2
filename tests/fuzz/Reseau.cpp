// Any bytes as a net for the analyser. They are refused with the source and the line, or they are a net that is the
// same after printing and reading it back. Nets small enough to be decided at once are: both ways to an answer agree,
// and the editor reads from the report what the analyser found.
#include "Reseau/Reseau.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "Analyse/Rapport.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"

namespace {

using Reseau::Compte;
using Reseau::Creux;
using Reseau::Net;

std::optional<Net> read(const std::string& text) {
    try {
        return Reseau::lire(text, "net");
    } catch (const Reseau::ErreurDeLecture& error) {
        const std::string message = error.what();
        const std::size_t digits = std::min(message.find_first_not_of("0123456789", 4), message.size());
        EXPECT_EQ(message.substr(0, 4), "net:");
        EXPECT_GT(digits, 4U) << message;
        EXPECT_EQ(message.substr(digits, 2), ": ") << message;
        EXPECT_GT(message.size(), digits + 2);
        const auto line = static_cast<std::ptrdiff_t>(std::stoul(message.substr(4)));
        EXPECT_LE(line, std::count(text.begin(), text.end(), '\n') + 1);
        return std::nullopt;
    }
}

void print(std::ostream& out, const Net& net, const Creux& side) {
    for (const auto& [place, weight] : side) out << ' ' << net.places[place] << '*' << weight;
}

std::string printed(const Net& net) {
    std::ostringstream out;
    out << "net " << net.nom << '\n';
    for (std::size_t p = 0; p < net.places.size(); ++p)
        out << "pl " << net.places[p] << " (" << net.initial[p] << ")\n";
    for (const auto& transition : net.transitions) {
        out << "tr " << transition.nom;
        print(out, net, transition.pre);
        out << " ->";
        print(out, net, transition.post);
        out << '\n';
    }
    return out.str();
}

void expectSame(const Net& net, const Net& again) {
    EXPECT_EQ(again.nom, net.nom);
    EXPECT_EQ(again.places, net.places);
    EXPECT_EQ(again.initial, net.initial);
    EXPECT_EQ(again.transitions.size(), net.transitions.size());
    for (std::size_t t = 0; t < std::min(net.transitions.size(), again.transitions.size()); ++t) {
        EXPECT_EQ(again.transitions[t].nom, net.transitions[t].nom);
        EXPECT_EQ(again.transitions[t].pre, net.transitions[t].pre);
        EXPECT_EQ(again.transitions[t].post, net.transitions[t].post);
        EXPECT_EQ(again.transitions[t].effet, net.transitions[t].effet);
    }
}

bool isSmall(const Creux& side) {
    return std::all_of(side.begin(), side.end(), [](const auto& weight) { return weight.compte <= 3; });
}

/// A net that any way of deciding it decides at once, and whose names can be found in its report.
bool isSmall(const Net& net) {
    const auto isPlain = [](const std::string& name) {
        return name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == std::string::npos;
    };
    return net.places.size() <= 4 && net.transitions.size() <= 5 &&
           std::all_of(net.places.begin(), net.places.end(), isPlain) &&
           std::all_of(net.initial.begin(), net.initial.end(), [](Compte tokens) { return tokens <= 5; }) &&
           std::all_of(net.transitions.begin(), net.transitions.end(),
                       [](const auto& transition) { return isSmall(transition.pre) && isSmall(transition.post); });
}

void expectConsistentAnswers(const Net& net) {
    const Reseau::Rapport report = Reseau::analyser(net, {});
    Reseau::Options otherWay;
    otherWay.essai = 0;
    EXPECT_EQ(Reseau::analyser(net, otherWay).bornes, report.bornes);
    Reseau::Options verdictOnly;
    verdictOnly.verdictSeul = true;
    EXPECT_EQ(Reseau::analyser(net, verdictOnly).bornee, report.bornee);
    EXPECT_EQ(std::count(report.bornes.begin(), report.bornes.end(), Reseau::OMEGA) == 0, report.bornee);
    if (!report.bornee) return;

    std::map<std::string, int> bounds;
    for (std::size_t p = 0; p < net.places.size(); ++p) {
        if (report.bornes[p] > 0) bounds[net.places[p]] = static_cast<int>(report.bornes[p]);
    }
    const std::string text = Reseau::ecrire(net, report);
    auto found = readBounds(text, "");
    found.erase("");  // between two blanks
    EXPECT_EQ(found, bounds) << text;
    const std::string verdict = text.substr(0, text.find('\n'));  // places may be called "not" and "bounded"
    EXPECT_EQ(verdict.find("not bounded"), std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto net = read(std::string(reinterpret_cast<const char*>(data), size));
    if (!net) return 0;
    const std::string text = printed(*net);
    const auto again = read(text);
    EXPECT_TRUE(again) << text;
    if (again) expectSame(*net, *again);
    if (isSmall(*net)) expectConsistentAnswers(*net);
    return 0;
}
