#include "Window.h"

#include <glibmm/convert.h>
#include <gtkmm/aboutdialog.h>
#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/entry.h>
#include <gtkmm/filechooserdialog.h>
#include <gtkmm/filefilter.h>
#include <gtkmm/icontheme.h>
#include <gtkmm/imagemenuitem.h>
#include <gtkmm/label.h>
#include <gtkmm/main.h>
#include <gtkmm/messagedialog.h>
#include <gtkmm/radiotoolbutton.h>
#include <gtkmm/stock.h>

#include <cstdio>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <system_error>

#include "Analyse.h"
#include "EGD/EasyDrawingArea.h"
#include "Modele/KLV.h"
#include "Sauvegarde.h"
#include "Vue/Dessin.h"

extern "C" {
#include "Icones.h"  // made from data/klv.gresource.xml
}

namespace {

constexpr auto programName = "KLV editor";
constexpr int messageWidth = 240;  // pixels, at least: a short answer alone leaves no room for the dialog's title

/// The toolkit takes them once for the whole program, however many windows there are.
void addIcons() {
    static std::once_flag added;
    std::call_once(added, [] {
        klv_register_resource();
        Gtk::IconTheme::get_default()->add_resource_path("/klv/icons");
    });
}

template <class Widget>
Widget& found(Widget* widget, const char* name) {
    if (widget == nullptr) throw std::runtime_error(std::string("IHM.glade has no widget ") + name);
    return *widget;
}

template <class Widget>
Widget& find(const Glib::RefPtr<Gtk::Builder>& builder, const char* name) {
    Widget* widget = nullptr;
    builder->get_widget(name, widget);
    return found(widget, name);
}

/// For the items that a window description may leave out.
void connectIfThere(const Glib::RefPtr<Gtk::Builder>& builder, const char* name, const sigc::slot<void>& handler) {
    const auto item = Glib::RefPtr<Gtk::MenuItem>::cast_dynamic(builder->get_object(name));
    if (item) item->signal_activate().connect(handler);
}

/// The file chooser of Open and Save as: one title, two filters, Cancel and `accept`.
class KLVChooser : public Gtk::FileChooserDialog {
public:
    KLVChooser(Gtk::Window& parent, Gtk::FileChooserAction action, const Gtk::StockID& accept)
        : Gtk::FileChooserDialog(parent, "Please choose a file", action), _klvFiles(Gtk::FileFilter::create()) {
        add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
        add_button(accept, Gtk::RESPONSE_OK);
        set_default_response(Gtk::RESPONSE_OK);

        _klvFiles->set_name("KLV files");
        _klvFiles->add_pattern("*.klv");
        add_filter(_klvFiles);

        const auto anyFiles = Gtk::FileFilter::create();
        anyFiles->set_name("Any files");
        anyFiles->add_pattern("*");
        add_filter(anyFiles);
    }

    /// The chosen name, with the extension that the "KLV files" filter stands for.
    std::string nameToSave() const {
        const std::string name = get_filename();
        const bool hasExtension = name.find('.') != std::string::npos;
        return get_filter()->gobj() == _klvFiles->gobj() && !hasExtension ? name + ".klv" : name;
    }

private:
    Glib::RefPtr<Gtk::FileFilter> _klvFiles;
};

bool exists(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "re");
    if (file == nullptr) return false;
    std::fclose(file);
    return true;
}

}  // namespace

Window::Window(const std::string& gladeFile) {
    addIcons();
    const auto builder = Gtk::Builder::create_from_file(gladeFile);

    EGD::EasyDrawingArea* area = nullptr;
    builder->get_widget_derived("drawingarea1", area);
    _pVue = new Vue::Dessin(&found(area, "drawingarea1"));
    _pWindow = &find<Gtk::Window>(builder, "window1");
    _pControleur = new Controleur(this, new Modele::KLV, _pVue);

    connectMode(builder, "toolButtonSelect", Controleur::SELECT);
    connectMode(builder, "toolButtonArc", Controleur::ARC);
    connectMode(builder, "toolButtonNoeud", Controleur::NOEUD);
    _pWindow->signal_key_press_event().connect(sigc::mem_fun(*_pControleur, &Controleur::keyPressed));
    connectFiles(builder);
    connectAnalyses(builder);
}

Window::~Window() = default;

void Window::connectMode(const Glib::RefPtr<Gtk::Builder>& builder, const char* button, Controleur::Mode mode) {
    auto& toggle = find<Gtk::RadioToolButton>(builder, button);
    toggle.signal_toggled().connect([this, &toggle, mode] {
        if (toggle.get_active()) _pControleur->setMode(mode);
    });
}

void Window::connectFiles(const Glib::RefPtr<Gtk::Builder>& builder) {
    const auto onClick = [&](const char* name, void (Window::*handler)()) {
        find<Gtk::ToolButton>(builder, name).signal_clicked().connect(sigc::mem_fun(*this, handler));
    };
    onClick("toolNew", &Window::button_new_clicked);
    onClick("toolOpen", &Window::button_open_clicked);
    onClick("toolSave", &Window::button_save_clicked);

    const auto onActivate = [&](const char* name, void (Window::*handler)()) {
        find<Gtk::ImageMenuItem>(builder, name).signal_activate().connect(sigc::mem_fun(*this, handler));
    };
    onActivate("menu_new", &Window::button_new_clicked);
    onActivate("menu_open", &Window::button_open_clicked);
    onActivate("menu_save", &Window::button_save_clicked);
    onActivate("menu_savein", &Window::button_savein_clicked);
    connectIfThere(builder, "menu_quit", [this] { _pWindow->close(); });
    connectIfThere(builder, "menu_about", [dialog = builder->get_object("aboutdialog1")] {
        const auto about = Glib::RefPtr<Gtk::AboutDialog>::cast_dynamic(dialog);
        about->set_version(KLV_VERSION);
        about->run();
        about->hide();
    });
}

