#include "Controleur/VirtualSousControleur.h"

#include "Controleur/Controleur.h"

Vue::Dessin* VirtualSousControleur::getVue() const { return _controleur->_vue; }
