// Lets a test find out what happens to somebody whom permissions stop; the tests may run as root.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs `work` as a user who is not root, in a process of its own.
/// @return its exit status
template <class Work>
int asOrdinaryUser(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0)) _exit(99);
        _exit(work());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 98;
}
