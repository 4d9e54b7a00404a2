#include "Vue/Object.h"

#include "Modele/Object.h"

namespace Vue {

Object::Object(Modele::Object* modele) {
    if (modele != nullptr) modele->setVue(this);
}

Object::~Object() {
    if (_modele != nullptr) _modele->setVue(nullptr);
}

}  // namespace Vue
