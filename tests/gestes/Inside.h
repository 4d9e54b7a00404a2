// A look at what the editor keeps to itself: its state, and whether its parts agree with each other. Inside.cpp alone
// is compiled without access control.
#pragma once

#include <gtkmm/window.h>

#include "Reference.h"
#include "State.h"
#include "Window.h"

/// The program's window, its controller and its drawing; owned by the program.
struct Inside {
    explicit Inside(Window& program);

    State state() const;

    /// What lies at a point of the drawing area by the drawing's own account.
    Picked at(double x, double y) const;

    /// Model and views correspond one to one, arcs and nodes know each other, keys are names, the area shows the views
    /// and nothing else, gestures hold living views, and everything looks as its state demands.
    /// @throws std::runtime_error that says what is wrong
    void check() const;

    Window* program;
    Gtk::Window* window;
    Controleur* controleur;
    Vue::Dessin* drawing;
};
