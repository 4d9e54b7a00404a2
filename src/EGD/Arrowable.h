// A shape at which arrows can start and end.
#pragma once

#include <set>

#include "EGD/Drawing.h"

namespace EGD {

class Arrow;

/// Destroying a shape destroys the arrows that touch it.
class Arrowable : public Drawing {
public:
    Arrowable(double x, double y);
    ~Arrowable() override;

    /// True when an arrow runs from `a` to this shape.
    bool arrowInFrom(const EGD::Arrowable* a) const;

private:
    friend class Arrow;

    void addArrowIn(Arrow* arrow) { _in.insert(arrow); }
    void addArrowOut(Arrow* arrow) { _out.insert(arrow); }
    void removeArrowIn(Arrow* arrow) { _in.erase(arrow); }
    void removeArrowOut(Arrow* arrow) { _out.erase(arrow); }

    std::set<EGD::Arrow*> _in;
    std::set<EGD::Arrow*> _out;

public:
    /// The distance from the position to the border in the direction `angle` (radians), in user-space pixels. Arrows
    /// ask for the direction 0 alone: to them every shape is a disc.
    virtual double getR(double angle) const = 0;
};

}  // namespace EGD
