// What every object of the model shares: a link to the view that shows it. The model knows nothing else of the screen.
#pragma once

namespace Vue {
class Object;
}

namespace Modele {

/// Base of all model classes. Model and view find each other through a link that whichever end dies first releases.
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// Tells the view to go away (`Vue::Object::sucide`).
    virtual ~Object();

    /// Links the object to `v`, which is not owned; null unlinks.
    void setVue(Vue::Object* v);

    /// Asks the view, if any, to redraw itself from the model.
    void callUpdate();

    /// Asks the view, if any, to remove itself.
    void callDelete();

private:
    Vue::Object* _vue = nullptr;
};

}  // namespace Modele
