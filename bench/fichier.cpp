// Whether loading, clearing and saving stay linear in the size of the file, and what a large model costs in memory. A
// file of size n declares n nodes and n arcs with rules. Traces are written, to /dev/null.
#include <benchmark/benchmark.h>
#include <gtkmm.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "Controleur/Controleur.h"
#include "EGD/EasyDrawingArea.h"
#include "Modele/KLV.h"
#include "Vue/Dessin.h"

namespace {

std::string fileOfSize(long n) {
    const std::string path = "/tmp/klv-bench-" + std::to_string(n) + ".klv";
    std::ofstream file(path);
    for (long i = 0; i < n; ++i) file << "n" << i << "(" << 60 + i % 200 * 120 << ", " << 60 + i / 200 * 120 << ");\n";
    for (long i = 0; i < n; ++i) file << "n" << i << " -> n" << (i * 7919 + 1) % n << " : 2a b -> c ;\n";
    return path;
}

/// Kilobytes of memory that the process holds now, or held at most ("VmRSS:", "VmHWM:").
double kilobytes(const std::string& field) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == field) break;
    }
    double value = 0;
    status >> value;
    return value;
}

struct Editor {
    Controleur controleur{nullptr, new Modele::KLV, new Vue::Dessin(new EGD::EasyDrawingArea)};
};

void loadClearSave(benchmark::State& state) {
    const std::string path = fileOfSize(state.range(0));
    Editor editor;
    for (auto _ : state) {
        editor.controleur.parser(path);
        benchmark::DoNotOptimize(editor.controleur.toString());
        editor.controleur.clear();
    }
    std::remove(path.c_str());
}

void memoryOfLoad(benchmark::State& state) {
    const long n = state.range(0);
    const std::string path = fileOfSize(n);
    Editor editor;
    const double before = kilobytes("VmRSS:");
    for (auto _ : state) editor.controleur.parser(path);
    state.counters["KB a node and arc"] = (kilobytes("VmHWM:") - before) / static_cast<double>(n);
    std::remove(path.c_str());
}

}  // namespace

// The memory first: the peak of the process must be that of its load.
BENCHMARK(memoryOfLoad)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(loadClearSave)->Arg(10000)->Arg(20000)->Arg(40000)->Unit(benchmark::kMillisecond);
