// What the model's tests share: a view that only counts what it is told, and short ways to build rules.
#pragma once

#include <functional>

#include "Modele/Multiset.h"
#include "Modele/Regle.h"
#include "Vue/Object.h"

/// Counts the calls it receives; what `onUpdate` and `onSucide` hold, if anything, runs within the call. Does
/// not destroy itself: the test owns it.
class CountingView : public Vue::Object {
public:
    explicit CountingView(Modele::Object* modele) : Vue::Object(modele) {}

    void update() override {
        ++updates;
        if (onUpdate) onUpdate();
    }

    void sucide() override {
        ++farewells;
        if (onSucide) onSucide();
    }

    int updates = 0;
    int farewells = 0;
    std::function<void()> onUpdate;
    std::function<void()> onSucide;
};

/// A new rule, to be handed to the arc that will own it.
inline Modele::Regle* newRegle(const Modele::Multiset& in, const Modele::Multiset& out) {
    return new Modele::Regle(&in, &out);
}
