// soak [MINUTES]: the random user at full speed in the real window. Says every minute how much memory the program holds
// and fails when, after the first minute, that is ever more than 5 % above what it was then.
//
//     cd build && xvfb-run tests/gestes/soak 10
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "Editor.h"
#include "Generator.h"
#include "common/Folder.h"
#include "common/ToolkitSettings.h"

namespace {

using Clock = std::chrono::steady_clock;

double residentMegabytes() {
    std::ifstream sizes("/proc/self/statm");
    long total = 0;
    long resident = 0;
    sizes >> total >> resident;
    return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1 << 20);
}

/// Plays until `end`.
/// @return the number of events
unsigned long play(Editor& editor, Generator& generator, Clock::time_point end) {
    unsigned long events = 0;
    for (; Clock::now() < end; ++events) editor.apply(generator.next(editor.reference()));
    return events;
}

}  // namespace

int main(int argc, char* argv[]) {
    GTEST_FLAG_SET(throw_on_failure, true);
    testing::InitGoogleTest(&argc, argv);
    const int minutes = argc > 1 ? std::stoi(argv[1]) : 10;
    Toolkit toolkit;
    toolkit.SetUp();
    // The toolkit keeps a copy of a symbolic icon for each colour in which it was ever shown, so also for those of a
    // fading.
    Gtk::Settings::get_default()->property_gtk_enable_animations() = false;
    std::ostream out(std::cout.rdbuf(nullptr));  // the program's traces go nowhere
    const Folder folder;
    Editor editor(folder);
    Generator generator(1);

    double afterFirst = 0;
    unsigned long events = 0;
    bool isFlat = true;
    for (int minute = 1; minute <= minutes; ++minute) {
        events += play(editor, generator, Clock::now() + std::chrono::minutes(1));
        const double resident = residentMegabytes();
        if (minute == 1) afterFirst = resident;
        if (resident > 1.05 * afterFirst) isFlat = false;
        out << "minute " << minute << ": " << resident << " MiB after " << events << " events" << std::endl;
    }
    return isFlat ? EXIT_SUCCESS : EXIT_FAILURE;
}
