// The main window: wires the widgets of IHM.glade to their handlers, and offers the dialogs through which every other
// part talks to the user.
#pragma once

#include <gtkmm/builder.h>
#include <gtkmm/window.h>

#include <map>
#include <string>

#include "Controleur/Controleur.h"

namespace Vue {
class Dessin;
}

/// Made once, by main. The controller, and with it the model, lives on to the end of the process.
class Window : public sigc::trackable {
public:
    /// Builds the window that the GtkBuilder file `gladeFile` describes.
    /// @throw Glib::Error when the file is missing or not valid
    explicit Window(const std::string& gladeFile);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window();

    /// Shows the window and returns when it is closed.
    void run();

    /// Ends run.
    void quit();

    /// @name Dialogs. Each waits until it is closed.
    /// @{
    void error(const std::string& text);

    /// Both texts are Pango markup; an empty `text` is left out.
    void info(const std::string& title, const std::string& text);

    /// Plain texts; an empty `text` is left out.
    /// @return true for yes alone
    bool question(const std::string& title, const std::string& text);

    /// Asks for a line of text, starting from `before`.
    /// @return true when it was confirmed; `result` is untouched otherwise.
    bool getMessage(const std::string& label, std::string& result, const std::string& before);
    /// @}

    /// @name Files
    /// @{
    void clear();
    void button_new_clicked();
    void button_open_clicked();
    void button_save_clicked();
    void button_savein_clicked();

    /// Loads the file `path`; tells the user when it cannot be opened.
    bool parser(const std::string& path);

    /// Writes the model to the file `path`, after asking when it exists. A write that fails leaves the old file whole.
    /// @return false when the user declined or the file could not be written
    bool saveIn(const std::string& path);
    /// @}

    /// @name Analyses of the current model
    /// @{
    void prefBounded();
    void bounded();
    void bound();
    void prefixBound();
    void modeleChecking();
    /// @}

private:
    void connectMode(const Glib::RefPtr<Gtk::Builder>& builder, const char* button, Controleur::Mode mode);
    void connectFiles(const Glib::RefPtr<Gtk::Builder>& builder);
    void connectAnalyses(const Glib::RefPtr<Gtk::Builder>& builder);

    void setCurrentFile(const std::string& path);
    void showBounds(const std::string& prefix, std::map<std::string, int> (*analysis)(Modele::KLV*));

    Controleur* _pControleur = nullptr;
    Vue::Dessin* _pVue = nullptr;
    Gtk::Window* _pWindow = nullptr;
    std::string currentFile;  // empty while the model has no file
};
