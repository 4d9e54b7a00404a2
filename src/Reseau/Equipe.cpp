#include "Reseau/Equipe.h"

#include <algorithm>
#include <exception>

namespace Reseau {

Equipe::Equipe(unsigned taille) {
    const unsigned voulue = taille > 0 ? taille : std::max(1U, std::thread::hardware_concurrency());
    erreurs_.resize(voulue);
    fils_.reserve(voulue);
    try {
        for (unsigned i = 1; i < voulue; ++i) fils_.emplace_back([this, i] { servir(i); });
    } catch (const std::exception&) {  // those that have started do the work
    }
}

Equipe::~Equipe() {
    {
        const std::lock_guard garde(verrou_);
        congedies_ = true;
    }
    appel_.notify_all();
    for (std::thread& f : fils_) f.join();
}

void Equipe::executer(const std::function<void(unsigned)>& travail) {
    {
        const std::lock_guard garde(verrou_);
        travail_ = &travail;
        occupes_ = taille() - 1;
        ++tour_;
    }
    appel_.notify_all();
    faire(0);
    {
        std::unique_lock garde(verrou_);
        fin_.wait(garde, [this] { return occupes_ == 0; });
    }
    const auto premiere = std::ranges::find_if(erreurs_, [](const std::exception_ptr& e) { return e != nullptr; });
    if (premiere == erreurs_.end()) return;
    const std::exception_ptr erreur = *premiere;
    std::ranges::fill(erreurs_, nullptr);
    std::rethrow_exception(erreur);
}

void Equipe::faire(unsigned i) {
    try {
        (*travail_)(i);
    } catch (...) {
        erreurs_[i] = std::current_exception();
    }
}

void Equipe::servir(unsigned i) {
    std::uint64_t fait = 0;
    std::unique_lock garde(verrou_);
    while (true) {
        appel_.wait(garde, [&] { return congedies_ || tour_ != fait; });
        if (congedies_) return;
        fait = tour_;
        garde.unlock();
        faire(i);
        garde.lock();
        if (--occupes_ == 0) fin_.notify_one();
    }
}

}  // namespace Reseau
