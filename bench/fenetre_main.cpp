// The main function of the benchmarks that need the toolkit. The program's traces are not part of the report.
#include <benchmark/benchmark.h>
#include <gtkmm/main.h>

#include <iostream>

int main(int argc, char* argv[]) {
    benchmark::Initialize(&argc, argv);
    Gtk::Main toolkit(argc, argv);

    std::ostream report(std::cout.rdbuf());
    std::cout.rdbuf(nullptr);
    benchmark::ConsoleReporter reporter;
    reporter.SetOutputStream(&report);
    benchmark::RunSpecifiedBenchmarks(&reporter);
}
