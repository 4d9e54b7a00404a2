// Reads a net from its textual form.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Reseau/Net.h"

namespace Reseau {

/// A text that is not a net; the message begins with the source's name and the line, "FILE:LINE: ".
struct ErreurDeLecture : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads a whole net. One declaration a line, words separated by blanks:
///
///     net NAME
///     tr NAME [PLACE | PLACE*WEIGHT]... -> [PLACE | PLACE*WEIGHT]...
///     pl NAME [(TOKENS)]
///
/// From a word that begins with "#" on, the line is a comment. A name is any run of characters without blanks and
/// without "*", "(" and ")", or anything between braces, which belong to the name. A place that only transitions
/// mention starts empty; a weight or a count may be 0.
/// @param source what messages call the text, a file name for instance
/// @throws ErreurDeLecture on a malformed text
Net lire(std::string_view texte, const std::string& source);

/// The same for a text that comes in pieces, cut anywhere. A malformed line is refused before the piece after its own
/// is asked for, so that a text without end is refused, too.
/// @param suite the next piece, empty at the end of the text; it is not used any more once the next one is asked for
/// @throws ErreurDeLecture on a malformed text, and whatever `suite` throws
Net lire(const std::function<std::string_view()>& suite, const std::string& source);

}  // namespace Reseau