void Window::connectAnalyses(const Glib::RefPtr<Gtk::Builder>& builder) {
    const auto onActivate = [&](const char* name, void (Window::*handler)()) {
        find<Gtk::MenuItem>(builder, name).signal_activate().connect(sigc::mem_fun(*this, handler));
    };
    onActivate("menu_pref_bound", &Window::prefBounded);
    onActivate("menu_bound", &Window::bounded);
    onActivate("menu_bound_size", &Window::bound);
    onActivate("menu_prefix_bound_size", &Window::prefixBound);
    connectIfThere(builder, "menu_modele_checking", [this] { modeleChecking(); });
}

void Window::run() { Gtk::Main::run(*_pWindow); }

void Window::quit() { Gtk::Main::quit(); }

void Window::error(const std::string& text) {
    std::cout << "ERROR !!" << std::endl;
    Gtk::MessageDialog dialog(*_pWindow, text, false, Gtk::MESSAGE_ERROR, Gtk::BUTTONS_CLOSE);
    dialog.set_title(text);
    dialog.run();
}

void Window::info(const std::string& title, const std::string& text) {
    Gtk::MessageDialog dialog(*_pWindow, title, true, Gtk::MESSAGE_INFO, Gtk::BUTTONS_OK);
    dialog.set_title("Information");
    dialog.set_size_request(messageWidth, -1);
    if (!text.empty()) dialog.set_secondary_text(text, true);
    dialog.run();
}

bool Window::question(const std::string& title, const std::string& text) {
    Gtk::MessageDialog dialog(*_pWindow, title, false, Gtk::MESSAGE_QUESTION, Gtk::BUTTONS_YES_NO);
    dialog.set_title(title);
    if (!text.empty()) dialog.set_secondary_text(text);
    return dialog.run() == Gtk::RESPONSE_YES;
}

bool Window::getMessage(const std::string& label, std::string& result, const std::string& before) {
    Gtk::Dialog dialog("", *_pWindow);
    Gtk::Label prompt(label);
    Gtk::Entry entry;
    entry.set_text(before);
    dialog.get_content_area()->pack_start(prompt, Gtk::PACK_EXPAND_WIDGET);
    dialog.get_content_area()->pack_start(entry, Gtk::PACK_EXPAND_WIDGET);
    dialog.add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    Gtk::Button* ok = dialog.add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    entry.signal_activate().connect([ok] { ok->activate(); });
    dialog.show_all();

    if (dialog.run() != Gtk::RESPONSE_OK) return false;
    result = entry.get_text();
    return true;
}

void Window::setCurrentFile(const std::string& path) {
    currentFile = path;
    const std::string name = Glib::filename_display_basename(path);
    _pWindow->set_title(path.empty() ? programName : name + " - " + programName);
}

void Window::clear() {
    _pControleur->clear();
    setCurrentFile("");
}

void Window::button_new_clicked() { clear(); }

bool Window::parser(const std::string& path) {
    if (_pControleur->parser(path)) return true;
    error("Load file error");
    return false;
}

void Window::button_open_clicked() {
    std::string path;
    {
        KLVChooser chooser(*_pWindow, Gtk::FILE_CHOOSER_ACTION_OPEN, Gtk::Stock::OPEN);
        if (chooser.run() != Gtk::RESPONSE_OK) return;
        path = chooser.get_filename();
    }
    if (parser(path)) setCurrentFile(path);
}

void Window::button_save_clicked() {
    if (currentFile.empty()) {
        button_savein_clicked();
    } else if (!saveIn(currentFile)) {
        error("Save error.");
    }
}

void Window::button_savein_clicked() {
    KLVChooser chooser(*_pWindow, Gtk::FILE_CHOOSER_ACTION_SAVE, Gtk::Stock::SAVE_AS);
    while (chooser.run() == Gtk::RESPONSE_OK) {
        const std::string name = chooser.nameToSave();
        if (saveIn(name)) {
            setCurrentFile(name);
            return;
        }
        chooser.present();  // the question or the error gave the keyboard back to the main window
    }
}

bool Window::saveIn(const std::string& path) {
    if (exists(path) && !question("Replace file ?", "")) return false;
    try {
        remplacerFichier(path, _pControleur->toString());
        return true;
    } catch (const std::system_error&) {
        error("Write data error.");
        return false;
    }
}

void Window::bounded() { info(isBounded(_pControleur->getKLV()) ? "KLV is bounded." : "KLV is not bounded.", ""); }

void Window::prefBounded() {
    info(isPrefBounded(_pControleur->getKLV()) ? "KLV is prefix bounded." : "KLV is not prefix bounded.", "");
}

void Window::bound() { showBounds("Bound = (", getBound); }

void Window::prefixBound() { showBounds("Prefix bound = (", getPrefixBound); }

void Window::showBounds(const std::string& prefix, std::map<std::string, int> (*analysis)(Modele::KLV*)) {
    try {
        std::string text = prefix;
        const char* separator = "";
        for (const auto& [molecule, count] : analysis(_pControleur->getKLV())) {
            text += separator + std::to_string(count);
            separator = ", ";
        }
        info(text + ")", "");
    } catch (const std::logic_error& failure) {
        error(failure.what());
    }
}

void Window::modeleChecking() {
    std::string formula;
    if (!getMessage("Formula : ", formula, "")) return;
    try {
        info(isSat(_pControleur->getKLV(), formula) ? "Formula is satisfiable" : "Formula is unsatisfiable", "");
    } catch (const std::logic_error& failure) {
        error(failure.what());
    }
}
