#include "Modele/Object.h"

#include "Vue/Object.h"

namespace Modele {

Object::~Object() {
    callDelete();
    setVue(nullptr);  // a view that outlives its model must not reach back
}

void Object::setVue(Vue::Object* v) {
    if (_vue != nullptr && _vue->_modele == this) _vue->_modele = nullptr;
    _vue = v;
    if (_vue != nullptr) _vue->_modele = this;
}

void Object::callUpdate() {
    if (_vue != nullptr) _vue->update();
}

void Object::callDelete() {
    if (_vue != nullptr) _vue->sucide();
}

}  // namespace Modele
