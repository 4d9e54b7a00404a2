// From a path of the coverability construction, accelerations and all, to a run. From the end backwards: what the rest
// of the run needs of the places that an acceleration raises, beyond what they hold before, tells how often its
// sequence is repeated; never means that it is left out.
#pragma once

#include <optional>
#include <vector>

#include "Reseau/Course.h"
#include "Reseau/Couverture.h"
#include "Reseau/Net.h"

namespace Reseau {

/// @param couverture keeps its paths; what it starts from, `depart` lies below
/// @return the path to `but`, a maximal marking, as a run that can be fired from `depart`, if that holds what it needs
std::optional<Course> derouler(const Net& net, const Couverture& couverture, const Creux& but,
                               const std::vector<Compte>& depart);

}  // namespace Reseau
