// A few threads that do one job together and wait for the next one.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Reseau {

class Equipe {
public:
    /// @param taille threads, the caller's among them; 0 for as many as the machine has cores. A machine that refuses a
    /// thread gets along with fewer.
    explicit Equipe(unsigned taille);
    ~Equipe();
    Equipe(const Equipe&) = delete;
    Equipe& operator=(const Equipe&) = delete;

    unsigned taille() const { return static_cast<unsigned>(fils_.size()) + 1; }

    /// Runs `travail(i)` for each i below `taille()`, each in a thread of its own, and returns when all are done.
    /// @throws what the first of them, by number, has thrown
    void executer(const std::function<void(unsigned)>& travail);

private:
    void servir(unsigned i);
    void faire(unsigned i);

    std::mutex verrou_;
    std::condition_variable appel_;
    std::condition_variable fin_;
    const std::function<void(unsigned)>* travail_ = nullptr;
    std::uint64_t tour_ = 0;
    unsigned occupes_ = 0;
    bool congedies_ = false;
    std::vector<std::exception_ptr> erreurs_;
    std::vector<std::thread> fils_;
};

}  // namespace Reseau
