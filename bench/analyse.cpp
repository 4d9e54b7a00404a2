// How fast the texts for the tools are made. A net is compared with an append of the same bytes one by one, which is
// what a writer that knew the text beforehand would do without copying blocks; a formula with fwrite of its lines,
// prepared, to /dev/null. The families of models and bounds show how the time grows.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "Analyse.h"
#include "Analyse/Formule.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

namespace {

/// Swallows the traces.
class Nowhere : public std::streambuf {
    int overflow(int c) override { return c; }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

class Silence {
public:
    Silence() : _before(std::cout.rdbuf(&_nowhere)) {}
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() { std::cout.rdbuf(_before); }

private:
    Nowhere _nowhere;
    std::streambuf* _before;
};

/// Four arcs a node, three in four with a rule over twenty kinds of molecules.
std::unique_ptr<Modele::KLV> makeModel(std::int64_t arcs) {
    std::mt19937 random(1);
    auto model = std::make_unique<Modele::KLV>();
    std::vector<Modele::Noeud*> nodes;
    for (std::int64_t n = 0; n < (arcs + 3) / 4; ++n) nodes.push_back(model->addNoeud());
    const auto molecule = [&] { return "molecule" + std::to_string(random() % 20); };
    for (std::int64_t a = 0; a < arcs; ++a) {
        const Modele::Multiset in{{molecule(), 1}, {molecule(), 2}};
        const Modele::Multiset out{{molecule(), 1}};
        Modele::Regle* regle = a % 4 == 0 ? nullptr : new Modele::Regle(&in, &out);
        nodes[static_cast<std::size_t>(a / 4)]->addArc(nodes[random() % nodes.size()], regle);
    }
    nodes.front()->setInit("3molecule1 molecule2");
    return model;
}

/// A model with its texts, made and destroyed in silence.
struct Case {
    explicit Case(std::int64_t arcs)
        : model(makeModel(arcs)), net(toRdP(model.get())), prefixNet(toPrefRdP(model.get())) {}
    ~Case() { model.reset(); }

    Silence silence;
    std::unique_ptr<Modele::KLV> model;
    std::string net;
    std::string prefixNet;
};

void report(benchmark::State& state, const std::string& text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
    state.SetComplexityN(state.range(0));
}

void appendByteByByte(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        std::string copy;
        for (const char c : text) copy += c;
        benchmark::DoNotOptimize(copy.data());
    }
    report(state, text);
}

void net(benchmark::State& state) {
    const Case made(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(toRdP(made.model.get()).data());
    report(state, made.net);
}

void netAppended(benchmark::State& state) { appendByteByByte(state, Case(state.range(0)).net); }

void prefixNet(benchmark::State& state) {
    const Case made(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(toPrefRdP(made.model.get()).data());
    report(state, made.prefixNet);
}

void prefixNetAppended(benchmark::State& state) { appendByteByByte(state, Case(state.range(0)).prefixNet); }

BENCHMARK(netAppended)->Arg(10'000);
BENCHMARK(net)->RangeMultiplier(10)->Range(100, 100'000)->Complexity(benchmark::oN);
BENCHMARK(prefixNetAppended)->Arg(10'000);
BENCHMARK(prefixNet)->RangeMultiplier(10)->Range(100, 100'000)->Complexity(benchmark::oN);

std::map<std::string, int> boundOf(const benchmark::State& state) { return {{"a", static_cast<int>(state.range(0))}}; }

constexpr std::size_t gibibyte = std::size_t{1} << 30;

void formula(benchmark::State& state) {
    const Silence silence;
    Modele::KLV model;
    std::size_t length = 0;
    for (auto _ : state) {
        const std::string text = toFormule(&model, boundOf(state), gibibyte);
        length = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(length) * state.iterations());
}

/// The text of a model with many arcs and molecules and small bounds is of another kind: it grows with the model.
void formulaOfManyArcs(benchmark::State& state) {
    const Case made(state.range(0));
    std::map<std::string, int> bounds;
    for (const auto& [molecule, count] : made.model->getMolecules()) bounds[molecule] = 3;
    std::size_t length = 0;
    for (auto _ : state) {
        const std::string text = toFormule(made.model.get(), bounds, gibibyte);
        length = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(length) * state.iterations());
}

void formulaWritten(benchmark::State& state) {
    const Silence silence;
    Modele::KLV model;
    const std::string text = toFormule(&model, boundOf(state), gibibyte);
    std::vector<std::string_view> lines;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end) {
        end = text.find('\n', begin) + 1;
        lines.emplace_back(text.data() + begin, end - begin);
    }
    std::FILE* nowhere = std::fopen("/dev/null", "w");
    for (auto _ : state) {
        for (const std::string_view line : lines) std::fwrite(line.data(), 1, line.size(), nowhere);
    }
    std::fclose(nowhere);
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}

BENCHMARK(formulaWritten)->DenseRange(6, 18, 6)->Unit(benchmark::kMicrosecond);
BENCHMARK(formula)->DenseRange(6, 18, 6)->Unit(benchmark::kMicrosecond);
BENCHMARK(formulaOfManyArcs)->Arg(1'000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
