#include "EGD/Arrowable.h"

#include <algorithm>

#include "EGD/Arrow.h"

namespace EGD {

Arrowable::Arrowable(double x, double y) : Drawing(x, y) {}

Arrowable::~Arrowable() {
    while (!_out.empty()) (*_out.begin())->endDestroyed(this);
    while (!_in.empty()) (*_in.begin())->endDestroyed(this);
}

bool Arrowable::arrowInFrom(const EGD::Arrowable* a) const {
    // The arrow stands in both shapes' sets; the smaller one keeps a hub with thousands of arrows cheap.
    if (a == nullptr || _in.size() <= a->_out.size()) {
        return std::any_of(_in.begin(), _in.end(), [a](const Arrow* arrow) { return arrow->getBegin() == a; });
    }
    return std::any_of(a->_out.begin(), a->_out.end(), [this](const Arrow* arrow) { return arrow->getEnd() == this; });
}

}  // namespace EGD
