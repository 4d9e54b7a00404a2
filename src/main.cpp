// The entry of the editor.
#include <gtkmm/main.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "Window.h"

int main(int argc, char* argv[]) {
    // Neither a reader of the traces that goes away nor a limit on the size of files may take the user's work along.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    Gtk::Main toolkit(argc, argv, true);
    try {
        Window window("IHM.glade");
        window.run();
    } catch (const Glib::Error& failure) {
        std::cerr << "klv: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    } catch (const std::exception& failure) {
        std::cerr << "klv: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
