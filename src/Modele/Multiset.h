// Multisets of molecules: what a node is marked with and what a rule consumes and produces, and their two text forms.
#pragma once

#include <map>
#include <string>

namespace Modele {

/// Molecule name -> count, in byte-wise name order. Entries with count 0 may exist; they are never written out.
using Multiset = std::map<std::string, int>;

/// Adds the molecules named in `text` to `m`: words separated by single spaces, each an optional decimal count (1 when
/// missing) followed by a name of ASCII letters, digits and "_".
/// @return false at the first word that is not one, or whose count or sum leaves the int range. What stood before it
/// has then been added, so callers parse into a fresh multiset.
bool toMap(Multiset& m, const std::string& text);

/// The multiset as text: every positive entry as its count (left out when 1), its name and a blank.
std::string toText(const Multiset& m);

}  // namespace Modele
