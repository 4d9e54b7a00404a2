// The questions a model can be asked, and the texts through which two tools answer them: a Petri net for the
// net analyser, a formula for `mona`. The tools run through the shell, in the working directory; what they
// print is all that is read.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace Modele {
class KLV;
}

/// The model as a place/transition net in textual form: one control token walks over the places "q...", which
/// stand for the nodes, and every molecule kind is a counter place "m" + kind. From "q0" the token starts in
/// one of the initial nodes.
std::string toRdP(Modele::KLV* model);

/// The net of the prefix question: the model twice over shared control places, on the counters "p_m..." and
/// "s_m..."; every molecule may once move from the first to the second, and each that does puts a token into
/// "r_m". Also printed on standard output.
std::string toPrefRdP(Modele::KLV* model);

/// `n` in decimal, without the grouping of the user's locale.
std::string toString(int n);

/// Runs `command`, of any length, in the shell and waits for its end.
/// @return what it printed on standard output, "" when it cannot be started. It is read in pieces of a line,
/// at most 1023
///         bytes each; what follows a zero byte in its piece is lost.
std::string execShell(std::string command);

/// Whether every molecule kind has a largest count. An analyser that cannot be run answers yes.
bool isBounded(Modele::KLV* model);

/// Whether the model is bounded and so is the number of molecules that can leave a prefix of a run for its
/// rest.
bool isPrefBounded(Modele::KLV* model);

/// The largest count of every molecule kind that is ever present.
/// @throws std::logic_error "KLV not bounded"
std::map<std::string, int> getBound(Modele::KLV* model);

/// The largest count of the place "r_m" of the prefix net, under the empty name; nothing when no molecule is
/// ever present.
/// @throws std::logic_error "KLV not prefix bounded"
std::map<std::string, int> getPrefixBound(Modele::KLV* model);

/// All conjunctions that say which `k` of the molecules 1 to `n` of a kind are present at x, for instance
/// "(x in Da1) & (x notin Da2)". Exponential in `n`.
std::vector<std::string> SxmRec(std::string molecule, int n, int k);

/// Bit `index` modulo 32 of `value`.
int getBit(int value, int index);

/// Whether some run of the model satisfies `formula`, a formula of `mona` over the variables that
/// docs/formulas.md explains; the empty formula asks whether there is a run at all. Prints the text given to
/// the tool on standard output and leaves it in ".KLV.mona" in the working directory.
/// @throws std::logic_error "KLV not bounded"; "Formula too large" when the text would pass 1 GiB; "Syntaxe
/// error" when the
///         tool gives no verdict, and for a formula with a single quote, which is shown to no shell.
bool isSat(Modele::KLV* model, std::string formula);
