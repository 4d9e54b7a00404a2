// What every view shares: it shows at most one model object and is told when that object changes or dies.
#pragma once

namespace Modele {
class Object;
}

namespace Vue {

/// Base of all views. Needs no toolkit, so that the model can be linked without one.
class Object {
public:
    /// Becomes the view of `modele` (not owned; null for a view that shows no single model object).
    explicit Object(Modele::Object* modele);
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// Unlinks the view from its model object, if that still lives.
    virtual ~Object();

    /// The model object changed: show it as it is now.
    virtual void update() = 0;

    /// The model object is being destroyed: remove this view. The view may be gone on return.
    virtual void sucide() = 0;

private:
    friend class Modele::Object;

    Modele::Object* _modele = nullptr;  // kept by Modele::Object::setVue; null once the model object is gone
};

}  // namespace Vue
