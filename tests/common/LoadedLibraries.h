// Which shared libraries the running test program has loaded: a room that needs no screen must bring none of the
// toolkit's.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>
#include <vector>

inline std::vector<std::string> loadedLibraries() {
    std::vector<std::string> libraries;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* found) {
            static_cast<std::vector<std::string>*>(found)->emplace_back(info->dlpi_name);
            return 0;
        },
        &libraries);
    return libraries;
}

inline void expectNoLibraryOfTheToolkit() {
    const std::vector<std::string> libraries = loadedLibraries();
    ASSERT_THAT(libraries, testing::Contains(testing::HasSubstr("libstdc++"))) << "the list is a real one";
    for (const char* toolkit : {"gtk", "gdk", "glib", "gobject", "gio", "cairo", "pango", "atk", "sigc", "libX11"})
        EXPECT_THAT(libraries, testing::Not(testing::Contains(testing::HasSubstr(toolkit))));
}
