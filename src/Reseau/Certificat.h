// Says why an answer is right, in a form that a program which knows nothing of this one can check with sums of
// integers.
//
// The lines of a certificate, words separated by blanks; `a*3` is three tokens in a, or a with the coefficient 3. The
// first three kinds make the net smaller, line by line: what follows is about what is left.
//
//     dead TRANSITION...
//         never fired: each needs a place that M0 and the other transitions never mark, or more than there is of a
//         place that they do not raise
//     dominated TRANSITION [BY]
//         never needed: BY needs no more and leaves no less, constant places aside; without BY, it puts nothing in the
//         balance
//     merge PLACE BY
//         each transition changes the two by the same multiple of f and of g, the greatest common divisors of their
//         changes, so that the count of BY tells that of PLACE; needing PLACE is needing as many of BY as there are
//         when PLACE holds as much as is needed or the next larger count that it can. Where BY is needed so much that
//         it would not do with g less, that stays
//     part PLACE...
//         a set of places; transitions that change one of them need none of other parts
//     fires TRANSITION...
//         the transitions of the part; they are x0, x1, ... in the proofs
//     token PLACE...
//         places of the part that hold one token together, at the start and after every transition
//     omega N raises PLACE... needs PLACE*COUNT... by RUN
//         repeating RUN from any marking that holds the needs raises the places beyond all bounds
//     set PLACE*COUNT...
//         one marking of the part's coverability set; together they cover M0 and each of their successors
//     relaxed PLACE*COUNT...
//         the same of a set that may hold more than the net can reach, since what there is much of is "w" in it
//     subinvariant N TOTAL PLACE*W...
//         W times each place together are TOTAL at M0, and raised by no transition
//     unbounded stem RUN cycle RUN
//         the cycle can be fired after the stem, takes nothing and adds something
//     bound PLACE COUNT by RUN
//         the run ends with that many tokens in the place, "w" for unbounded
//     bound PLACE COUNT on RUN
//         the run of the bound before, and then this one, end with that; nothing when that one does already
//     total
//         what follows bounds the sum of the part's places
//     most by set, most by relaxed
//         no marking of the set holds more
//     most COUNT by subinvariant N
//         TOTAL divided by the W of the place, rounded down, is COUNT
//     most COUNT by cases
//         no solution of the state equation holds more; the tree of cases follows in prefix notation
//     most COUNT by phases TRANSITION...
//         the same of the unfolded net: each place P of the token is there once more as "P(2)", empty at the start, and
//         each transition T that takes the token once more as "T(2)", which takes it from and puts it into such places;
//         the transitions listed take it from the first ones to the second ones. What is bounded is P and P(2)
//         together. The cases:
//     threshold TRANSITION K
//         case one, fired at most K times; case two, at least K + 1 times
//     level PLACE K
//         case one, the place holds at most K at the end; case two, at least K + 1
//     entry PLACE...
//         case one, the places, empty at the start, are never marked: what needs one of them is not fired; case two,
//         what puts into them without needing one of them is fired
//     departure N PLACE... BOUNDED...
//         case one, the token never leaves the N places, empty at the start: what takes it from them and elsewhere is
//         not fired, and when it enters them, after everything that takes it elsewhere, no BOUNDED place is below zero;
//         case two, what takes it from them and elsewhere is fired
//     first TRANSITION PLACE*Y...
//     last TRANSITION PLACE*Y...
//         case one, it is not fired; case two, it is, and when it is fired for the first or the last time, the sum of Y
//         times each place is not negative after taking what it needs
//     order first|last T first|last U PLACE*Y... then PLACE*Y... else PLACE*Y... then PLACE*Y...
//         four cases: T is not fired; U is not; T's first or last firing comes before U's, and then the sum of Y times
//         each place at the earlier firing and, after "then", at the later one, each less what is needed there, is not
//         negative; or it comes after U's, and then the same holds for what follows "else"
//     round D PLACE*Y... *I*Y...
//         not a distinction, one tree follows: the sum of Y times each place and Y times the I-th constraint in force,
//         divided by D, with the coefficients of the transitions rounded up and the constant rounded down, is a
//         constraint
//     close F TOTAL PLACE*Y... *I*Y...
//         F times the bounded sum, plus Y times each place, plus Y times the I-th constraint in force ("*I"), is at
//         most TOTAL at M0 and raised by no transition
//
// A RUN is a list of TRANSITION, (TRANSITION*TIMES...)*TIMES, and *N for the acceleration "omega N". Constraints in
// force are numbered from 0 in the order in which the cases above introduced them; each is non-negative. For threshold
// and level K - x and x - K - 1; for entry and departure -x for each transition not fired, in the order of "fires",
// first all T and then all T(2), or else the sum of those of which one is fired - 1. Of a BOUNDED place the constraint
// is what M0 and the transitions that take the token elsewhere leave; less what those need that bring the token in;
// plus what those add, if they do, that leave the token alone. For first and last -x; and x - 1, then the sum, of which
// the other transitions only count with what they add to it, and the transition itself not at all with first, and one
// time less than it is fired with last. For order -x of T; -x of U; and in the other cases x - 1 of T, x - 1 of U and
// the sum: a firing counts there as one before both moments, between them, or after them, whichever adds most, but for
// T's and U's own, of which it is known.
#pragma once

#include "Reseau/Net.h"
#include "Reseau/Parties.h"
#include "Reseau/Reduction.h"
#include "Reseau/Resolution.h"
#include "Reseau/Texte.h"

namespace Reseau {

/// Writes the certificate of a reduction of `net`.
void certifier(Texte& out, const Net& net, const Reduction& reduction);

/// Writes the certificate of one part that has been taken to its end.
void certifier(Texte& out, const Net& net, const Partie& partie, const Resolution& resolution, bool verdictSeul);

}  // namespace Reseau
