// A measurement in a process of its own: its memory and its limits are nobody else's, and it may end as it likes.
#pragma once

#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <exception>
#include <optional>
#include <type_traits>

/// Limits the process to 4 GiB and so many seconds of processor time: at `secondes` it gets SIGXCPU, at `auPlus` it
/// ends.
inline void limiter(rlim_t secondes, rlim_t auPlus) {
    const rlimit temps{secondes, auPlus};
    setrlimit(RLIMIT_CPU, &temps);
    const rlimit memoire{rlim_t{4} << 30, rlim_t{4} << 30};
    setrlimit(RLIMIT_AS, &memoire);
}

/// After so many seconds of processor time the process is ended by a signal, also when it has become another program.
inline void finirApres(double secondes) {
    itimerval reveil{};
    reveil.it_value.tv_sec = static_cast<time_t>(secondes);
    reveil.it_value.tv_usec = static_cast<suseconds_t>((secondes - std::floor(secondes)) * 1e6);
    setitimer(ITIMER_PROF, &reveil, nullptr);
}

/// What `mesure()` returns in a process of its own; nothing when it threw or its process was ended.
template <class F>
auto aPart(F&& mesure) -> std::optional<std::invoke_result_t<F>> {
    using Mesure = std::invoke_result_t<F>;
    static_assert(std::is_trivially_copyable_v<Mesure>);
    int tube[2];
    if (pipe(tube) != 0) return std::nullopt;
    const pid_t enfant = fork();
    if (enfant == 0) {
        try {
            const Mesure m = mesure();
            _exit(write(tube[1], &m, sizeof m) == sizeof m ? 0 : 1);
        } catch (const std::exception&) {
            _exit(1);
        }
    }
    close(tube[1]);
    Mesure m{};
    const bool finie = enfant > 0 && read(tube[0], &m, sizeof m) == sizeof m;
    close(tube[0]);
    if (enfant > 0) waitpid(enfant, nullptr, 0);
    return finie ? std::optional(m) : std::nullopt;
}
