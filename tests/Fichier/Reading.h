// Reading a text as a .klv file: into a network in this process, when it is well formed, or in a child process, when
// the reader may end it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "common/Folder.h"
#include "common/Network.h"
#include "common/Traces.h"

/// How a process ended and what it wrote.
struct Ending {
    int status;  // its exit status; 128 and more when a signal ended it
    std::string output;
    std::string errors;
    friend bool operator==(const Ending&, const Ending&) = default;
};

inline std::string contentsOf(std::FILE* file) {
    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

/// Runs `body` in a child process that ends with status 0 when `body` returns, and is stopped after half a minute.
template <class Body>
Ending endingOf(Body body) {
    std::FILE* const output = std::tmpfile();
    std::FILE* const errors = std::tmpfile();
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        alarm(30);
        dup2(fileno(output), STDOUT_FILENO);
        dup2(fileno(errors), STDERR_FILENO);
        // What the parent has registered for its own end is not the child's to do.
        on_exit([](int status, void*) { _exit(status); }, nullptr);
        body();
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), contentsOf(output), contentsOf(errors)};
}

/// A network that is filled from files. While it lives, its trace lines do not reach standard output.
class Reader : private Traces, public Network {
public:
    bool read(const std::string& text) { return controleur.parser(_folder.write("model.klv", text)); }

private:
    Folder _folder;
};

/// What reading `text` does to the program, and what it says.
inline Ending endingOfReading(const std::string& text) {
    const Folder folder;
    const std::string path = folder.write("model.klv", text);
    auto network = std::make_unique<Network>();  // made here: the display may be used by one process alone
    const Ending ending = endingOf([&] { network->controleur.parser(path); });
    const Traces unseen;
    network.reset();
    return ending;
}
